// Reading rows.
#include "dd/utf8.h"
#include "dm/postgres/result_rows.h"
#include "dm/rows.h"

namespace dm {

static bool is_many(query which) {
  return which == SELECT_FIELDS || which == SELECT_FIELD_TYPES ||
         which == SELECT_FIELDS_WITH_KEYS || which == SELECT_CLASSES ||
         which == SELECT_CLASSES_BELOW || which == SELECT_CLASSES_MENTIONING ||
         which == SELECT_TABLES || which == SELECT_JOURNAL ||
         which == SELECT_JOURNAL_NEWEST_FIRST || which == SELECT_PARTS ||
         which == SELECT_PARTS_NEWEST_FIRST;
}

template <class Row>
static bool read_rows(postgres_store& store, query which, const parameters& with,
                      visitor<Row> visitor, problem& why) {
  if (!flush(store, why)) return false;
  postgres_rows rows(store, postgres_text(query_text(which)), with, is_many(which), why);
  Row row{};
  postgres_rows::outcome outcome;
  while ((outcome = rows.next()) == postgres_rows::ROW) {
    if (!take_row(rows, row)) {
      return postgres_damaged(store, "a row of it is damaged", why);
    }
    if (!visitor.call(visitor.context, row)) return true;
  }
  return outcome == postgres_rows::END;
}

// Whether a key can exist in a dictionary at all. The server would answer
// invalid UTF-8 with an error.
static bool can_be_stored(std::string_view key) {
  while (!key.empty()) {
    const size_t length = dd_utf8_length(key.data(), key.size());
    if (length == 0) return false;
    key.remove_prefix(length);
  }
  return true;
}

template <class Row>
static bool look_up(store* base, int64_t database, const lookup& wanted, visitor<Row> visitor,
                    problem& why) {
  parameters with(database);
  for (int i = 0; i < wanted.texts; ++i) {
    const std::string& key = wanted.keys[static_cast<size_t>(i)];
    if (!can_be_stored(key)) return true;
    with.add(key);
  }
  if (wanted.has_number) with.add(int64_t{wanted.number});
  return read_rows(postgres_of(base), wanted.which, with, visitor, why);
}

bool postgres_databases(store* base, visitor<database_row> visitor, problem& why) {
  return read_rows(postgres_of(base), SELECT_DATABASES, parameters(), visitor, why);
}

bool postgres_fields(store* base, int64_t database, const choice& choice,
                     visitor<field_row> visitor, problem& why) {
  return look_up(base, database, field_lookup(choice), visitor, why);
}

bool postgres_classes(store* base, int64_t database, const choice& choice,
                      visitor<class_row> visitor, problem& why) {
  const lookup wanted = class_lookup(choice);
  bool answered = wanted.texts > 0 && !can_be_stored(wanted.keys[0]);
  if (answered) return true;
  if (!answer_kept(postgres_of(base), database, wanted, visitor, answered, why)) return false;
  return answered || look_up(base, database, wanted, visitor, why);
}

bool postgres_tables(store* base, int64_t database, const choice& choice,
                     visitor<table_row> visitor, problem& why) {
  return look_up(base, database, table_lookup(choice), visitor, why);
}

bool postgres_count(store* base, int64_t database, counted what, int64_t& count, problem& why) {
  postgres_store& store = postgres_of(base);
  const query which = what == counted::FIELDS ? COUNT_FIELDS : COUNT_CLASSES;
  if (!flush(store, why)) return false;
  postgres_rows rows(store, postgres_text(query_text(which)), parameters(database), false, why);
  if (rows.next() != postgres_rows::ROW) return false;
  count = rows.integer(0);
  return true;
}

bool postgres_journal(store* base, const journal_range& range, visitor<journal_record> visitor,
                      problem& why) {
  const query which = range.newest_first ? SELECT_JOURNAL_NEWEST_FIRST : SELECT_JOURNAL;
  return read_rows(postgres_of(base), which, parameters(range.from, range.to), visitor, why);
}

bool postgres_journal_parts(store* base, const journal_range& range, visitor<journal_part> visitor,
                            problem& why) {
  const query which = range.newest_first ? SELECT_PARTS_NEWEST_FIRST : SELECT_PARTS;
  return read_rows(postgres_of(base), which, parameters(range.from, range.to), visitor, why);
}

// The role is the one that logged in, as the server knows it.
bool postgres_journal_end(store* base, journal_head& head, problem& why) {
  head = {};
  auto take = [&](const journal_head& row) { return head = row, true; };
  const bool is_read = read_rows(postgres_of(base), SELECT_JOURNAL_END, parameters(),
                                 visit<journal_head>(take), why);
  head.role = PQuser(postgres_of(base).connection);
  return is_read;
}

bool postgres_identity(store* base, std::string& identity, problem& why) {
  identity.clear();
  auto take = [&](const text_row& row) { return identity = row.text, true; };
  return read_rows(postgres_of(base), SELECT_IDENTITY, parameters(), visit<text_row>(take), why);
}

// With its indexes.
bool postgres_size(store* base, int64_t& bytes, problem& why) {
  static constexpr char SIZE[] =
      "SELECT sum(pg_total_relation_size(to_regclass(t)))::BIGINT FROM unnest(ARRAY["
      "'dd_schema', 'dd_databases', 'dd_fields', 'dd_classes', 'dd_tables', 'dd_identity',"
      " 'dd_journal', 'dd_journal_changes']) t";
  postgres_rows rows(postgres_of(base), SIZE, parameters(), false, why);
  if (rows.next() != postgres_rows::ROW) return false;
  bytes = rows.integer(0);
  return true;
}

}  // namespace dm
