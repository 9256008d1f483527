// What two administrators work at, with a model of it, and one of them: who deploys as the tool
// does. Each order of their steps is judged by the model.
#ifndef TESTS_DM_MODELLED_H
#define TESTS_DM_MODELLED_H

#include <algorithm>
#include <map>

#include "orders.h"

// A field, a class, or a table that a class has: its line of the journal's state (none where it is
// gone), and when it was written.
struct thing {
  std::string name, text;
  int written = 0;
};
using things = std::map<std::string, thing>;  // by a key that stays when the name changes

struct world {
  things all{};
  int clock = 0;
};

thing a_field(const std::string& name, int number, const std::string& descr = "");
// A class, with more of its definition.
thing a_class(const std::string& name, const std::string& rest = "");
// A class with that description, whose one entry is the field F_S.
thing a_user(const std::string& name, const std::string& descr);

// Who deploys the field F_S and the class /s, and another of each.
struct administrator {
  client session;
  world seen{};
  int next = 0;
  bool is_stopped = false;

  explicit administrator(const dm::settings& settings) : session(settings, 20) {}
};
inline const std::string DEPLOYMENT(7, 'b');  // its steps in an order

class modelled : public orders {
 protected:
  using orders::orders;
  void fill() override;

  // The next step.
  void go_on(administrator& by);
  // Something was written, in one transaction.
  void note(const things& written);

  // Has each order of turns run that is drawn, on the same dictionary.
  template <class Run>
  void in_every_order(std::string turns, const std::string& title, Run run) {
    do {
      if (!runs.takes_next()) continue;
      SCOPED_TRACE(title + " " + turns);
      begin();
      run(turns);
      expect_as_told();
    } while (!HasFailure() && std::next_permutation(turns.begin(), turns.end()));
  }

  world now{};
  const administrator* holder = nullptr;  // of the dictionary, in a trial

 private:
  void begin();
  // The dictionary holds what the model does, and breaks no rule.
  void expect_as_told() const;
  bool is_refused(const administrator& by, const things& written) const;
};

#endif
