// What somebody did to the tables of a dictionary on a server, as `tav_dict check` names it.
#include <sstream>

#include "dict/check/check.h"
#include "dm/open.h"
#include "dm/predefined.h"
#include "server.h"

static std::string told_by_check(const dm::settings& settings) {
  dm::problem why;
  const dm::store_owner store = dm::open_dictionary(settings, {}, why);
  messages_sent = 0;
  std::ostringstream told;
  dict::checker check(*store, told);
  EXPECT_TRUE(store->calls->begin(store.get(), false, why) && dict::check_store(check));
  return told.str();
}

static int messages_of_check(const dm::settings& settings) {
  EXPECT_EQ(told_by_check(settings), "");
  return messages_sent;
}

// Rows come in chunks of 500, keys alone as a whole. A check reads the classes twice, by themselves
// and for the journal, and their tables twice, by themselves and for the rules.
TEST_F(on_a_server, a_check_asks_for_lists_and_for_no_single_row) {
  client admin(settings);
  EXPECT_EQ(admin.set_fields("ARRAY F_MANY 5000\n"), "ok");
  EXPECT_EQ(
      admin.set_classes("/a sql_table=t\n  ARRAY F_MANY sql_name=u\n    ARRAY F_MANY sql_name=v\n"),
      "ok");
  const int few = messages_of_check(settings);
  EXPECT_LT(few, static_cast<int>(dm::predefined_fields().size()));
  std::string classes;
  for (int i = 0; i < 1000; ++i) {
    const std::string number = std::to_string(i);
    classes += "/b" + number + " sql_table=t" + number + "\n";
    if (i % 2 == 0) classes.insert(classes.size() - 1, "\n  ARRAY F_MANY sql_name=u" + number);
  }
  EXPECT_EQ(admin.set_classes(classes), "ok");
  EXPECT_EQ(messages_of_check(settings) - few, 2 * 1000 / 500 + 2 * 1500 / 500);
}

TEST_F(on_a_server, what_was_altered_is_named_and_nothing_else) {
  const struct {
    const char *change, *undo, *found;
  } rows[] = {
      {"", "", ""},
      {"ALTER TABLE dd_tables DROP CONSTRAINT dd_tables_class_fkey;"
       "INSERT INTO dd_tables VALUES (1, 't', 't', 999), (1, 'u', 'u', 999)",
       "DELETE FROM dd_tables; ALTER TABLE dd_tables ADD FOREIGN KEY (class) REFERENCES dd_classes",
       "The constraint FOREIGN KEY (class) REFERENCES dd_classes(id) of dd_tables is missing.\n"
       "A row of dd_tables names a row of dd_classes that is not there.\n"
       "A row of dd_tables names a row of dd_classes that is not there.\n"},
      {"ALTER TABLE dd_tables DISABLE TRIGGER ALL", "ALTER TABLE dd_tables ENABLE TRIGGER ALL",
       "The constraint FOREIGN KEY (class) REFERENCES dd_classes(id) of dd_tables is switched off; "
       "this program makes it enforced.\n"
       "The constraint FOREIGN KEY (database) REFERENCES dd_databases(id) of dd_tables is switched "
       "off; this program makes it enforced.\n"},
      {"ALTER TABLE dd_fields ADD CHECK (number < 5000)",
       "ALTER TABLE dd_fields DROP CONSTRAINT dd_fields_number_check1",
       "The constraint CHECK ((number < 5000)) of dd_fields is none of a dictionary's.\n"},
      {"CREATE FUNCTION f() RETURNS trigger LANGUAGE plpgsql AS 'BEGIN RETURN NULL; END';"
       "CREATE TRIGGER eats BEFORE INSERT ON dd_fields FOR EACH ROW EXECUTE FUNCTION f()",
       "DROP FUNCTION f CASCADE", "The trigger eats of dd_fields is none of a dictionary's.\n"},
      {"CREATE RULE eats AS ON DELETE TO dd_tables DO INSTEAD NOTHING",
       "DROP RULE eats ON dd_tables", "The rule eats of dd_tables is none of a dictionary's.\n"},
      {"ALTER TABLE dd_classes ENABLE ROW LEVEL SECURITY; CREATE POLICY p ON dd_classes",
       "DROP POLICY p ON dd_classes; ALTER TABLE dd_classes DISABLE ROW LEVEL SECURITY",
       "The policy p of dd_classes is none of a dictionary's.\n"
       "The row security of dd_classes is none of a dictionary's.\n"},
      {"ALTER TABLE dd_databases FORCE ROW LEVEL SECURITY",
       "ALTER TABLE dd_databases NO FORCE ROW LEVEL SECURITY",
       "The forced row security of dd_databases is none of a dictionary's.\n"},
      {"ALTER TABLE dd_tables SET UNLOGGED", "ALTER TABLE dd_tables SET LOGGED",
       "The table dd_tables is UNLOGGED TABLE; this program makes it TABLE.\n"},
      {"DROP VIEW dd_class_fields, dd_class_attributes, dd_class_nodes;"
       "ALTER TABLE dd_fields ALTER descr TYPE VARCHAR(2000), ALTER descr SET DEFAULT 'none';"
       "ALTER TABLE dd_classes ALTER definition TYPE JSONB; CREATE TABLE dd_class_nodes ()",
       "",
       "The column definition of dd_classes is JSONB NOT NULL; this program makes it JSON NOT NULL."
       "\nThe column descr of dd_fields is CHARACTER VARYING(2000) DEFAULT 'none'::character "
       "varying; "
       "this program makes it TEXT.\n"
       "The view dd_class_nodes is TABLE; this program makes it VIEW.\n"
       "The view dd_class_attributes is missing.\nThe view dd_class_fields is missing.\n"},
  };
  const dm::store_owner store = [this] {
    dm::problem why;
    return dm::open_dictionary(settings, {}, why);
  }();
  for (const auto& row : rows) {
    query(row.change);
    dm::problem why;
    std::string found;
    auto note = [&](const std::string_view& text) { return (found += text) += '\n', true; };
    EXPECT_TRUE(store->calls->integrity(store.get(), dm::visit<std::string_view>(note), why));
    EXPECT_EQ(found, row.found);
    query(row.undo);
  }
}

TEST_F(on_a_server, what_cannot_be_read_is_a_finding) {
  for (const auto& [change, found] :
       {std::pair{"ALTER TABLE dd_journal DISABLE TRIGGER ALL, ALTER reason DROP NOT NULL;"
                  "UPDATE dd_journal SET reason = NULL",
                  ": a row of it is damaged.\n"},
        {"DROP TABLE dd_tables", ": it does not hold what a dictionary holds"}}) {
    query(change);
    const std::string told = told_by_check(settings);
    EXPECT_NE(told.find(found), told.npos) << told;
  }
}
