// What a sink receives: the ids and subjects of an import's findings, several runs in one process.
#include <gtest/gtest.h>

#include <sstream>

#include "deploy/import/import.h"
#include "dparse/read/reader.h"

static const char* or_dash(const char* text) {
  return text != nullptr ? text : "-";
}

// "id class/related side path table.column attribute", "chain" or "failure" before those of a kind.
static void take(void* context, const deploy::finding_record& record) {
  std::ostringstream line;
  if (record.row.kind == deploy::finding_kind::CHAIN) line << "chain ";
  if (record.row.kind == deploy::finding_kind::FAILURE) line << "failure ";
  const deploy::subject& about = record.about;
  const bool is_interface = about.side == deploy::definition_side::INTERFACE;
  line << record.row.id << ' ' << or_dash(about.class_name) << ' ' << or_dash(about.related_class)
       << (is_interface ? " interface" : " implementation");
  for (const auto& name : deploy::path_of(about, SIZE_MAX)) line << ' ' << name;
  line << " | " << or_dash(about.table) << ' ' << or_dash(about.column) << ' '
       << or_dash(about.attribute) << '\n';
  *static_cast<std::string*>(context) += line.str();
  EXPECT_GT(record.site.line, 0);
}

static constexpr char FIELDS[] =
    "STRING F_S { ID = 20001; } INT F_I { ID = 20002; } ARRAY F_A { ID = 20003; }\n"
    "ARRAY F_B { ID = 20004; } SUBSTRUCT F_U { ID = 20005; }\n";

// All steps of the import but login and commit, on an empty dictionary.
static void import(const std::string& text) {
  tav_deploy_verify_status = tav_deploy_conflict_status = 1;
  const std::string file = testing::TempDir() + "findings.def";
  std::FILE* stream = std::fopen(file.c_str(), "w");
  std::fputs(text.c_str(), stream);
  std::fclose(stream);
  tav_deploy_ctx_t ctx{};
  ctx.mode = TAV_DEPLOY_MODE_VERIFY;
  ctx.names[ctx.name_count++] = file.c_str();
  deploy::import_state state{.ctx = &ctx};
  state.server_fields.reset(tav_flist_create(nullptr));
  state.server_classes.reset(tav_flist_create(nullptr));
  for (const auto step : {deploy::import_read, deploy::import_fields, deploy::import_classes,
                          deploy::import_order, deploy::import_structure, deploy::import_storage}) {
    if (step(state) < 1) return;
  }
}

static std::string told(const std::string& text) {
  testing::internal::CaptureStderr();
  import(text);
  return testing::internal::GetCapturedStderr();
}

