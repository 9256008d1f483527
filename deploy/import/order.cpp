// Puts every class after its superclasses, and reports superclasses that are missing.
#include <cstring>
#include <string>

#include "dd/memory.h"
#include "dd/values.h"
#include "dd/walk.h"
#include "deploy/import/import.h"
#include "deploy/lookup.h"
#include "deploy/report.h"

static constexpr char MODULE[] = "tav_deploy_import";

namespace {

// The beginning of a class's name that names a superclass.
struct superclass {
  std::string_view name;
  uint32_t hash;
};

struct class_lists {
  dd_list& ordering;
  dd_list& working;
  dd_list& input;
  // Names of classes that are in their places with all above them: nothing is left to do for those
  // above a class that stands below such a one.
  dd_index<dd_by_name, tav_flist_t*> settled{};
  const char* name = nullptr;       // of the class at hand
  std::vector<superclass> above{};  // it, from the top
};

}  // namespace

static void read_superclasses(const char* name, std::vector<superclass>& above) {
  above.clear();
  dd_hash_of_beginnings hashes(name);
  for (const char* cut = std::strchr(name + 1, '/'); cut != nullptr;
       cut = std::strchr(cut + 1, '/')) {
    const auto length = static_cast<size_t>(cut - name);
    above.push_back({{name, length}, hashes.next(length)});
  }
}

// The class of that name in the working list, or null after a report.
static tav_flist_t* place_superclass(class_lists& lists, const superclass& upper, tav_ebuf* ebuf) {
  tav_flist_t* known = tav_deploy_get_class_by_name(lists.working, upper.name, upper.hash);
  if (known == nullptr) {
    const std::string upper_name(upper.name);
    deploy::report(HERE, "missing-superclass",
                   {.class_name = lists.name, .related_class = upper_name.c_str()});
    return nullptr;
  }
  if (tav_deploy_get_class_by_name(lists.ordering, upper.name, upper.hash) != nullptr) return known;
  tav_flist_t* input = tav_deploy_get_class_by_name(lists.input, upper.name, upper.hash);
  if (input != nullptr) lists.ordering.lend(input, at(ebuf, HERE));
  return known;
}

static void place_superclasses(class_lists& lists, tav_ebuf* ebuf) {
  const std::vector<superclass>& above = lists.above;
  size_t place = above.size();
  while (place > 0 && lists.settled.find(above[place - 1].name, above[place - 1].hash) == nullptr) {
    --place;
  }
  for (bool are_there = true; place < above.size(); ++place) {
    tav_flist_t* known = place_superclass(lists, above[place], ebuf);
    are_there = are_there && known != nullptr;
    if (!are_there) continue;
    lists.settled.add(dd_text(known, TAV_FLD_NAME, at(ebuf, HERE)), above[place].hash, known);
  }
}

static int place_class(class_lists& lists, tav_flist_t* storable) {
  tav_ebuf ebuf{};
  const char* name = dd_text(storable, TAV_FLD_NAME, at(&ebuf, HERE));
  if (*name == '\0') return deploy::report(HERE, "missing-class-name");
  if (*name != '/') {
    deploy::report(HERE, "class-name-without-slash", {.class_name = name});
    return 1;
  }
  dd_with_memory(at(&ebuf, HERE), [&] {
    lists.name = name;
    read_superclasses(name, lists.above);
    place_superclasses(lists, &ebuf);
  });
  lists.ordering.lend(storable, at(&ebuf, HERE));
  return dd_failed(ebuf) ? deploy::call_failed(HERE, ebuf) : 1;
}

int tav_deploy_prep_subclass(dd_list& ordering, dd_list& working_classes, dd_list& input_classes,
                             tav_flist_t* storable) {
  class_lists lists{ordering, working_classes, input_classes};
  return place_class(lists, storable);
}

int deploy::import_order(deploy::import_state& state) {
  tav_ebuf ebuf{};
  class_lists lists{state.ordered_classes, state.working_classes, state.classes};
  dd_walk walk(state.classes.get(), TAV_FLD_OBJ_DESC);
  while (tav_flist_t* storable = walk.next(at(&ebuf, HERE))) {
    if (place_class(lists, storable) >= 1) continue;
    return deploy::report(HERE, "subclass-not-prepared");
  }
  return dd_failed(ebuf) ? deploy::call_failed(HERE, ebuf) : 1;
}
