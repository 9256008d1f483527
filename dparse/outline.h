// The classes of a list with their field entries at every depth, walked once for all that go
// through them: in the order in which they are written, each entry before those inside it.
//
// A failure ends the walk and the outline. Whoever goes through it meets the failure in that place.
#ifndef DPARSE_OUTLINE_H
#define DPARSE_OUTLINE_H

#include <span>
#include <vector>

#include "dd/vantor.h"

namespace dparse {

inline constexpr int32_t TYPE_NOT_KNOWN = -1;

struct outlined_entry {
  tav_flist_t* entry;  // null: the walk failed here
  const char* name;    // borrowed; null: it has none
  int32_t depth;       // that of a class's own entries is 1
  int32_t type;        // of its field; kept by the first who looks it up
};

struct outlined_class {
  tav_flist_t* element;  // null: the walk failed here
  size_t first;          // its entries
  size_t count;
};

struct class_outline {
  std::vector<outlined_class> classes;
  std::vector<outlined_entry> entries;
  tav_ebuf failure;  // of the walk
};

// Walks a list of classes, unless the buffer holds a failure: that is the outline's, then.
class_outline outline_classes(tav_flist_t* class_list, const tav_ebuf& ebuf);
// Walks the entries of one class or entry, which are at that depth. The outline holds no class.
class_outline outline_entries(tav_flist_t* parent, int depth);

inline std::span<outlined_entry> entries_of(class_outline& outline,
                                            const outlined_class& storable) {
  return std::span(outline.entries).subspan(storable.first, storable.count);
}

}  // namespace dparse

#endif