TEST(findings, reach_a_sink_with_what_they_are_about) {
  static const struct {
    const char* definitions;  // beside FIELDS
    const char* records;
  } rows[] = {
      {"STORABLE CLASS /a/b { STRING F_S { MODIFY = SYSTEM; } }\n",
       "missing-superclass /a/b /a interface | - - -\n"
       "field-outside-array /a/b - interface F_S | - - -\n"
       "system-field-in-subclass /a/b - interface F_S | - - MODIFY\n"
       "column-without-table /a/b - implementation F_S | - - -\n"
       "chain server-storage-not-collected - - interface | - - -\n"},
      {"STORABLE CLASS /a { ARRAY F_A { ARRAY F_B { STRING F_S { } STRING F_S { } INT F_X { } } } "
       "}\n"
       "STORABLE CLASS /a IMPLEMENTATION TESSEL7 { SQL_TABLE = \"t\"; ARRAY F_A { SQL_TABLE = "
       "\"u\";\n"
       "  ARRAY F_B { SQL_TABLE = \"T\"; INT F_S { SQL_COLUMN = \"c\"; } INT F_Y { } } } }\n",
       "implementation-type-mismatch /a - implementation F_A F_B F_S | - - -\n"
       "missing-field-interface /a - implementation F_A F_B F_Y | - - -\n"
       "missing-field-definition /a - interface F_A F_B F_X | - - -\n"
       "repeated-field /a - interface F_A F_B F_S | - - -\n"
       "repeated-field /a - interface F_A F_B F_S | - - -\n"
       "missing-column /a - implementation F_A F_B F_S | T - SQL_COLUMN\n"
       "field-not-defined /a - interface F_A F_B F_X | - - -\n"
       "missing-column /a - implementation F_A F_B F_X | T - SQL_COLUMN\n"
       "missing-column /a - implementation F_A F_B F_S | T - SQL_COLUMN\n"
       "field-not-defined /a - interface F_A F_B F_X | - - -\n"
       "missing-column /a - implementation F_A F_B F_X | T - SQL_COLUMN\n"
       "repeated-table /a /a implementation | t - SQL_TABLE\n"
       "repeated-table /a /a implementation F_A F_B | T - SQL_TABLE\n"},
      {"STORABLE CLASS /a { ARRAY F_A { STRING F_S { } INT F_I { } } }\n"
       "STORABLE CLASS /a IMPLEMENTATION TESSEL7 { SQL_TABLE = \"t\"; ARRAY F_A { SQL_TABLE = "
       "\"u\";\n"
       "  STRING F_S { SQL_COLUMN = \"c\"; } INT F_I { SQL_COLUMN = \"C\"; } } }\n"
       "STORABLE CLASS /a/b { ARRAY F_A { } SUBSTRUCT F_U { SUBSTRUCT F_U { } } }\n"
       "STORABLE CLASS /a/b IMPLEMENTATION TESSEL7 { ARRAY F_A { SQL_TABLE = \"v\"; }\n"
       "  SUBSTRUCT F_U { SQL_TABLE = \"t\"; SUBSTRUCT F_U { SQL_TABLE = \"w\"; } } }\n",
       "array-in-related-class /a /a/b interface F_A | - - -\n"
       "nested-substruct /a/b - interface F_U F_U | - - -\n"
       "array-in-related-class /a/b /a interface F_A | - - -\n"
       "repeated-table /a /a/b implementation | t - SQL_TABLE\n"
       "repeated-column /a - implementation F_A F_I | u C SQL_COLUMN\n"
       "repeated-table /a/b /a implementation F_U | t - SQL_TABLE\n"},
      {"INT F_S { ID = 20001; }\n", "syntax-error - - interface | - - -\n"},
      {"STRING F_Z { ID = 20001; }\n", "field-number-in-use - - interface F_Z | - - ID\n"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.definitions);
    std::string records;
    deploy::set_sink(take, &records);
    const std::string with_sink = told(std::string(FIELDS) + row.definitions);
    deploy::set_sink(nullptr, nullptr);
    EXPECT_EQ(records, row.records);
    EXPECT_EQ(told(std::string(FIELDS) + row.definitions), with_sink);
    EXPECT_EQ(records, row.records) << "nothing is received any more";
  }
}

// Names longer than any buffer of ours are told whole.
TEST(findings, are_told_as_sentences) {
  const std::string name = '/' + std::string(5000, 'x');
  std::string sentence;
  const auto keep = [](void* to, const deploy::finding_record& record) {
    *static_cast<std::string*>(to) = record.sentence;
  };
  static constexpr char MODULE[] = "test";
  deploy::set_sink(keep, &sentence);
  testing::internal::CaptureStderr();
  deploy::report(HERE, "array-in-related-class",
                 {.class_name = "/a", .related_class = name.c_str(), .field = "F"});
  const std::string line = testing::internal::GetCapturedStderr();
  EXPECT_EQ(sentence, "Error: Array or Substruct conflict in class hierarchy " + name + ", /a, F");
  EXPECT_EQ(line, sentence + "\n");
  deploy::report(HERE, "conflicts-committed");
  EXPECT_EQ(sentence, "Warning: Conflicts Detected...attempting to commit/replace");
  deploy::set_sink(nullptr, nullptr);
}
