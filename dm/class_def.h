// The definition of one class, read from a list: its attributes and all its field entries, each
// container before its own entries. Values are borrowed from the list.
#ifndef DM_CLASS_DEF_H
#define DM_CLASS_DEF_H

#include <string>
#include <vector>

#include "dm/attributes.h"
#include "vantor/binding.h"

namespace dm {

struct entry_def {
  // By row of ENTRY_ATTRIBUTES; null: not given. For TEXTS the node that has the array.
  std::array<const void*, ENTRY_ATTRIBUTES.size()> values;
  uint32_t name_hash;  // dd_hash of the name; a missing name counts as ""
  int32_t type;        // 0 where it is not given
  int32_t elem_id;
  int32_t parent;  // index of its container in `entries`; NO_PARENT at the top level
  int32_t depth;   // 1 at the top level
};

inline constexpr int32_t NO_PARENT = -1;

// Entries are read down to this depth: one level more than the rules allow, so that they see it.
inline constexpr int32_t DEEPEST_READ = 4;

struct class_def {
  std::array<const void*, CLASS_ATTRIBUTES.size()> values;  // by row of CLASS_ATTRIBUTES
  int32_t elem_id;
  std::vector<entry_def> entries;
};

// Reads a class from its element. Overwrites what `result` held.
void read_class(const tav_node* element, int32_t elem_id, class_def& result);

// The text of an attribute, borrowed; "" where it is not given.
const char* text_of(const class_def& definition, class_attribute which);
const char* text_of(const entry_def& entry, entry_attribute which);

// The indexes of all entries, sorted by parent, then by folded name, then by index.
std::vector<int32_t> places_by_name(const class_def& definition);

// The names from the top level down to the entry, joined with dots.
std::string path_of(const class_def& definition, const entry_def& entry);

// Copies into `definition` those values of `old`, the definition that it replaces, which a
// replacement keeps (dd_keeping); they stay borrowed from the list of `old`. Gives the paths of the
// entries of `old` that `definition` lacks.
std::vector<std::string> keep_old(class_def& definition, const class_def& old);

}  // namespace dm

#endif
