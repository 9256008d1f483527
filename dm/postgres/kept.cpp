#include "dm/postgres/kept.h"

#include "dm/postgres/result_rows.h"

namespace dm {

// So many look-ups cost about as much as reading all classes of a fairly large dictionary.
static constexpr int MANY = 50;

static bool keep_all(postgres_store& store, int64_t database, problem& why) {
  postgres_kept kept;
  auto note = [&kept](const class_row& row) {
    kept.rows[row.key] = {row.id, row.stamp, row.name, row.definition};
    return true;
  };
  if (!postgres_classes(&store, database, {}, visit<class_row>(note), why)) return false;
  kept.database = database;
  store.kept = std::move(kept);
  return true;
}

// The classes that are wanted; copies, because the visitor may write and so change the cache.
static std::map<std::string, kept_class> found_in(const postgres_kept& kept, const lookup& wanted) {
  if (wanted.which != SELECT_CLASS_NAMED) {
    return {kept.rows.lower_bound(wanted.keys[0]), kept.rows.lower_bound(wanted.keys[1])};
  }
  const auto found = kept.rows.find(wanted.keys[0]);
  if (found == kept.rows.end()) return {};
  return {{found->first, found->second}};
}

bool answer_kept(postgres_store& store, int64_t database, const lookup& wanted,
                 visitor<class_row> visitor, bool& answered, problem& why) {
  const bool named = wanted.which == SELECT_CLASS_NAMED;
  answered = false;
  if (!store.is_writing || (!named && wanted.which != SELECT_CLASS_KEYS_BELOW)) return true;
  if (store.kept.database != database) {
    if (++store.kept.asked < MANY) return true;
    if (!keep_all(store, database, why)) return false;
  }
  answered = true;
  for (const auto& [key, kept] : found_in(store.kept, wanted)) {
    const class_row row{kept.id, key.c_str(), kept.name.c_str(), kept.stamp,
                        named ? kept.definition.c_str() : nullptr};
    if (!visitor.call(visitor.context, row)) break;
  }
  return true;
}

void note_kept(postgres_store& store, int64_t database, const class_row& row) {
  if (store.kept.database != database) return;
  kept_class& kept = store.kept.rows[row.key];
  if (kept.name.empty()) kept.name = row.name;
  kept.id = row.id;
  kept.stamp = row.stamp;
  kept.definition = row.definition;
}

}  // namespace dm
