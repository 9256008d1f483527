#include "deploy/tav_deploy_import_hierarchy.h"

#include <algorithm>
#include <optional>
#include <string>

#include "dd/memory.h"
#include "dd/values.h"
#include "deploy/tav_deploy_lookup.h"
#include "deploy/tav_deploy_report.h"

static constexpr char MODULE[] = "tav_deploy_import";

static void build(tav_deploy_hierarchy& hierarchy, tav_ebuf* ebuf) {
  if (!hierarchy.entries.empty()) return;
  dd_list_walk walk(hierarchy.working_classes);
  while (tav_flist_t* storable = walk.next(at(ebuf, HERE))) {
    const char* name = dd_text(storable, TAV_FLD_NAME, at(ebuf, HERE));
    hierarchy.by_name.push_back({name, hierarchy.entries.size()});
    hierarchy.entries.emplace_back(DD_ENTRIES, storable);
  }
  std::sort(hierarchy.by_name.begin(), hierarchy.by_name.end(),
            [](const auto& a, const auto& b) { return a.name < b.name; });
}

// Adds the positions of the classes from `first` on in order of name, as long as they are wanted.
template <class Wanted>
static void add_while(const tav_deploy_hierarchy& hierarchy, std::string_view first, Wanted wanted,
                      std::vector<size_t>& positions) {
  auto at_name = std::lower_bound(
      hierarchy.by_name.begin(), hierarchy.by_name.end(), first,
      [](const tav_deploy_named_class& named, std::string_view name) { return named.name < name; });
  for (; at_name != hierarchy.by_name.end() && wanted(at_name->name); ++at_name) {
    positions.push_back(at_name->position);
  }
}

// The positions of all superclasses and subclasses, in the working list's order. Unlike look-ups,
// this tells capitals from small letters.
static std::vector<size_t> related(const tav_deploy_hierarchy& hierarchy, std::string_view name) {
  std::vector<size_t> positions;
  for (size_t cut = name.find('/'); cut != name.npos; cut = name.find('/', cut + 1)) {
    const std::string_view superclass = name.substr(0, cut);
    add_while(
        hierarchy, superclass, [=](std::string_view other) { return other == superclass; },
        positions);
  }
  const std::string below = std::string(name) + '/';
  add_while(
      hierarchy, below, [&](std::string_view other) { return other.starts_with(below); },
      positions);
  std::sort(positions.begin(), positions.end());
  return positions;
}

static int report_conflicts(tav_deploy_hierarchy& hierarchy, const std::vector<size_t>& positions,
                            const char* class_name, const char* field_name) {
  tav_ebuf ebuf{};
  for (const size_t position : positions) {
    dd_list& entries = hierarchy.entries[position];
    if (tav_deploy_get_class_field_by_name(entries, field_name) == nullptr) continue;
    const char* related_name = dd_text(entries.get(), TAV_FLD_NAME, at(&ebuf, HERE));
    if (dd_failed(ebuf)) return tav_deploy_call_failed(HERE, ebuf);
    tav_deploy_report(HERE, tav_deploy_raises::ERROR,
                      "Array or Substruct conflict in class hierarchy",
                      "Error: Array or Substruct conflict in class hierarchy %s, %s, %s\n",
                      related_name, class_name, field_name);
  }
  return 1;
}

// The related classes are sought once, for the class's first array.
static int check_array(tav_deploy_hierarchy& hierarchy,
                       std::optional<std::vector<size_t>>& positions, const char* class_name,
                       const char* field_name) {
  if (*class_name == '\0' || *field_name == '\0') {
    return tav_deploy_fail(HERE, "Missing class name", "Error: Internal Error\n");
  }
  tav_ebuf ebuf{};
  dd_with_memory(at(&ebuf, HERE), [&] {
    build(hierarchy, &ebuf);
    if (!positions) positions = related(hierarchy, class_name);
  });
  if (dd_failed(ebuf)) return tav_deploy_call_failed(HERE, ebuf);
  return report_conflicts(hierarchy, *positions, class_name, field_name);
}

int tav_deploy_check_hierarchy(tav_deploy_hierarchy& hierarchy, tav_deploy_siblings entries,
                               const char* class_name) {
  std::optional<std::vector<size_t>> positions;
  for (const tav_deploy_entry& entry : entries) {
    if (entry.type != TAV_FLDT_ARRAY && entry.type != TAV_FLDT_SUBSTRUCT) continue;
    if (check_array(hierarchy, positions, class_name, entry.name) >= 1) continue;
    return tav_deploy_fail(HERE, "Unable to check duplicate array",
                           "Error: Unable to check duplicate array %s\n", entry.name);
  }
  return 1;
}
