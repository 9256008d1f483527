// tag: a name for a deployment.
#include <algorithm>
#include <iostream>
#include <memory>

#include "dict/commands.h"
#include "dict/history/writing.h"
#include "dict/options.h"

namespace dict {

namespace {

struct request {
  std::string point;
  std::string name;
};

constexpr size_t LONGEST_TAG = 100;

}  // namespace

// Nothing that could be taken for a number, a time or an option, nor needs quoting.
static bool is_tag(const std::string& name) {
  static constexpr std::string_view LETTERS =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
  static constexpr std::string_view OTHERS = "0123456789._-/+";
  const auto fits = [](char c) {
    return LETTERS.find(c) != LETTERS.npos || OTHERS.find(c) != OTHERS.npos;
  };
  return !name.empty() && name.size() <= LONGEST_TAG && LETTERS.find(name[0]) != LETTERS.npos &&
         std::all_of(name.begin(), name.end(), fits);
}

static int run(const request& asked) {
  dm::problem why;
  reading from;
  int64_t number = 0;
  if (!is_tag(asked.name)) {
    why.sentence = dm::join({dm::quoted(asked.name),
                             " cannot be a tag: expected a letter, then letters, digits and "
                             "'._-/+', at most 100 in all."});
    return fail(why);
  }
  if (!begin_event(from, why) || !find_deployment(*from.store, asked.point, number, why)) {
    return fail(why);
  }
  const std::string detail =
      "{\"number\":" + std::to_string(number) + ",\"name\":\"" + asked.name + "\"}";
  if (!write_event(from, dm::journal_kind::TAG, detail, why) ||
      !from.store->calls->commit(from.store.get(), why)) {
    return fail(why);
  }
  std::cout << "Deployment " << number << " is " << asked.name << " now.\n";
  return DONE;
}

void add_tag(CLI::App& app, int& result) {
  const auto asked = std::make_shared<request>();
  auto* command = app.add_subcommand("tag", "Give a deployment a name, or a name to another one");
  command->add_option("N", asked->point, "The deployment's number, a tag, or a time after '@'")
      ->required();
  command->add_option("NAME", asked->name, "The tag: begins with a letter")->required();
  command->callback([asked, &result] { result = run(*asked); });
}

}  // namespace dict
