// Reading rows.
#include "dm/rows.h"
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

template <class Row>
static bool read_rows(sqlite_store& store, sqlite_use& use, visitor<Row> visitor, problem& why) {
  Row row{};
  for (;;) {
    const int result = use.step();
    if (result == SQLITE_DONE) return unchanged(store, why);
    if (result != SQLITE_ROW) return sqlite_failed(store, result, why);
    if (!take_row(use, row)) return sqlite_failed(store, SQLITE_CORRUPT, why);
    if (!visitor.call(visitor.context, row)) return unchanged(store, why);
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

}  // namespace dm
