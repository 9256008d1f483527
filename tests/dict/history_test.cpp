// Random deployments, and the past that the journal tells of them: every earlier state, what
// differs between two of them, and who made each part what it is. TAV_HISTORY="COUNT SEED" asks for
// others.
#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <random>
#include <sstream>

#include "tests/tool/workshop.h"

using items = std::map<std::string, std::string>;  // value by "NAME.NAME.ATTRIBUTE"
using things = std::map<std::string, items>;       // by the name of a field or class

namespace {

struct moment {
  std::string number;
  std::string exported, listed;
  things content;
};

struct entry {
  int field;
  bool is_required, is_audited;
};

struct a_class {
  std::string name, descr;
  std::vector<entry> entries;
};

// What the files say.
struct model {
  std::mt19937 chance;
  std::vector<std::string> descr_of_field{};
  std::vector<a_class> classes{};

  size_t below(size_t end) { return std::uniform_int_distribution<size_t>(0, end - 1)(chance); }
  std::string text() { return "text " + std::to_string(below(1000)); }
};

}  // namespace

// --- Files -----------------------------------------------------------------------------------

static std::string name_of(int field) {
  return "F_" + std::to_string(field);
}

static std::string field_text(const model& all, int field) {
  return "STRING " + name_of(field) + " { ID = " + std::to_string(20000 + field) + "; DESCR = \"" +
         all.descr_of_field[static_cast<size_t>(field)] + "\"; }\n";
}

static std::string entry_text(const entry& one) {
  return "STRING " + name_of(one.field) +
         " { CREATE = " + (one.is_required ? "Required" : "Optional") +
         "; AUDITABLE = " + (one.is_audited ? "1" : "0") + "; }\n";
}

// The last entry stands in an array; in a subclass, which has no table, all do.
static std::string class_text(const a_class& one) {
  std::string stem = one.name, interface, storage;
  std::replace(stem.begin(), stem.end(), '/', '_');
  const bool is_sub = one.name.rfind('/') != 0;
  for (size_t i = 0; i < one.entries.size(); ++i) {
    const bool begins = i == (is_sub ? 0 : one.entries.size() - 1);
    const std::string field = name_of(one.entries[i].field);
    interface += (begins ? "ARRAY A" + stem + " {\n" : "") + entry_text(one.entries[i]);
    storage += (begins ? "ARRAY A" + stem + " { SQL_TABLE = \"t" + stem + "_a\";\n" : "") +
               "STRING " + field + " { SQL_COLUMN = \"" + field + stem + "\"; }\n";
  }
  const std::string end = one.entries.empty() ? "" : "}\n";
  return "STORABLE CLASS " + one.name + " { DESCR = \"" + one.descr + "\";\n" + interface + end +
         "}\nSTORABLE CLASS " + one.name + " IMPLEMENTATION TESSEL7 { " +
         (is_sub ? "" : "SQL_TABLE = \"t" + stem + "\";\n") + storage + end + "}\n";
}

static std::string array_text(const a_class& one, size_t number) {
  std::string stem = one.name;
  std::replace(stem.begin(), stem.end(), '/', '_');
  return "ARRAY A" + stem + " { ID = " + std::to_string(30000 + number) + "; }\n";
}

// --- Deployments -----------------------------------------------------------------------------

static std::string new_fields(model& all) {
  std::string text;
  for (size_t count = 1 + all.below(4); count > 0; --count) {
    all.descr_of_field.push_back(all.text());
    text += field_text(all, static_cast<int>(all.descr_of_field.size()) - 1);
  }
  return text;
}

static void draw_entries(model& all, a_class& one) {
  one.entries.clear();
  for (size_t i = 0; i < all.descr_of_field.size(); ++i) {
    if (all.below(3) == 0) {
      one.entries.push_back({static_cast<int>(i), all.below(2) == 0, all.below(2) == 0});
    }
  }
}

static std::string new_class(model& all) {
  const size_t number = all.classes.size();
  const bool is_sub = number > 0 && all.below(3) == 0;
  a_class one{(is_sub ? all.classes[all.below(number)].name : "") + "/c" + std::to_string(number),
              all.text(),
              {}};
  draw_entries(all, one);
  all.classes.push_back(one);
  return array_text(one, number) + class_text(one);
}

static std::string changed_class(model& all) {
  a_class& one = all.classes[all.below(all.classes.size())];
  if (all.below(2) == 0) one.descr = all.text();
  if (all.below(2) == 0) {
    draw_entries(all, one);
  } else if (!one.entries.empty()) {
    entry& other = one.entries[all.below(one.entries.size())];
    other.is_audited = !other.is_audited;
  }
  return class_text(one);
}

static std::string next_file(model& all) {
  const size_t kind = all.below(5);
  if (all.classes.empty() || kind == 0) return new_fields(all) + new_class(all);
  if (kind == 1) return new_fields(all);
  if (kind == 2) {
    const size_t field = all.below(all.descr_of_field.size());
    all.descr_of_field[field] = all.text();
    return field_text(all, static_cast<int>(field));
  }
  return changed_class(all);
}

// --- What an export says ---------------------------------------------------------------------

static std::string joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
  return text;
}

static std::string key_of(const std::vector<std::string>& path, const std::string& attribute) {
  std::string key;
  for (size_t i = 1; i < path.size(); ++i) key += path[i] + ".";
  return key + attribute;
}

// Words, signs and quoted texts; comments are left out.
static std::vector<std::string> tokens_of(const std::string& text) {
  std::vector<std::string> tokens;
  for (size_t i = 0; i < text.size();) {
    size_t end = i + 1;
    if (text[i] == '#') {
      i = text.find('\n', i);
      continue;
    }
    if (text[i] == '"') {
      end = text.find('"', end) + 1;
    } else if (std::string_view("{}=; \t\n").find(text[i]) == std::string_view::npos) {
      end = text.find_first_of("{}=; \t\n", end);
    }
    if (std::string_view(" \t\n").find(text[i]) == std::string_view::npos) {
      tokens.push_back(text.substr(i, end - i));
    }
    i = end;
  }
  return tokens;
}

