// The two things that are written about a class: its interface and its implementation.
#ifndef DPARSE_WRITE_ENTRIES_H
#define DPARSE_WRITE_ENTRIES_H

#include "dd/list.h"
#include "dparse/outline.h"
#include "dparse/write/forms.h"

namespace dparse {

struct export_side {
  unsigned in_class;  // the attributes of a class, and of its field entries
  unsigned in_entry;
  const char* class_tail;  // what follows the class name
  // Writes the attributes of a field entry that has that type.
  void (*write_entry)(write_state& writing, const attribute_place& place,
                      const attribute_values& values, int type_code);
  const char* failed;  // what is said, level by level, when the entries cannot be written
};

extern const export_side INTERFACE_SIDE;
extern const export_side IMPLEMENTATION_SIDE;

// What the classes or entries of one export are written with.
struct exporting {
  exporting(FILE* stream, dd_list* fields, const export_side& what)
      : out(stream),
        field_list(fields),
        side(what),
        in_class(what.in_class),
        in_entry(what.in_entry) {}

  output out;
  dd_list* field_list;
  const export_side& side;
  const attribute_place in_class;
  const attribute_place in_entry;
};

// Writes the entries, the first of which is at that depth: 1, or -1. `failure` is the outline's.
int write_entries(exporting& to, std::span<outlined_entry> entries, int depth,
                  const tav_ebuf& failure);

}  // namespace dparse

#endif
