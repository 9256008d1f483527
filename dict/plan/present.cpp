#include "dict/plan/present.h"

#include "dm/journal/hash.h"
#include "dm/journal/read.h"

namespace dict {

// For more things than this all are read at once (with a local file; sooner on a server).
static constexpr size_t MANY = 500;

present_digests::present_digests(dm::store& store, int64_t database, size_t expected)
    : store_(store), database_(database), reads_all_(expected > MANY / store.look_up_cost) {}

bool present_digests::read_all(dm::problem& why) {
  auto field = [&](const dm::field_row& row) {
    all_[dm::thing_key(dm::change_of::FIELD, row.name)] = dm::hash_of(dm::field_state(row));
    return true;
  };
  auto storable = [&](const dm::class_row& row) {
    all_[dm::thing_key(dm::change_of::CLASS, row.name)] = dm::hash_of(row.definition);
    return true;
  };
  has_all_ = true;
  return store_.calls->fields(&store_, database_, {}, dm::visit<dm::field_row>(field), why) &&
         store_.calls->classes(&store_, database_, {}, dm::visit<dm::class_row>(storable), why);
}

bool present_digests::find(dm::change_of what, const std::string& name, std::string& digest,
                           dm::problem& why) {
  if (reads_all_) {
    if (!has_all_ && !read_all(why)) return false;
    const auto found = all_.find(dm::thing_key(what, name));
    digest = found != all_.end() ? found->second : ABSENT;
    return true;
  }
  std::optional<std::string> state;
  if (!dm::present_state(store_, database_, what, name, state, why)) return false;
  digest = state ? dm::hash_of(*state) : ABSENT;
  return true;
}

}  // namespace dict
