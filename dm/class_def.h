// The definition of one class, read from a list: its attributes and, in the order in which they
// stand (a container before what it holds), all its field entries.
//
// Values are borrowed from the list.
#ifndef DM_CLASS_DEF_H
#define DM_CLASS_DEF_H

#include <string>
#include <vector>

#include "dm/attributes.h"
#include "vantor/binding.h"

namespace dm {

struct entry_def {
  // By row of ENTRY_ATTRIBUTES; null: not given. Of TEXTS the element that holds them.
  std::array<const void*, ENTRY_ATTRIBUTES.size()> values;
  uint32_t name_hash;  // dd_hash of the name, "" where it is not given
  int32_t type;        // 0 where it is not given
  int32_t elem_id;
  int32_t parent;  // position of the container; NO_PARENT at the top level
  int32_t depth;   // 1 at the top level
};

inline constexpr int32_t NO_PARENT = -1;

// One level more than is allowed: enough to see that it is there.
inline constexpr int32_t DEEPEST_READ = 4;

struct class_def {
  std::array<const void*, CLASS_ATTRIBUTES.size()> values;
  int32_t elem_id;
  std::vector<entry_def> entries;
};

// Reads the element of a class (what the record held before is gone).
void read_class(const tav_node* element, int32_t elem_id, class_def& result);

// Texts of attributes: empty where they are not given.
const char* text_of(const class_def& definition, class_attribute which);
const char* text_of(const entry_def& entry, entry_attribute which);

// Positions of the entries by parent, then by folded name, then by place.
std::vector<int32_t> places_by_name(const class_def& definition);

// The names from the top level down to the entry, in a row with dots between.
std::string path_of(const class_def& definition, const entry_def& entry);

// Carries over from the definition that is being replaced what a replacement keeps. Gives the paths
// of the entries that it removes.
std::vector<std::string> keep_old(class_def& definition, const class_def& old);

}  // namespace dm

#endif
