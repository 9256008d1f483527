// The import's passes on lists that no definition file and no dictionary of ours can give them.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <sstream>

#include "dd/values.h"
#include "dd/walk.h"
#include "deploy/import/checks/hierarchy.h"
#include "deploy/import/checks/tables.h"
#include "deploy/import/import.h"
#include "tests/deploy/memory.h"

static constexpr char MODULE[] = "test";

static const struct {
  const char* word;
  uint32_t field;
} FIELDS[] = {{"field", TAV_FLD_FIELD},  {"class", TAV_FLD_OBJ_DESC},  {"entry", TAV_FLD_OBJ_ELEM},
              {"Name", TAV_FLD_NAME},    {"name", TAV_FLD_FIELD_NAME}, {"type", TAV_FLD_FIELD_TYPE},
              {"id", TAV_FLD_FIELD_NUM}, {"descr", TAV_FLD_DESCR},     {"mark", TAV_FLD_FLAGS},
              {"sql", TAV_FLD_SQL_TABLE}};

static uint32_t field_of(const std::string& word) {
  for (const auto& row : FIELDS) {
    if (word == row.word) return row.field;
  }
  throw std::runtime_error("unknown word " + word);
}

// "field( name=F type=5 ) ..." into a list; values have "_" for a blank.
static void fill(tav_flist_t* list, std::istream& text) {
  tav_ebuf ebuf{};
  for (std::string word; text >> word && word != ")";) {
    const size_t equals = word.find('=');
    if (equals == std::string::npos) {
      const uint32_t array = field_of(word.substr(0, word.size() - 1));
      const int32_t id = tav_flist_elem_count(list, array, &ebuf);
      fill(tav_flist_elem_add(list, array, id, &ebuf), text);
      continue;
    }
    const uint32_t field = field_of(word.substr(0, equals));
    std::string value = word.substr(equals + 1);
    std::replace(value.begin(), value.end(), '_', ' ');
    if (DD_FIELD_ID_TYPE(field) == TAV_FLDT_STRING) {
      dd_set_text(list, field, value.c_str(), &ebuf);
    } else {
      dd_set_int(list, field, std::stoi(value), &ebuf);
    }
  }
  ASSERT_EQ(ebuf.err_code, 0);
}

static dd_flist list_of(const char* text) {
  dd_flist list(tav_flist_create(nullptr));
  std::istringstream in(text);
  fill(list.get(), in);
  return list;
}

// The list as such a text, element ids with the words ("field0(").
static std::string text_of(tav_flist_t* list) {
  tav_ebuf ebuf{};
  std::ostringstream text;
  for (const auto& row : FIELDS) {
    if (DD_FIELD_ID_TYPE(row.field) == TAV_FLDT_ARRAY) {
      dd_walk walk(list, row.field);
      while (tav_flist_t* element = walk.next(&ebuf)) {
        text << row.word << walk.id() << "( " << text_of(element) << ") ";
      }
    } else if (DD_FIELD_ID_TYPE(row.field) == TAV_FLDT_STRING) {
      const char* value = dd_text_or_null(list, row.field, &ebuf);
      if (value != nullptr) text << row.word << '=' << value << ' ';
    } else if (const int32_t* value = dd_int_or_null(list, row.field, &ebuf)) {
      text << row.word << '=' << *value << ' ';
    }
  }
  return text.str();
}

// What a pass gives, prints on standard error, and raises: "1 error conflict|...".
template <class Pass>
static std::string outcome(Pass pass) {
  tav_deploy_verify_status = tav_deploy_conflict_status = 1;
  testing::internal::CaptureStderr();
  std::string text = std::to_string(pass());
  if (tav_deploy_get_error() < 1) text += " error";
  if (tav_deploy_get_conflict() < 1) text += " conflict";
  return text + "|" + testing::internal::GetCapturedStderr();
}

