// next-id: numbers that no field has.
#include "dict/next_id.h"

#include <charconv>
#include <iostream>
#include <memory>
#include <vector>

#include "dd/field_ids.h"
#include "dict/commands.h"
#include "dict/options.h"
#include "dict/reading.h"

namespace dict {

namespace {

struct request {
  int32_t from = FIRST_OF_ADMINISTRATORS;
  size_t count = 1;
  std::string database;
};

}  // namespace

// Fields come in ascending number, so what lies between two of them is free.
static bool find_free(reading& from, const request& asked, std::vector<int32_t>& free,
                      dm::problem& why) {
  int32_t next = asked.from;
  const auto add_below = [&](int32_t end) {
    for (; next < end && free.size() < asked.count; ++next) free.push_back(next);
  };
  auto look = [&](const dm::field_row& row) {
    add_below(row.number);
    if (row.number == next) ++next;
    return free.size() < asked.count;
  };
  if (!from.store->calls->fields(from.store.get(), from.database.id, {},
                                 dm::visit<dm::field_row>(look), why)) {
    return false;
  }
  add_below(DD_HIGHEST_FIELD_NUMBER + 1);
  return true;
}

static int run(const request& asked) {
  dm::problem why;
  reading from;
  std::vector<int32_t> free;
  if (!begin_reading(asked.database, from, why) || !find_free(from, asked, free, why)) {
    return fail(why);
  }
  if (free.size() < asked.count) {
    why.sentence =
        dm::join({"From ", std::to_string(asked.from),
                  " up only so many numbers are free: ", std::to_string(free.size()), "."});
    return fail(why);
  }
  for (const int32_t number : free) std::cout << number << '\n';
  return DONE;
}

void add_next_id(CLI::App& app, int& result) {
  const auto asked = std::make_shared<request>();
  auto* command = app.add_subcommand("next-id", "Give numbers that new fields can have");
  const CLI::Validator is_number(
      [](const std::string& text) {
        int32_t number = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        const bool is_whole = error == std::errc() && end == text.data() + text.size();
        return is_whole && text[0] != '0' && number > 0 && number <= DD_HIGHEST_FIELD_NUMBER
                   ? std::string()
                   : dm::join({dm::quoted(text), " is no number from 1 to ",
                               std::to_string(DD_HIGHEST_FIELD_NUMBER)});
      },
      "");
  command->add_option("count", asked->count, "How many; one without it")
      ->check(is_number)
      ->type_name("NUMBER");
  command->add_option("--from", asked->from, "The lowest number; 10000 without it")
      ->check(is_number)
      ->type_name("NUMBER");
  add_database_option(*command, asked->database);
  command->callback([asked, &result] { result = run(*asked); });
}

}  // namespace dict
