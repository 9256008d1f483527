// prune: forgets the way to a state, and keeps the state.
#include <iostream>
#include <memory>

#include "dict/commands.h"
#include "dict/history/moments.h"
#include "dict/history/writing.h"
#include "dict/options.h"
#include "dict/terminal/question.h"

namespace dict {

namespace {

struct request {
  std::string before;
  bool is_sure = false;
};

// What would be forgotten.
struct forgotten {
  int64_t before = 0;   // the first record that stays
  int64_t records = 0;  // how many go
  std::string hash{};   // of the last that goes
};

}  // namespace

// The first record that stays: a deployment's first, never one amid its records.
static bool find_cut(dm::store& store, const std::string& text, int64_t& cut, dm::problem& why) {
  if (text.rfind('@', 0) != 0) return find_deployment(store, text, cut, why);
  int64_t last = 0;
  if (!find_point(store, text, last, why)) return false;
  cut = last + 1;
  const auto look = [&](const dm::journal_record& record) {
    if (record.number >= cut && record.deployment < cut) cut = record.deployment;
    return true;
  };
  return dm::walk_records(store, {last}, look, why);
}

// What goes where all records before that one do.
static bool count_forgotten(dm::store& store, int64_t before, forgotten& found, dm::problem& why) {
  found.before = before;
  const auto count = [&](const dm::journal_record& record) {
    return ++found.records, found.hash = record.hash, true;
  };
  return before <= 1 || dm::walk_records(store, {0, before - 1}, count, why);
}

static bool find_forgotten(const std::string& text, forgotten& found, dm::problem& why) {
  reading from;
  int64_t cut = 0;
  return begin_history(from, why) && find_cut(*from.store, text, cut, why) &&
         count_forgotten(*from.store, cut, found, why);
}

// Asks a person. A script must say --yes.
static bool is_meant(const forgotten& found, dm::problem& why) {
  if (!can_ask()) {
    why.sentence =
        "'prune' cannot be taken back, and there is nobody to ask; --yes says that it is meant.";
    return false;
  }
  const std::string question = "Forget " + std::to_string(found.records) +
                               " records, all before number " + std::to_string(found.before) +
                               "? What they tell is lost for good.";
  if (agrees(question)) return true;
  why.sentence = "Nothing was forgotten.";
  return false;
}

// While a person thinks nobody is kept waiting: what was found then must be so under the lock.
static bool forget(const forgotten& found, dm::problem& why) {
  reading from;
  forgotten again;
  if (!begin_event(from, why) || !count_forgotten(*from.store, found.before, again, why)) {
    return false;
  }
  if (again.records != found.records || again.hash != found.hash) {
    why.sentence = "Another process has pruned the journal meanwhile; look with 'tav_dict log'.";
    return false;
  }
  dm::store* store = from.store.get();
  const std::string detail =
      "{\"before\":" + std::to_string(found.before) + ",\"hash\":\"" + found.hash + "\"}";
  return write_event(from, dm::journal_kind::PRUNE, detail, why) &&
         store->calls->forget_records(store, found.before, why) && store->calls->commit(store, why);
}

static int run(const request& asked) {
  dm::problem why;
  forgotten found;
  if (!find_forgotten(asked.before, found, why)) return fail(why);
  if (found.records == 0) {
    std::cout << "The journal has nothing older.\n";
    return DONE;
  }
  if ((!asked.is_sure && !is_meant(found, why)) || !forget(found, why)) return fail(why);
  std::cout << "Forgot " << found.records << (found.records == 1 ? " record" : " records")
            << ", all before number " << found.before << ".\n";
  return DONE;
}

void add_prune(CLI::App& app, int& result) {
  const auto asked = std::make_shared<request>();
  auto* command = app.add_subcommand(
      "prune", "Forget the older part of the journal; what the dictionary holds stays");
  command
      ->add_option("--before", asked->before,
                   "The first deployment that stays: its number, its tag, or a time after '@'")
      ->required();
  command->add_flag("--yes", asked->is_sure, "Do not ask");
  command->callback([asked, &result] { result = run(*asked); });
}

}  // namespace dict