TEST(fields_pass, judges_a_repeated_definition_against_the_first) {
  static const struct {
    uint32_t mode;
    const char* server;
    const char* input;
    const char* outcome;
    const char* input_after;
    const char* working;
  } rows[] = {
      {TAV_DEPLOY_MODE_CREATE, "",
       "field( name=F type=5 id=7 ) field( name=f type=5 id=7 descr=d )",
       "1|Warning: Duplicate field definition f, keeping old\n",
       "field0( name=F type=5 id=7 mark=1 ) ", ""},
      {TAV_DEPLOY_MODE_REPLACE, "",
       "field( name=F type=5 id=7 ) field( name=f type=5 id=7 descr=d ) field( name=F type=5 id=7 "
       "descr= )",
       "1 conflict|Warning: Duplicate field definition f, replacing description\n"
       "Warning: Duplicate field definition F, replacing description\n",
       "field0( name=F type=5 id=7 mark=1 ) field1( name=f type=5 id=7 descr=d ) "
       "field2( name=F type=5 id=7 descr= ) ",
       ""},
      {TAV_DEPLOY_MODE_REPLACE, "field( name=F type=5 id=7 descr=old )",
       "field( name=f type=5 id=7 descr=d )",
       "1 conflict|Warning: Duplicate field definition f, replacing description\n",
       "field0( name=f type=5 id=7 descr=d mark=1 ) ", "field0( name=F type=5 id=7 descr=d ) "},
      {TAV_DEPLOY_MODE_VERIFY, "field( name=A type=5 )", "field( name=B ) field( name=a id=1 )",
       "1 error conflict|Error: Conflicting field definition B, id in use by different field\n"
       "Error: Conflicting field definition a, different type\n",
       "field0( name=B ) field1( name=a id=1 mark=1 ) ", "field0( name=A type=5 ) "},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.input);
    tav_deploy_ctx_t ctx{};
    ctx.mode = row.mode;
    deploy::import_state state{.ctx = &ctx};
    state.fields.give(list_of(row.input));
    state.server_fields = list_of(row.server);
    EXPECT_EQ(outcome([&] { return deploy::import_fields(state); }), row.outcome);
    EXPECT_EQ(text_of(state.fields.get()), row.input_after);
    EXPECT_EQ(text_of(state.working_fields.get()), row.working);
  }
}

TEST(table_counts, a_shared_serializable_table_counts_once) {
  deploy::table_uses tables{.keeps_entries = true};
  for (const char* name : {"a", "b", "A", "s", "S", "t", "a"}) {
    deploy::add_table(tables, {name});
  }
  for (const size_t shared : {4u, 5u}) tables.uses[shared].is_serializable = true;
  deploy::table_counts counts{tables};
  for (const auto& [name, count] :
       {std::pair{"A", 3}, {"B", 1}, {"s", 1}, {"T", 1}, {"none", 0}, {"", 0}}) {
    EXPECT_EQ(tav_deploy_count_table_by_name(counts, name), count) << name;
  }
}

TEST(columns, are_collected_from_what_the_definitions_say) {
  static const struct {
    const char* entries;
    const char* outcome;
    const char* tables;
  } rows[] = {
      {"entry( name=B sql=C=c_T=t )", "1|", "t("},
      {"entry( name=B sql=T=t_C=c )",
       "1 error|Error: missing column name for BUF field B in table: t\n", "t("},
      {"entry( name=B sql=C=c )", "1 error|Error: missing table name for BUF field B\n", ""},
      {"entry( name=B sql=C=_T= )",
       "1 error|Error: missing table name for BUF field B\n"
       "Error: missing column name for BUF field B in table: \n",
       ""},
      {"entry( name=B sql= )", "1 error|Error: missing table name and column name for BUF: B\n",
       ""},
      {"entry( name=N sql=c ) entry( name=S sql=d )",
       "-1 error|Error: Field N has no type definition\nError: Column without Table\n", ""},
      {"entry( name=a sql=t entry( name=S sql=c ) entry( name=X ) )",
       "1 error|Error: Field X not defined\nError: missing column name for field X in table: t\n",
       "t(c)"},
      {"entry( name=A entry( name=A sql=t ) entry( name=S sql=c ) )",
       "-1 error|Error: missing tablename for array/substruct: A\nError: Column without Table\n"
       "Error: while determining table/column names\n",
       "t("},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.entries);
    dd_list fields(DD_TYPED_FIELDS, list_of("field( name=A type=9 ) field( name=B type=6 ) "
                                            "field( name=S type=5 ) field( name=N )"));
    const dd_flist container = list_of(row.entries);
    deploy::table_uses tables{.keeps_entries = true};
    tav_ebuf ebuf{};
    std::vector<deploy::class_entry> records;
    const auto entries = deploy::read_entries(records, container.get(), &ebuf);
    deploy::read_all_storage(entries, &ebuf);
    deploy::find_definitions(entries, fields);
    EXPECT_EQ(outcome([&] {
                return tav_deploy_get_table_columns(tables, deploy::NO_PLACE, entries, nullptr,
                                                    "/c");
              }),
              row.outcome);
    std::string found;
    for (const auto& table : tables.uses) {
      found += std::string(table.name) + '(';
      for (const auto& entry : table.entries) {
        if (deploy::is_column(entry)) found += std::string(entry.storage) + ')';
      }
    }
    EXPECT_EQ(found, row.tables);
  }
}

