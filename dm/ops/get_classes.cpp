// 577: classes in ascending folded name, or the named ones in the order asked for; NAME/* stands
// for that class and all below it.
#include <algorithm>
#include <cstring>
#include <deque>
#include <unordered_set>

#include "dd/class_names.h"
#include "dm/ops/operations.h"
#include "dm/rules/class_world.h"

namespace dm {

namespace {

struct class_fetch {
  operation& op;
  store& from;
  int64_t database;
  dd_flist output;
  class_reader reader{};
  int32_t count = 0;
  std::unordered_set<int64_t> given{};
  std::deque<std::string> tops{};  // classes whose subclasses were all given
  dd_index<dd_by_name, bool> tops_by_name{};
};

}  // namespace

static bool add_class(class_fetch& fetch, const class_row& row) {
  const char* fault = nullptr;
  if (fetch.reader.read(row.definition, fetch.output.get(), fetch.count++, fault)) return true;
  fetch.op.why = damaged_class(row.name, fault);
  return false;
}

static bool get(class_fetch& fetch, const choice& which) {
  const bool all = which.which == choice::ALL;
  auto add = [&](const class_row& row) {
    return (!all && !fetch.given.insert(row.id).second) || add_class(fetch, row);
  };
  return fetch.from.calls->classes(&fetch.from, fetch.database, which, visit<class_row>(add),
                                   fetch.op.why) &&
         !failed(fetch.op.why);
}

// Whether the class or a superclass was asked for with /* before: then the class, if it exists, was
// given.
static bool was_given(const class_fetch& fetch, const std::string& name) {
  dd_hash_of_beginnings hashes(name.c_str());
  for (size_t cut = name.find('/');; cut = name.find('/', cut + 1)) {
    const size_t length = std::min(cut, name.size());
    const std::string_view upper(name.data(), length);
    if (fetch.tops_by_name.find(upper, hashes.next(length)) != nullptr) return true;
    if (cut == name.npos) return false;
  }
}

static bool get_below(class_fetch& fetch, const std::string& top) {
  const std::string& kept = fetch.tops.emplace_back(top);
  fetch.tops_by_name.add(kept.c_str(), true);
  return get(fetch, {choice::BELOW, kept.c_str()});
}

static bool get_named(class_fetch& fetch) {
  uint32_t position = 0;
  int32_t id = 0;
  while (const tav_node* wanted = tav_node_next(fetch.op.input, TAV_FLD_OBJ_DESC, &position, &id)) {
    const auto* name = static_cast<const char*>(tav_node_get(wanted, TAV_FLD_NAME));
    if (name == nullptr) {
      fetch.op.why = {TAV_ERR_MISSING_FIELD, TAV_FLD_NAME, id, 0,
                      "A class is asked for by no name."};
      return false;
    }
    const bool below = dd_asks_for_below(name);
    const std::string top(name, std::strlen(name) - (below ? DD_AND_BELOW.size() : 0));
    if (was_given(fetch, top)) continue;
    if (!get(fetch, {choice::NAMED, top.c_str()})) return false;
    if (below && !get_below(fetch, top)) return false;
  }
  return true;
}

dd_flist get_classes(operation& op) {
  database_row database{};
  if (!begin_read(op.session, op.why)) return nullptr;
  if (!find_database(op.session, op.input, 0, database, op.why)) return nullptr;
  class_fetch fetch{op, *op.session.store, database.id, nothing_to_give(op)};
  if (fetch.output == nullptr) return nullptr;
  const bool all = tav_node_count(op.input, TAV_FLD_OBJ_DESC) == 0;
  if (!(all ? get(fetch, {}) : get_named(fetch))) return nullptr;
  if (all) op.session.seen[database.number].classes = database.counter;
  return std::move(fetch.output);
}

}  // namespace dm
