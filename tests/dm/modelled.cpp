#include "modelled.h"

#include <sstream>

#include "dict/check/check.h"
#include "ways.h"

enum step { FETCH, FETCH_CLASSES, TRY_FIELDS, TRY_CLASSES, END_TRIAL, FIELDS, CLASSES };

thing a_field(const std::string& name, int number, const std::string& descr) {
  const std::string about = descr.empty() ? "" : " " + descr;
  return {name, dm::join({"STRING ", name, " ", std::to_string(number), about, "\n"})};
}

thing a_class(const std::string& name, const std::string& rest) {
  return {name, dm::join({"{name:", name, ",sql_table:t", name.substr(1), rest, "}\n"})};
}

thing a_user(const std::string& name, const std::string& descr) {
  return a_class(name, dm::join({",descr:", descr, ",entries:[{name:F_S,type:5,sql_name:c}]"}));
}

// What the deployment writes, in two transactions.
static const things DEPLOYED_FIELDS = {{"f5000", a_field("F_S", 5000, "new")},
                                       {"f5001", a_field("F_A", 5001)}};
static const things DEPLOYED_CLASSES = {
    {"k/a", a_class("/a")}, {"k/s", a_user("/s", "new")}, {"tta", {"/a", ""}}};

void modelled::fill() {
  deploy_twice(settings);
}

void modelled::begin() {
  start_anew();
  now = {
      {{"f5000", a_field("F_S", 5000, "old")}, {"k/s", a_user("/s", "old")}, {"tts", {"/s", ""}}}};
  holder = nullptr;
}

void modelled::note(const things& written) {
  ++now.clock;
  for (auto [key, one] : written) {
    one.written = now.clock;
    now.all[key] = one;
  }
}

static std::string carry_out(administrator& by, int step) {
  const std::string mark = by.seen.all["f5000"].name == "F_S" ? "!" : "";
  const std::string fields = "STRING F_S 5000" + mark + " new\nSTRING F_A 5001\n";
  if (step == FETCH) return by.session.fields(), "ok";
  if (step == FETCH_CLASSES) return by.session.classes(), "ok";
  if (step == END_TRIAL) return by.session.delete_fields("STRING F_A 5001\n");
  if (step == TRY_FIELDS || step == FIELDS) return by.session.set_fields(fields);
  return by.session.set_classes(class_wanted("new") + "/a sql_table=ta\n",
                                step == TRY_CLASSES ? 128 : 0);
}

// What it knew was written since, or what it adds is there.
bool modelled::is_refused(const administrator& by, const things& written) const {
  return std::ranges::any_of(written, [&](const auto& each) {
    const auto found = now.all.find(each.first);
    return found != now.all.end() &&
           (by.seen.all.count(each.first) == 0 || found->second.written > by.seen.clock ||
            found->second.name != each.second.name);
  });
}

void modelled::go_on(administrator& by) {
  const int step = by.next++;
  if (by.is_stopped && step != END_TRIAL) return;
  const bool is_of_fields = step == TRY_FIELDS || step == FIELDS;
  const things& written = is_of_fields ? DEPLOYED_FIELDS : DEPLOYED_CLASSES;
  if (step == FETCH) by.seen = now;
  if (step == TRY_FIELDS) holder = &by;
  if (step == END_TRIAL) holder = nullptr;
  const bool refused = step >= TRY_FIELDS && step != END_TRIAL && is_refused(by, written);
  by.is_stopped = by.is_stopped || refused;
  EXPECT_EQ(carry_out(by, step) != "ok", refused) << "deployment's step " << step;
  if (!refused && step >= FIELDS) note(written);
}

void modelled::expect_as_told() const {
  std::string expected;
  for (const auto& [key, one] : now.all) expected += one.text;
  const std::string told = journal_state(settings, JOURNAL_PRESENT);
  EXPECT_EQ(told.substr(told.find("STRING F_")), expected);
  std::ostringstream findings;
  opened from(settings);
  dict::checker checked(*from.store, findings);
  EXPECT_TRUE(dict::check_store(checked));
  EXPECT_EQ(findings.str(), "");
}