TEST(records, without_memory_are_a_failure_that_is_told) {
  tav_ebuf ebuf{};
  dd_list fields(DD_TYPED_FIELDS,
                 list_of("field( name=A type=9 ) field( name=B type=9 ) field( name=S type=5 )"));
  const dd_flist storable = list_of(
      "entry( name=A type=9 sql=t entry( name=B type=9 sql=v entry( name=S type=5 sql=c ) ) )");
  fields.find("A", &ebuf);
  std::set<std::string> last_lines;
  std::string text;
  for (long n = 1; text.substr(0, 2) != "1|" && n < 100; ++n) {
    deploy::class_entries read;
    deploy::table_uses tables{.keeps_entries = true};
    deploy::add_table(tables, {"u", "/c"});
    const auto check = [&] {
      tav_ebuf unread{};
      const auto own = deploy::entries_of(read, storable.get(), &unread);
      if (dd_failed(unread)) return deploy::call_failed(HERE, unread);
      deploy::read_all_storage(own, &unread);
      deploy::find_definitions(own, fields);
      if (deploy::check_nesting(read, *own.first, {"/c"}, 1) < 1) return -1;
      const int result = tav_deploy_get_table_columns(tables, 0, own, "u", "/c");
      return result < 1 ? -1 : deploy::check_unique_names(tables, tables);
    };
    text = outcome([&] {
      until_no_memory = n;
      const int result = check();
      until_no_memory = 0;
      return result;
    });
    last_lines.insert(text.substr(text.rfind('\n', text.size() - 2) + 1));
    EXPECT_EQ(text.find("without Table"), text.npos) << text;
  }
  EXPECT_EQ(last_lines.size(), 5u) << text;
}

TEST(storage, of_the_servers_classes_follows_the_stricter_rule) {
  static const struct {
    const char* classes;
    bool is_new;
    const char* outcome;
  } rows[] = {
      {"class( Name=/a/b sql=t )", false, "1 error|Error:  No table needed for subclass /a/b\n"},
      {"class( Name=/a/b sql=t )", true, "1|"},
      {"class( Name=/a )", false, "1 error|Error:  Missing table name for /a\n"},
      {"class( Name=/a sql= )", false, "1 error|Error:  Missing table name for /a\n"},
      {"class( Name=/a/b sql= )", false, "1|"},
      {"class( Name=/a sql= )", true, "1 error|Error:  Missing table name for /a\n"},
      {"class( Name=/a/b sql=t entry( name=S sql=c ) )", false,
       "-1 error|Error:  No table needed for subclass /a/b\nError: Column without Table\n"
       "Error:  Unable to obtain table/column names from Server classes\n"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.classes);
    deploy::import_state state{};
    state.working_fields.give(list_of("field( name=S type=5 )"));
    state.working_classes.give(list_of(row.is_new ? "" : row.classes));
    const dd_flist input = list_of(row.is_new ? row.classes : "");
    tav_ebuf ebuf{};
    dd_walk walk(input.get(), TAV_FLD_OBJ_DESC);
    while (tav_flist_t* storable = walk.next(&ebuf)) state.working_classes.lend(storable, &ebuf);
    EXPECT_EQ(outcome([&] { return deploy::import_storage(state); }), row.outcome);
  }
}

