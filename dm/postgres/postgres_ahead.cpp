#include "dm/postgres/postgres_ahead.h"

#include <algorithm>

#include "dm/postgres/postgres_rows.h"
#include "dm/rows.h"

namespace dm {

// A megabyte of definitions or less.
static constexpr int MOST = 256;

static constexpr char FOLLOWING[] =
    "SELECT id, folded, name, stamp, definition FROM dd_classes"
    " WHERE database = $1 AND folded >= $2 ORDER BY folded LIMIT $3";

// Behind every key: no UTF-8 text has such a byte.
static constexpr char BEHIND_ALL = '\xff';

static bool covers(const postgres_ahead& ahead, int64_t database, const std::string& from,
                   const std::string& to) {
  if (ahead.database != database || from < ahead.first || to > ahead.last) return false;
  const auto newer = ahead.written.lower_bound(from);
  return newer == ahead.written.end() || *newer > to;
}

// More as long as what was read was of use, else less.
static int next_size(const postgres_ahead& ahead, int64_t database) {
  if (ahead.database != database) return 1;
  return ahead.used * 2 >= ahead.size ? std::min(ahead.size * 2, MOST)
                                      : std::max(ahead.size / 2, 1);
}

static bool read_from(postgres_store& store, int64_t database, const std::string& key,
                      problem& why) {
  if (!flush(store, why)) return false;
  postgres_ahead next;
  next.size = next_size(store.ahead, database);
  postgres_rows rows(store, FOLLOWING, parameters(database, key, int64_t{next.size}), false, why);
  next.first = next.last = key;
  class_row row{};
  postgres_rows::outcome outcome;
  while ((outcome = rows.next()) == postgres_rows::ROW) {
    if (!take_row(rows, row)) return postgres_failed(store, nullptr, why);
    next.rows[row.key] = {row.id, row.stamp, row.name, row.definition};
    next.last = row.key;
  }
  if (outcome == postgres_rows::FAILED) return false;
  if (static_cast<int>(next.rows.size()) < next.size) next.last.assign(1, BEHIND_ALL);
  next.database = database;
  store.ahead = std::move(next);
  return true;
}

// Copies, because whoever is told may ask for more.
static std::map<std::string, kept_class> kept_between(const postgres_ahead& ahead,
                                                      const lookup& wanted) {
  if (wanted.which != SELECT_CLASS_NAMED) {
    return {ahead.rows.lower_bound(wanted.keys[0]), ahead.rows.lower_bound(wanted.keys[1])};
  }
  const auto found = ahead.rows.find(wanted.keys[0]);
  if (found == ahead.rows.end()) return {};
  return {{found->first, found->second}};
}

bool answer_ahead(postgres_store& store, int64_t database, const lookup& wanted,
                  visitor<class_row> visitor, bool& answered, problem& why) {
  const bool named = wanted.which == SELECT_CLASS_NAMED;
  const std::string& from = wanted.keys[0];
  const std::string& to = named ? from : wanted.keys[1];
  postgres_ahead& ahead = store.ahead;
  answered = false;
  if (!store.is_writing || (!named && wanted.which != SELECT_CLASS_KEYS_BELOW)) return true;
  if (named && (ahead.database != database || from > ahead.last)) {
    if (!read_from(store, database, from, why)) return false;
  }
  if (!covers(ahead, database, from, to)) return true;
  answered = true;
  if (named) ++ahead.used;
  for (const auto& [key, kept] : kept_between(ahead, wanted)) {
    const class_row row{kept.id, key.c_str(), kept.name.c_str(), kept.stamp,
                        named ? kept.definition.c_str() : nullptr};
    if (!visitor.call(visitor.context, row)) break;
  }
  return true;
}

}  // namespace dm
