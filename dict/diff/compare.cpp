// Pairs the elements of both sides by name, and compares the pairs.
#include "dd/values.h"
#include "dd/walk.h"
#include "dict/diff/values.h"
#include "vantor/binding.h"

namespace dict {

static constexpr char MODULE[] = "tav_dict";

namespace {

// The elements of one array on both sides.
struct both {
  const element_kind& kind;
  uint32_t array;
  tav_flist_t* before;
  tav_flist_t* after;
};

// Two elements with the same name; null where a side has none.
struct matched {
  tav_flist_t* before;
  tav_flist_t* after;
};

}  // namespace

// Whether any name of `before` is one of those. Unlike a walk this hands nothing out, which would
// cost more than reading the names of a whole dictionary.
static bool has_any(const both& sides, const dd_index<dd_by_name, size_t>& names) {
  uint32_t position = 0;
  int32_t id = 0;
  const tav_node* list = tav_node_of(sides.before);
  while (const tav_node* each = tav_node_next(list, sides.array, &position, &id)) {
    const auto* name = static_cast<const char*>(tav_node_get(each, sides.kind.name));
    if (names.find(name != nullptr ? name : "") != nullptr) return true;
  }
  return false;
}

// Pairs the elements. Of several with the same name the first is paired with the first, and so on.
// Gives the pairs in the order of `after`, then, if it is wanted, what only `before` has. Names of
// `after` are indexed: a few definitions are compared with a whole dictionary more often than not.
static std::vector<matched> match(const both& sides, bool with_missing, tav_ebuf* ebuf) {
  dd_index<dd_by_name, size_t> unmatched;
  std::vector<matched> result, missing;
  dd_walk after(sides.after, sides.array);
  while (tav_flist_t* element = after.next(at(ebuf, HERE))) {
    unmatched.add(dd_text(element, sides.kind.name, at(ebuf, HERE)), result.size());
    result.push_back({nullptr, element});
  }
  if (dd_failed(*ebuf) || (!with_missing && !has_any(sides, unmatched))) return result;
  dd_walk before(sides.before, sides.array);
  while (tav_flist_t* element = before.next(at(ebuf, HERE))) {
    const char* name = dd_text(element, sides.kind.name, at(ebuf, HERE));
    const size_t* first = unmatched.find(name);
    if (first != nullptr) {
      const size_t place = *first;
      result[place].before = element;
      unmatched.remove(name, place);
    } else if (with_missing) {
      missing.push_back({element, nullptr});
    }
  }
  result.insert(result.end(), missing.begin(), missing.end());
  return result;
}

static difference one_sided(const element_kind& kind, const matched& pair, tav_ebuf* ebuf) {
  tav_flist_t* element = pair.after != nullptr ? pair.after : pair.before;
  return {pair.after != nullptr ? change::NEW : change::MISSING, kind.what,
          type_of(kind, element, at(ebuf, HERE)), dd_text(element, kind.name, at(ebuf, HERE))};
}

// CHANGED where any value or entry of the pair changes, else KEPT.
static change verdict(const difference& pair) {
  for (const value_change& value : pair.values) {
    if (!value.is_kept) return change::CHANGED;
  }
  for (const difference& entry : pair.entries) {
    if (entry.kind != change::KEPT) return change::CHANGED;
  }
  return change::KEPT;
}

static void compare_pair(const element_kind& kind, const matched& pair, bool is_deployment,
                         std::vector<difference>& found, tav_ebuf* ebuf);

// The recursion is no deeper than the dictionary nests entries, because only pairs are compared.
static void compare_entries(const matched& parent, bool is_deployment,
                            std::vector<difference>& found, tav_ebuf* ebuf) {
  const both sides{ENTRY, TAV_FLD_OBJ_ELEM, parent.before, parent.after};
  for (const matched& pair : match(sides, true, ebuf)) {
    compare_pair(ENTRY, pair, is_deployment, found, ebuf);
  }
}

static void compare_pair(const element_kind& kind, const matched& pair, bool is_deployment,
                         std::vector<difference>& found, tav_ebuf* ebuf) {
  if (pair.before == nullptr || pair.after == nullptr) {
    found.push_back(one_sided(kind, pair, ebuf));
    return;
  }
  difference both{change::KEPT, kind.what, type_of(kind, pair.after, at(ebuf, HERE)),
                  dd_text(pair.before, kind.name, at(ebuf, HERE))};
  both.values = compare_values(kind, pair.before, pair.after, is_deployment, at(ebuf, HERE));
  if (&kind != &FIELD) compare_entries(pair, is_deployment, both.entries, ebuf);
  if (both.values.empty() && both.entries.empty()) return;
  both.kind = verdict(both);
  found.push_back(std::move(both));
}

static bool is_predefined(tav_flist_t* field, tav_ebuf* ebuf) {
  return (dd_int(field, TAV_FLD_FIELD_FLAGS, at(ebuf, HERE)) & DD_FIELD_PREDEFINED) != 0;
}

// Whether the pair is one that the comparison passes over.
static bool is_left_out(const matched& pair, tav_ebuf* ebuf) {
  if (pair.before != nullptr && pair.after != nullptr) return false;
  return is_predefined(pair.after != nullptr ? pair.after : pair.before, ebuf);
}

static void compare_lists(const both& sides, const comparison& how, const char* doing,
                          std::vector<difference>& found, tav_ebuf* ebuf) {
  const std::vector<matched> pairs = match(sides, how.lists_missing, ebuf);
  next(how.shown, doing, pairs.size());
  for (const matched& pair : pairs) {
    if (dd_failed(*ebuf)) return;
    if (!is_left_out(pair, ebuf)) {
      compare_pair(sides.kind, pair, how.is_deployment, found, ebuf);
    }
    step(how.shown);
  }
}

bool compare(definitions& before, definitions& after, const comparison& how,
             std::vector<difference>& found, dm::problem& why) {
  tav_ebuf ebuf{};
  compare_lists({FIELD, TAV_FLD_FIELD, before.fields.get(), after.fields.get()}, how,
                "comparing fields", found, &ebuf);
  compare_lists({CLASS, TAV_FLD_OBJ_DESC, before.classes.get(), after.classes.get()}, how,
                "comparing classes", found, &ebuf);
  if (is_whole(ebuf)) return true;
  why.code = ebuf.err_code;
  why.sentence =
      dm::join({"The definitions cannot be compared: ", tav_taverr_to_str(ebuf.err_code), "."});
  return false;
}

difference_counts count(const std::vector<difference>& found) {
  difference_counts counts;
  for (const difference& d : found) {
    if (d.kind == change::NEW) ++counts.added;
    if (d.kind == change::CHANGED) ++counts.changed;
    if (d.kind == change::MISSING) ++counts.missing;
  }
  return counts;
}

}  // namespace dict
