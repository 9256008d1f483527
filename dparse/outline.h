// The classes of a list with their field entries at every depth, walked once for all that go
// through them: in the order in which they are written, each entry before those inside it.
//
// A failure ends the walk and the outline. Whoever goes through it meets the failure in that place.
#ifndef DPARSE_OUTLINE_H
#define DPARSE_OUTLINE_H

#include <span>
#include <vector>

#include "dd/vantor.h"

inline constexpr int32_t DPARSE_TYPE_NOT_KNOWN = -1;

struct dparse_outline_entry {
  tav_flist_t* entry;  // null: the walk failed here
  const char* name;    // borrowed; null: it has none
  int32_t depth;       // that of a class's own entries is 1
  int32_t type;        // of its field; kept by the first who looks it up
};

struct dparse_outline_class {
  tav_flist_t* element;  // null: the walk failed here
  size_t first;          // its entries
  size_t count;
};

struct dparse_outline {
  std::vector<dparse_outline_class> classes;
  std::vector<dparse_outline_entry> entries;
  tav_ebuf failure;  // of the walk
};

// Walks a list of classes, unless the buffer holds a failure: that is the outline's, then.
dparse_outline dparse_outline_classes(tav_flist_t* class_list, const tav_ebuf& ebuf);
// Walks the entries of one class or entry, which are at that depth. The outline holds no class.
dparse_outline dparse_outline_entries(tav_flist_t* parent, int depth);

inline std::span<dparse_outline_entry> dparse_entries_of(dparse_outline& outline,
                                                         const dparse_outline_class& storable) {
  return std::span(outline.entries).subspan(storable.first, storable.count);
}

#endif