static things content_of(const std::string& exported) {
  things result;
  std::vector<std::string> path, words;
  for (const std::string& token : tokens_of(exported)) {
    if (token == "{") {
      const bool is_class = words[0] == "STORABLE";
      path.push_back(words[is_class ? 2 : 1]);
      result[path[0]][key_of(path, "")] = is_class ? "" : words[0];
    } else if (token == ";") {
      result[path[0]][key_of(path, words[0])] = joined({words.begin() + 2, words.end()});
    } else if (token == "}") {
      path.pop_back();
    } else {
      words.push_back(token);
      continue;
    }
    words.clear();
  }
  return result;
}

// --- What tav_dict says ----------------------------------------------------------------------

static std::string ask(const workshop& place, std::vector<std::string> words) {
  words.insert(words.begin(), "dict");
  const run_result result = place.run(words);
  EXPECT_EQ(result.err, "") << joined(words);
  return result.out;
}

static rapidjson::Document json_of(const std::string& text) {
  rapidjson::Document read;
  read.Parse(text.c_str());
  EXPECT_FALSE(read.HasParseError()) << text;
  return read;
}

static moment now(const workshop& place) {
  const std::string log = ask(place, {"log", "--limit", "1"});
  const std::string exported = ask(place, {"export"});
  return {log.substr(0, log.find(' ')), exported, ask(place, {"list"}), content_of(exported)};
}

static std::string text_of(const rapidjson::Value& value) {
  return value.IsString() ? value.GetString() : "";
}

static items blame_of(const workshop& place, const std::string& name) {
  const rapidjson::Document told = json_of(ask(place, {"blame", name, "--json"}));
  items result;
  for (const auto& part : told["parts"].GetArray()) {
    std::vector<std::string> path{name};
    for (const auto& step : part["path"].GetArray()) path.push_back(step.GetString());
    result[key_of(path, text_of(part["attribute"]))] =
        std::to_string(part["deployment"].GetInt64());
  }
  return result;
}

// --- What must be ----------------------------------------------------------------------------

// For each item of the last moment, the deployment after which it had that value without a break.
static items blame_by_exports(const std::vector<moment>& past, const std::string& name) {
  items result;
  for (const auto& [key, value] : past.back().content.at(name)) {
    size_t at = past.size() - 1;
    for (; at > 0; --at) {
      const auto thing = past[at - 1].content.find(name);
      if (thing == past[at - 1].content.end()) break;
      const auto item = thing->second.find(key);
      if (item == thing->second.end() || item->second != value) break;
    }
    result[key] = past[at].number;
  }
  return result;
}

static items differences_of(const rapidjson::Document& told) {
  items result;
  for (const auto& each : told["differences"].GetArray()) {
    result[each["name"].GetString()] = each["change"].GetString();
  }
  return result;
}

static items differences_by_exports(const moment& before, const moment& after) {
  items result;
  for (const auto& [name, content] : after.content) {
    const auto old = before.content.find(name);
    if (old == before.content.end()) {
      result[name] = "new";
    } else if (old->second != content) {
      result[name] = "changed";
    }
  }
  for (const auto& [name, content] : before.content) {
    if (after.content.count(name) == 0) result[name] = "missing";
  }
  return result;
}

static std::pair<size_t, unsigned> count_and_seed() {
  size_t count = 12;
  unsigned seed = 17;
  if (const char* asked = std::getenv("TAV_HISTORY")) std::istringstream(asked) >> count >> seed;
  std::printf("%zu deployments, seed %u\n", count, seed);
  return {count, seed};
}

TEST(history, of_random_deployments_is_told_as_it_was) {
  const auto [count, seed] = count_and_seed();
  const workshop place;
  model all{std::mt19937(seed)};
  std::vector<moment> past{now(place)};
  while (past.size() <= count) {
    place.write("next.def", next_file(all));
    const run_result result = place.run({"replace", "next.def"});
    ASSERT_EQ(result.exit_status, 0) << result.err << place.read("next.def");
    moment next = now(place);
    if (next.number != past.back().number) past.push_back(std::move(next));
  }
  for (const moment& each : past) {
    SCOPED_TRACE(each.number);
    ASSERT_EQ(ask(place, {"export", "--at", each.number}), each.exported);
    ASSERT_EQ(ask(place, {"list", "--at", each.number}), each.listed);
    const moment& other = past[all.below(past.size())];
    const std::string told =
        ask(place, {"diff", "--at", other.number, "--to", each.number, "--json"});
    ASSERT_EQ(differences_of(json_of(told)), differences_by_exports(other, each)) << other.number;
  }
  size_t asked = 0;
  for (const auto& [name, content] : past.back().content) {
    if (asked++ == count) break;
    ASSERT_EQ(blame_of(place, name), blame_by_exports(past, name)) << name;
  }
  EXPECT_GT(asked, 2u);
  const std::string first = past[past.size() / 2].number;
  EXPECT_EQ(ask(place, {"prune", "--before", first, "--yes"}),
            "Forgot " + std::to_string(std::stoi(first) - 1) + " records, all before number " +
                first + ".\n");
  for (size_t i = past.size() / 2; i < past.size(); ++i) {
    ASSERT_EQ(ask(place, {"export", "--at", past[i].number}), past[i].exported) << past[i].number;
  }
  EXPECT_EQ(ask(place, {"export"}), past.back().exported);
  EXPECT_EQ(ask(place, {"check"}), "No findings.\n");
}