TEST(names_and_types, that_must_be_there_stop_a_check) {
  const dd_flist nameless = list_of("entry( type=9 )");
  dd_list none(DD_CLASSES, list_of(""));
  EXPECT_EQ(outcome([&] { return tav_deploy_prep_subclass(none, none, none, nameless.get()); }),
            "-1|Error: Internal Error\n");
  deploy::class_hierarchy hierarchy{none, {}, {}};
  deploy::class_entries none_read;
  deploy::class_entry entry{.element = nullptr, .name = "", .type = TAV_FLDT_ARRAY};
  const deploy::siblings one{&entry, &entry + 1};
  EXPECT_EQ(outcome([&] {
              return deploy::check_hierarchy({nullptr, "/a", one, none_read, hierarchy});
            }),
            "-1|Error: Internal Error\nError: Unable to check duplicate array \n");
  const dd_flist server = list_of("entry( name=A type=9 entry( name=S ) )");
  const dd_flist untyped = list_of("entry( name=a type=9 sql=t entry( name=S ) )");
  const std::string text = outcome(
      [&] { return tav_deploy_check_field_storage_change(server.get(), untyped.get(), "/c"); });
  const std::string first =
      "-1|Warning: Not allowed to change SQL_TABLE for class: /c field: a, "
      "keeping old\nError: Internal Error\nError: [location=";
  EXPECT_EQ(text.substr(0, first.size()), first);
  const std::string last = "\n\nError: Unable to check for changing storage specs\n";
  ASSERT_GT(text.size(), last.size());
  EXPECT_EQ(text.substr(text.size() - last.size()), last);
}

// 200 classes below a line of 100: what is done for each of their 20,000 superclasses takes no
// memory.
TEST(deep_lines, take_memory_for_each_class_but_not_for_each_superclass) {
  constexpr int DEEP = 100;
  constexpr int MANY = 200;
  std::string text;
  std::string name;
  const auto add = [&](const std::string& own, int number) {
    text += "class( Name=" + own + " entry( name=A" + std::to_string(number) + " type=9 ) ) ";
  };
  for (int i = 0; i < DEEP; ++i) add(name += "/c", i);
  for (int i = 0; i < MANY; ++i) add(name + "/leaf" + std::to_string(i), DEEP + i);
  tav_deploy_ctx_t ctx{};
  deploy::import_state state{.ctx = &ctx};
  state.classes.give(list_of(text.c_str()));
  state.server_classes = list_of("");
  ASSERT_EQ(outcome([&] { return deploy::import_classes(state); }), "1|");
  allocations = 0;
  EXPECT_EQ(outcome([&] { return deploy::import_order(state); }), "1|");
  EXPECT_LT(allocations, 10 * (DEEP + MANY));
  deploy::class_hierarchy hierarchy{state.working_classes, {}, {}};
  allocations = 0;
  tav_ebuf ebuf{};
  dd_list_walk walk(state.ordered_classes);
  while (tav_flist_t* storable = walk.next(&ebuf)) {
    const auto entries = deploy::entries_of(state.entries, storable, &ebuf);
    const char* own = dd_text(storable, TAV_FLD_NAME, &ebuf);
    EXPECT_EQ(deploy::check_hierarchy({storable, own, entries, state.entries, hierarchy}), 1);
  }
  EXPECT_LT(allocations, 30 * (DEEP + MANY));
}

// 200 times the same array, which has 200 entries: an index of them takes 10 KB, and is made once.
TEST(repeated_nodes, are_indexed_once) {
  constexpr int MANY = 200;
  std::string array = "entry( name=A type=9 ";
  std::string repeated;
  for (int i = 0; i < MANY; ++i) {
    array += "entry( name=S" + std::to_string(i) + " type=5 ) ";
    repeated += "entry( name=A type=9 entry( name=S7 type=5 ) ) ";
  }
  const dd_flist known = list_of((array + ")").c_str());
  const dd_flist input = list_of(repeated.c_str());
  tav_ebuf ebuf{};
  deploy::class_entries read;
  const auto entries = deploy::entries_of(read, known.get(), &ebuf);
  allocated = 0;
  EXPECT_EQ(tav_deploy_merge_class_fields(read, entries, input.get(), "/c"), 1);
  EXPECT_EQ(tav_deploy_check_field_storage_change(known.get(), input.get(), "/c"), 1);
  EXPECT_LT(allocated, 200'000u);
}

TEST(commit, raises_the_flag_only_as_a_trial) {
  const dd_flist fields = list_of("field( name=F type=5 id=7 mark=1 )");
  const dd_flist classes = list_of("");
  for (const auto& [flags, expected] : {std::pair{0u, "-1"}, {128u, "1 error"}, {64u, "-1"}}) {
    const std::string text = outcome([&, word = flags] {
      return tav_deploy_import_commit(nullptr, word, nullptr, fields.get(), classes.get(), 0);
    });
    EXPECT_EQ(text.substr(0, text.find('|')), expected) << flags;
  }
}
