#include "dm/class_def.h"

#include <algorithm>
#include <cstring>
#include <numeric>

#include "dd/fold.h"
#include "dd/hash.h"

namespace dm {

namespace {

// One more than the highest field number of all rows.
constexpr size_t NUMBERS = [] {
  int32_t highest = 0;
  for (const dd_attribute& row : DD_ATTRIBUTES) {
    highest = std::max(highest, DD_FIELD_ID_NUMBER(row.field));
  }
  return static_cast<size_t>(highest) + 1;
}();

// The rows as tav_node_values takes them: for each field number the row's index plus 1 (0: no row),
// and for each row its field.
template <size_t N>
struct row_places {
  std::array<uint8_t, NUMBERS> by_number{};
  std::array<uint32_t, N> fields{};
};

}  // namespace

template <size_t N>
static constexpr row_places<N> places_of(const std::array<dd_attribute, N>& rows) {
  row_places<N> places;
  for (size_t i = 0; i < N; ++i) {
    const auto number = static_cast<size_t>(DD_FIELD_ID_NUMBER(rows[i].field));
    places.by_number.at(number) = static_cast<uint8_t>(i + 1);
    places.fields[i] = rows[i].field;
  }
  return places;
}

static constexpr auto CLASS_PLACES = places_of(CLASS_ATTRIBUTES);
static constexpr auto ENTRY_PLACES = places_of(ENTRY_ATTRIBUTES);

template <size_t N>
static void read_values(const tav_node* node, const row_places<N>& places,
                        std::array<const void*, N>& values) {
  values.fill(nullptr);
  tav_node_values(node, {places.by_number.data(), places.by_number.size(), places.fields.data()},
                  values.data());
}

static const char* text_or_empty(const void* value) {
  return value != nullptr ? static_cast<const char*>(value) : "";
}

const char* text_of(const class_def& definition, class_attribute which) {
  return text_or_empty(definition.values[which]);
}

const char* text_of(const entry_def& entry, entry_attribute which) {
  return text_or_empty(entry.values[which]);
}

// An empty text of SQL_TABLE or SQL_STORAGE counts as not given.
static void forget_empty(const void*& text) {
  if (text != nullptr && *static_cast<const char*>(text) == '\0') text = nullptr;
}

static void read_entries(const tav_node* container, int32_t parent, int32_t depth,
                         class_def& result) {
  if (depth > DEEPEST_READ) return;
  uint32_t position = 0;
  int32_t id = 0;
  while (const tav_node* node = tav_node_next(container, TAV_FLD_OBJ_ELEM, &position, &id)) {
    const auto place = static_cast<int32_t>(result.entries.size());
    entry_def& entry = result.entries.emplace_back();
    read_values(node, ENTRY_PLACES, entry.values);
    forget_empty(entry.values[ENTRY_SQL_NAME]);
    forget_empty(entry.values[ENTRY_STORAGE]);
    const auto* type = static_cast<const int32_t*>(entry.values[ENTRY_TYPE]);
    entry.type = type != nullptr ? *type : 0;
    entry.name_hash = dd_hash(text_of(entry, ENTRY_NAME));
    entry.elem_id = id;
    entry.parent = parent;
    entry.depth = depth;
    read_entries(node, place, depth + 1, result);
  }
}

static int compare(const class_def& definition, int32_t at, int32_t parent, const char* name) {
  const entry_def& entry = definition.entries[static_cast<size_t>(at)];
  if (entry.parent != parent) return entry.parent < parent ? -1 : 1;
  return dd_compare(text_of(entry, ENTRY_NAME), name);
}

std::vector<int32_t> places_by_name(const class_def& definition) {
  std::vector<int32_t> places(definition.entries.size());
  std::iota(places.begin(), places.end(), 0);
  std::sort(places.begin(), places.end(), [&](int32_t a, int32_t b) {
    const entry_def& other = definition.entries[static_cast<size_t>(b)];
    const int order = compare(definition, a, other.parent, text_of(other, ENTRY_NAME));
    return order != 0 ? order < 0 : a < b;
  });
  return places;
}

void read_class(const tav_node* element, int32_t elem_id, class_def& result) {
  result.elem_id = elem_id;
  result.entries.clear();
  read_values(element, CLASS_PLACES, result.values);
  forget_empty(result.values[CLASS_TABLE]);
  forget_empty(result.values[CLASS_STORAGE]);
  read_entries(element, NO_PARENT, 1, result);
}

std::string path_of(const class_def& definition, const entry_def& entry) {
  std::string path = text_of(entry, ENTRY_NAME);
  for (int32_t at = entry.parent; at != NO_PARENT;) {
    const entry_def& container = definition.entries[static_cast<size_t>(at)];
    path = std::string(text_of(container, ENTRY_NAME)) + "." + path;
    at = container.parent;
  }
  return path;
}

// The position of the entry of that name below that parent; NO_PARENT when there is none.
static int32_t find_entry(const class_def& definition, const std::vector<int32_t>& by_name,
                          int32_t parent, const char* name) {
  const auto at = std::lower_bound(
      by_name.begin(), by_name.end(), parent,
      [&](int32_t position, int32_t) { return compare(definition, position, parent, name) < 0; });
  const bool is_there = at != by_name.end() && compare(definition, *at, parent, name) == 0;
  return is_there ? *at : NO_PARENT;
}

template <size_t N>
static void keep_values(std::array<const void*, N>& values, const std::array<const void*, N>& old,
                        const std::array<dd_attribute, N>& rows) {
  for (size_t i = 0; i < N; ++i) {
    const bool keeps = rows[i].kept == dd_keeping::ALWAYS ||
                       (rows[i].kept == dd_keeping::IF_SILENT && values[i] == nullptr);
    if (keeps && old[i] != nullptr) values[i] = old[i];
  }
}

std::vector<std::string> keep_old(class_def& definition, const class_def& old) {
  keep_values(definition.values, old.values, CLASS_ATTRIBUTES);
  const std::vector<int32_t> by_name = places_by_name(old);
  std::vector<int32_t> place_in_old(definition.entries.size(), NO_PARENT);
  std::vector<bool> is_kept(old.entries.size(), false);
  for (size_t i = 0; i < definition.entries.size(); ++i) {
    entry_def& entry = definition.entries[i];
    const int32_t parent =
        entry.parent == NO_PARENT ? NO_PARENT : place_in_old[static_cast<size_t>(entry.parent)];
    if (entry.parent != NO_PARENT && parent == NO_PARENT) continue;
    const int32_t same = find_entry(old, by_name, parent, text_of(entry, ENTRY_NAME));
    place_in_old[i] = same;
    if (same == NO_PARENT) continue;
    is_kept[static_cast<size_t>(same)] = true;
    keep_values(entry.values, old.entries[static_cast<size_t>(same)].values, ENTRY_ATTRIBUTES);
  }
  std::vector<std::string> removed;
  for (size_t i = 0; i < old.entries.size(); ++i) {
    if (!is_kept[i]) removed.push_back(path_of(old, old.entries[i]));
  }
  return removed;
}

}  // namespace dm
