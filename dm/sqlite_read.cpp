// Reading rows.
#include "dm/database_number.h"
#include "dm/folded.h"
#include "dm/sqlite_handle.h"

namespace dm {

// A file that is read without locks is still the one that was opened.
static bool unchanged(const sqlite_store& store, problem& why) {
  if (!store.unlocked) return true;
  struct stat now {};
  const struct stat& then = store.opened;
  if (stat(store.path.c_str(), &now) == 0 && now.st_ino == then.st_ino &&
      now.st_size == then.st_size && now.st_mtim.tv_sec == then.st_mtim.tv_sec &&
      now.st_mtim.tv_nsec == then.st_mtim.tv_nsec) {
    return true;
  }
  why.code = TAV_ERR_BUSY;
  why.sentence =
      join({"Dictionary ", quoted(store.path), " changed while it was read; try again."});
  return false;
}

static bool fits(int64_t value) {
  return value == static_cast<int32_t>(value);
}

// Steps through the rows; `row_of` makes a row of the columns, false for one that cannot be.
template <class Row, class Make>
static bool read_rows(sqlite_store& store, sqlite_use& use, visitor<Row> visitor, problem& why,
                      Make row_of) {
  Row row{};
  for (;;) {
    const int result = use.step();
    if (result == SQLITE_DONE) return unchanged(store, why);
    if (result != SQLITE_ROW) return sqlite_failed(store, result, why);
    if (!row_of(use, row)) return sqlite_failed(store, SQLITE_CORRUPT, why);
    if (!visitor.call(visitor.context, row)) return unchanged(store, why);
  }
}

bool sqlite_databases(store* base, visitor<database_row> visitor, problem& why) {
  sqlite_use use(sqlite_of(base), SELECT_DATABASES);
  return read_rows(sqlite_of(base), use, visitor, why, [](sqlite_use& u, database_row& row) {
    const char* number = u.text(1);
    row.id = u.integer(0);
    row.counter = u.integer(2);
    return number != nullptr && database_of_text(number, row.number);
  });
}

static bool field_of(sqlite_use& use, field_row& row) {
  if (!fits(use.integer(1)) || !fits(use.integer(2)) || !fits(use.integer(4))) return false;
  row.name = use.text(0);
  row.number = static_cast<int32_t>(use.integer(1));
  row.type = static_cast<int32_t>(use.integer(2));
  row.descr = use.text(3);
  row.flags = static_cast<int32_t>(use.integer(4));
  row.stamp = use.integer(5);
  return row.name != nullptr;
}

bool sqlite_fields(store* base, int64_t database, const choice& choice, visitor<field_row> visitor,
                   problem& why) {
  const statement which = choice.which == choice::NAMED      ? SELECT_FIELD_NAMED
                          : choice.which == choice::NUMBERED ? SELECT_FIELD_NUMBERED
                                                             : SELECT_FIELDS;
  const std::string key = folded(choice.name != nullptr ? choice.name : "");
  sqlite_use use(sqlite_of(base), which);
  use.bind(database);
  if (choice.which == choice::NAMED) use.bind(key);
  if (choice.which == choice::NUMBERED) use.bind(static_cast<int64_t>(choice.number));
  return read_rows(sqlite_of(base), use, visitor, why, field_of);
}

static statement class_statement(const choice& choice) {
  switch (choice.which) {
    case choice::NAMED:
      return SELECT_CLASS_NAMED;
    case choice::BELOW:
      return SELECT_CLASSES_BELOW;
    case choice::KEYS:
      return SELECT_CLASS_KEYS;
    case choice::KEYS_BELOW:
      return SELECT_CLASS_KEYS_BELOW;
    default:
      return SELECT_CLASSES;
  }
}

bool sqlite_classes(store* base, int64_t database, const choice& choice, visitor<class_row> visitor,
                    problem& why) {
  const bool keys = choice.which == choice::KEYS || choice.which == choice::KEYS_BELOW;
  const bool below = choice.which == choice::BELOW || choice.which == choice::KEYS_BELOW;
  // What lies below "/a" lies between "/a/" and "/a0": '0' is the character after '/'.
  std::string key = folded(choice.name != nullptr ? choice.name : "");
  const std::string end = below ? key + "0" : "";
  if (below) key += "/";
  sqlite_use use(sqlite_of(base), class_statement(choice));
  use.bind(database);
  if (choice.which == choice::NAMED || below) use.bind(key);
  if (below) use.bind(end);
  return read_rows(sqlite_of(base), use, visitor, why, [keys](sqlite_use& u, class_row& row) {
    row.id = u.integer(0);
    row.key = u.text(1);
    row.name = u.text(2);
    row.stamp = u.integer(3);
    row.definition = keys ? nullptr : u.text(4);
    return row.key != nullptr && row.name != nullptr && (keys || row.definition != nullptr);
  });
}

bool sqlite_tables(store* base, int64_t database, const choice& choice, visitor<table_row> visitor,
                   problem& why) {
  const bool named = choice.which == choice::NAMED;
  const std::string key = folded(named ? choice.name : "");
  sqlite_use use(sqlite_of(base), named ? SELECT_TABLE_NAMED : SELECT_TABLES);
  use.bind(database);
  if (named) use.bind(key);
  return read_rows(sqlite_of(base), use, visitor, why, [](sqlite_use& u, table_row& row) {
    row.key = u.text(0);
    row.name = u.text(1);
    row.class_id = u.integer(2);
    return row.key != nullptr && row.name != nullptr;
  });
}

bool sqlite_count(store* base, int64_t database, counted what, int64_t& rows, problem& why) {
  sqlite_use use(sqlite_of(base), what == counted::FIELDS ? COUNT_FIELDS : COUNT_CLASSES);
  const int result = use.bind(database).step();
  if (result != SQLITE_ROW) return sqlite_failed(sqlite_of(base), result, why);
  rows = use.integer(0);
  return true;
}

}  // namespace dm
