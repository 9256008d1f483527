// Reading rows.
#include "dm/rows.h"
#include "dm/sqlite/handle.h"

namespace dm {

template <class Row>
static bool read_rows(sqlite_store& store, sqlite_use& use, visitor<Row> visitor, problem& why) {
  Row row{};
  for (;;) {
    const int result = use.step();
    if (result == SQLITE_DONE) return true;
    if (result != SQLITE_ROW) return sqlite_failed(store, result, why);
    if (!take_row(use, row)) return sqlite_failed(store, SQLITE_CORRUPT, why);
    if (!visitor.call(visitor.context, row)) return true;
  }
}

template <class Row>
static bool look_up(store* base, int64_t database, const lookup& wanted, visitor<Row> visitor,
                    problem& why) {
  sqlite_use use(sqlite_of(base), wanted.which);
  use.bind(database);
  for (int i = 0; i < wanted.texts; ++i) use.bind(wanted.keys[static_cast<size_t>(i)]);
  if (wanted.has_number) use.bind(static_cast<int64_t>(wanted.number));
  return read_rows(sqlite_of(base), use, visitor, why);
}

bool sqlite_databases(store* base, visitor<database_row> visitor, problem& why) {
  sqlite_use use(sqlite_of(base), SELECT_DATABASES);
  return read_rows(sqlite_of(base), use, visitor, why);
}

bool sqlite_fields(store* base, int64_t database, const choice& choice, visitor<field_row> visitor,
                   problem& why) {
  return look_up(base, database, field_lookup(choice), visitor, why);
}

bool sqlite_classes(store* base, int64_t database, const choice& choice, visitor<class_row> visitor,
                    problem& why) {
  return look_up(base, database, class_lookup(choice), visitor, why);
}

bool sqlite_tables(store* base, int64_t database, const choice& choice, visitor<table_row> visitor,
                   problem& why) {
  return look_up(base, database, table_lookup(choice), visitor, why);
}

bool sqlite_count(store* base, int64_t database, counted what, int64_t& rows, problem& why) {
  sqlite_use use(sqlite_of(base), what == counted::FIELDS ? COUNT_FIELDS : COUNT_CLASSES);
  const int result = use.bind(database).step();
  if (result != SQLITE_ROW) return sqlite_failed(sqlite_of(base), result, why);
  rows = use.integer(0);
  return true;
}

bool sqlite_size(store* base, int64_t& bytes, problem& why) {
  static constexpr char SIZE[] =
      "SELECT page_count * page_size FROM pragma_page_count, pragma_page_size";
  const int result = sqlite_number(sqlite_of(base), SIZE, bytes);
  return result == SQLITE_OK || sqlite_failed(sqlite_of(base), result, why);
}

bool sqlite_journal(store* base, const journal_range& range, visitor<journal_record> visitor,
                    problem& why) {
  sqlite_use use(sqlite_of(base),
                 range.newest_first ? SELECT_JOURNAL_NEWEST_FIRST : SELECT_JOURNAL);
  use.bind(range.from).bind(range.to);
  return read_rows(sqlite_of(base), use, visitor, why);
}

bool sqlite_journal_parts(store* base, const journal_range& range, visitor<journal_part> visitor,
                          problem& why) {
  sqlite_use use(sqlite_of(base), range.newest_first ? SELECT_PARTS_NEWEST_FIRST : SELECT_PARTS);
  use.bind(range.from).bind(range.to);
  return read_rows(sqlite_of(base), use, visitor, why);
}

bool sqlite_journal_end(store* base, journal_head& head, problem& why) {
  head = {};
  auto take = [&](const journal_head& row) { return head = row, true; };
  sqlite_use use(sqlite_of(base), SELECT_JOURNAL_END);
  return read_rows(sqlite_of(base), use, visit<journal_head>(take), why);
}

bool sqlite_identity(store* base, std::string& identity, problem& why) {
  identity.clear();
  auto take = [&](const text_row& row) { return identity = row.text, true; };
  sqlite_use use(sqlite_of(base), SELECT_IDENTITY);
  return read_rows(sqlite_of(base), use, visit<text_row>(take), why);
}

}  // namespace dm
