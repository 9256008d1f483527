#include "ways.h"

#include "dm/changes/back.h"

std::string class_wanted(const std::string& descr) {
  return "/s sql_table=ts descr=" + descr + "\n  STRING F_S sql_name=c\n";
}

void deploy_twice(const dm::settings& settings) {
  for (const std::string descr : {"first", "old"}) {
    client each(settings);
    EXPECT_EQ(each.set_fields("STRING F_S 5000 " + descr + "\n"), "ok");
    EXPECT_EQ(each.set_classes(class_wanted(descr)), "ok");
  }
}

static bool find_renamed(dm::store& store, std::vector<dm::wanted_thing>& wanted,
                         dm::problem& why) {
  std::optional<std::string> field, storable;
  if (!dm::present_state(store, 1, dm::change_of::FIELD, "F_S", field, why) ||
      !dm::present_state(store, 1, dm::change_of::CLASS, "/s", storable, why))
    return false;
  for (std::string* state : {&*field, &*storable}) state->replace(state->find("F_S"), 3, "F_R");
  wanted = {{dm::change_of::FIELD, "F_S", {}},
            {dm::change_of::FIELD, "F_R", field},
            {dm::change_of::CLASS, "/s", storable}};
  return true;
}

bool find_wanted(way which, dm::store& store, std::vector<dm::wanted_thing>& wanted,
                 dm::problem& why) {
  std::vector<dm::refused_change> refused;
  if (which == RENAME) return find_renamed(store, wanted, why);
  if (which == DROP) return wanted = {{dm::change_of::CLASS, "/s", {}}}, true;
  return dm::find_undone(store, {1, 1, 0}, 5, wanted, refused, why) && refused.empty();
}
