#include "deploy/import/checks/hierarchy.h"

#include <algorithm>
#include <string_view>
#include <tuple>

#include "dd/memory.h"
#include "dd/values.h"
#include "dd/walk.h"
#include "deploy/import/import.h"
#include "deploy/lookup.h"
#include "deploy/report.h"

static constexpr char MODULE[] = "tav_deploy_import";

namespace {

using placed_class = deploy::placed_class;

constexpr size_t NONE = SIZE_MAX;

// The arrays and substructs of the class at hand.
struct own_arrays {
  const char* name;
  std::vector<const deploy::class_entry*> arrays{};
  std::vector<size_t> names{};                     // of each array, the first of its name
  dd_index<dd_by_name, size_t> by_name{};          // the first of each
  std::vector<std::pair<size_t, size_t>> found{};  // first of a name, and position of a class
};

}  // namespace

// Unlike look-ups, the hierarchy tells capitals from small letters.
static std::string key_of(const char* name) {
  std::string key = name;
  std::replace(key.begin(), key.end(), '/', '\0');
  return key;
}

static bool is_below(std::string_view key, std::string_view upper) {
  return key.size() > upper.size() && key[upper.size()] == '\0' && key.starts_with(upper);
}

// Each class leads to the one right above it; of several of one name each leads to the one before.
static void link_classes(std::vector<placed_class>& classes) {
  size_t above = NONE;
  for (size_t place = 0; place < classes.size(); ++place) {
    placed_class& own = classes[place];
    while (above != NONE && own.key != classes[above].key &&
           !is_below(own.key, classes[above].key)) {
      above = classes[above].above;
    }
    own.above = above;
    above = place;
  }
}

static void build(deploy::class_hierarchy& hierarchy, tav_ebuf* ebuf) {
  if (!hierarchy.entries.empty()) return;
  dd_list_walk walk(hierarchy.working_classes);
  while (tav_flist_t* storable = walk.next(at(ebuf, HERE))) {
    const char* name = dd_text(storable, TAV_FLD_NAME, at(ebuf, HERE));
    hierarchy.classes.push_back({key_of(name), hierarchy.entries.size(), NONE});
    hierarchy.entries.emplace_back(DD_ENTRIES, storable);
  }
  std::sort(hierarchy.classes.begin(), hierarchy.classes.end(), [](const auto& a, const auto& b) {
    return std::tie(a.key, a.position) < std::tie(b.key, b.position);
  });
  link_classes(hierarchy.classes);
}

// Calls with the position of every superclass and subclass.
template <class Call>
static void each_related(const std::vector<placed_class>& classes, const std::string& key,
                         Call call) {
  const auto behind = std::partition_point(classes.begin(), classes.end(),
                                           [&](const placed_class& c) { return c.key <= key; });
  size_t above =
      behind != classes.begin() ? static_cast<size_t>(behind - classes.begin()) - 1 : NONE;
  while (above != NONE && !is_below(key, classes[above].key)) above = classes[above].above;
  for (; above != NONE; above = classes[above].above) call(classes[above].position);
  const auto end = std::partition_point(
      behind, classes.end(), [&](const placed_class& c) { return is_below(c.key, key); });
  for (auto below = behind; below != end; ++below) call(below->position);
}

// Up to the first that has no name.
static void gather_arrays(own_arrays& own, deploy::siblings entries) {
  for (const deploy::class_entry& entry : entries) {
    if (!dd_is_container(entry.type)) continue;
    const size_t place = own.arrays.size();
    own.arrays.push_back(&entry);
    if (*entry.name == '\0') return;
    own.names.push_back(own.by_name.add_first(entry.name, entry.hash, place));
  }
}

// Looks for the class's arrays among the entries of another, or the other way round: whichever is
// less work.
static void find_common(own_arrays& own, dd_list& other, size_t position, tav_ebuf* ebuf) {
  constexpr size_t FEW = 8;
  const size_t count = own.names.size();
  if (count <= FEW || count <= static_cast<size_t>(other.count(at(ebuf, HERE)))) {
    for (size_t i = 0; i < count; ++i) {
      const deploy::class_entry& array = *own.arrays[i];
      if (own.names[i] != i) continue;
      if (tav_deploy_get_class_field_by_name(other, array.name, array.hash) == nullptr) continue;
      own.found.emplace_back(i, position);
    }
    return;
  }
  dd_walk walk(other.get(), TAV_FLD_OBJ_ELEM);
  while (tav_flist_t* entry = walk.next(at(ebuf, HERE))) {
    const size_t* array = own.by_name.find(dd_text(entry, TAV_FLD_FIELD_NAME, at(ebuf, HERE)));
    if (array != nullptr) own.found.emplace_back(*array, position);
  }
}

static void find_all(deploy::class_hierarchy& hierarchy, own_arrays& own, tav_ebuf* ebuf) {
  build(hierarchy, ebuf);
  each_related(hierarchy.classes, key_of(own.name), [&](size_t position) {
    find_common(own, hierarchy.entries[position], position, ebuf);
  });
  std::sort(own.found.begin(), own.found.end());
  own.found.erase(std::unique(own.found.begin(), own.found.end()), own.found.end());
}

static int report_conflicts(deploy::class_hierarchy& hierarchy, const own_arrays& own,
                            size_t array) {
  tav_ebuf ebuf{};
  auto found =
      std::lower_bound(own.found.begin(), own.found.end(), std::pair(own.names[array], size_t{0}));
  for (; found != own.found.end() && found->first == own.names[array]; ++found) {
    tav_flist_t* related = hierarchy.entries[found->second].get();
    const char* related_name = dd_text(related, TAV_FLD_NAME, at(&ebuf, HERE));
    if (dd_failed(ebuf)) return deploy::call_failed(HERE, ebuf);
    deploy::report(
        HERE, "array-in-related-class",
        {.class_name = own.name, .related_class = related_name, .field = own.arrays[array]->name});
  }
  return 1;
}

static int check_array(deploy::class_hierarchy& hierarchy, const own_arrays& own, size_t array) {
  if (*own.name != '\0' && array < own.names.size()) return report_conflicts(hierarchy, own, array);
  return deploy::report(HERE, "missing-class-name");
}

static int array_failed(const char* field_name) {
  return deploy::report(HERE, "array-not-checked", {.field = field_name});
}

int deploy::check_hierarchy(const deploy::checked_class& checked) {
  tav_ebuf ebuf{};
  deploy::class_hierarchy& hierarchy = checked.hierarchy;
  own_arrays own{checked.name};
  dd_with_memory(at(&ebuf, HERE), [&] {
    gather_arrays(own, checked.entries);
    if (!own.names.empty() && *own.name != '\0') find_all(hierarchy, own, &ebuf);
  });
  if (dd_failed(ebuf)) {
    deploy::call_failed(HERE, ebuf);
    return array_failed(own.arrays.empty() ? "" : own.arrays.front()->name);
  }
  for (size_t array = 0; array < own.arrays.size(); ++array) {
    if (check_array(hierarchy, own, array) < 1) return array_failed(own.arrays[array]->name);
  }
  return 1;
}
