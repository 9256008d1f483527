// A directory's attributes, which the tool drops: here the data manager gets them.
#include "dm/attributes.h"
#include "bench.h"

class attributes : public dictionary {};

TEST_F(attributes, of_a_directory_are_stored_and_stay_where_a_replacement_is_silent) {
  std::string given[2];
  for (const dd_attribute& row : DD_ATTRIBUTES) {
    if ((row.contexts & (DD_IN_LDAP_CLASS | DD_IN_LDAP_ENTRY)) == 0) continue;
    const std::string key(row.key), value = row.kind == dd_value_kind::NUMBER ? "1" : key + "_x";
    given[(row.contexts & DD_IN_LDAP_CLASS) != 0 ? 0 : 1] += " " + key + "=" + value;
  }
  client admin(settings);
  admin.set_fields("");
  EXPECT_EQ(admin.set_fields("STRING S1 3001\n"), "ok");
  const std::string silent[2] = {"/a sql_table=t", "\n  STRING S1 sql_name=c"};
  EXPECT_EQ(admin.set_classes(silent[0] + given[0] + silent[1] + given[1] + "\n"), "ok");
  const std::string stored =
      "{name:/a,sql_table:t,location:location_x,attrvals:[attrvals_x],entry_type:entry_type_x,"
      "link_object:link_object_x,entries:[{name:S1,type:5,sql_name:c,attribute:attribute_x,"
      "rdn_piece:1,multivalued:1,link_attribute:1,objectclasses:[objectclasses_x]}]}\n";
  EXPECT_EQ(admin.classes(), stored);
  EXPECT_EQ(admin.set_classes(silent[0] + silent[1] + "\n"), "ok");
  EXPECT_EQ(admin.classes(), stored);
}
