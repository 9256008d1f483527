// What the tool says does not depend on the key of its hashes: two programs with a fixed one each.
#include <gtest/gtest.h>

#include <sstream>

#include "tests/tool/workshop.h"

namespace {

std::string array(const std::string& name) {
  return "ARRAY " + name + " { ORDER = 0; STRING S { ORDER = 0; LENGTH = 9; } }\n";
}

// A base class with ten arrays, of which classes below it have some again.
std::string definitions() {
  std::string text = "STRING S { ID = 20099; }\n";
  std::string base;
  for (int i = 0; i < 10; ++i) {
    const std::string name = "A" + std::to_string(i);
    text += "ARRAY " + name + " { ID = " + std::to_string(20000 + i) + "; }\n";
    base += array(name);
  }
  return text + "STORABLE CLASS /k { " + base + "}\nSTORABLE CLASS /k/x { " + array("A3") +
         array("a1") + "}\nSTORABLE CLASS /K/other { " + array("A5") +
         "}\nSTORABLE CLASS /k/x/y { " + array("A3") + "}\n";
}

const char CONFLICTS[] =
    "/k/x, /k, A1\n"
    "/k/x, /k, A3\n"
    "/k/x/y, /k, A3\n"
    "/k, /k/x, A3\n"
    "/k/x/y, /k/x, A3\n"
    "/k, /k/x, a1\n"
    "/k, /k/x/y, A3\n"
    "/k/x, /k/x/y, A3\n";

std::string conflicts_in(const std::string& err) {
  const std::string head = "Error: Array or Substruct conflict in class hierarchy ";
  std::string found;
  std::istringstream lines(err);
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with(head)) found += line.substr(head.size()) + '\n';
  }
  return found;
}

}  // namespace

TEST(keys_of_hashes, change_nothing_that_is_told) {
  const workshop place;
  place.write("a.def", definitions());
  ASSERT_EQ(place
                .run({"create", TAV_EXAMPLES "/fields.def", TAV_EXAMPLES "/subscribers.def",
                      TAV_EXAMPLES "/devices.def"})
                .exit_status,
            0);
  const std::vector<std::vector<std::string>> runs = {
      {"verify", "a.def"},
      {"verify", TAV_EXAMPLES "/subscribers.def", TAV_EXAMPLES "/fields.def"},
      {"class", "-nmcps"},
      {"field"}};
  for (const auto& words : runs) {
    SCOPED_TRACE(words.back());
    run_options one;
    run_options other;
    one.program = TAV_DEPLOY_KEY_1;
    other.program = TAV_DEPLOY_KEY_2;
    const run_result a = place.run(words, one);
    const run_result b = place.run(words, other);
    EXPECT_EQ(a.out, b.out);
    EXPECT_EQ(a.err, b.err);
    EXPECT_EQ(a.log, b.log);
    EXPECT_EQ(a.exit_status, b.exit_status);
    if (words.back() == "a.def") {
      EXPECT_EQ(conflicts_in(a.err), CONFLICTS);
    }
  }
}
