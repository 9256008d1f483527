// The two things that are written about a class: its interface and its implementation.
#ifndef DPARSE_WRITE_ENTRIES_H
#define DPARSE_WRITE_ENTRIES_H

#include "dd/list.h"
#include "dparse/outline.h"
#include "dparse/write/forms.h"

struct dparse_side {
  unsigned in_class;  // the attributes of a class, and of its field entries
  unsigned in_entry;
  const char* class_tail;  // what follows the class name
  // Writes the attributes of a field entry that has that type.
  void (*write_entry)(dparse_writing& writing, const dparse_place& place,
                      const dparse_values& values, int type_code);
  const char* failed;  // what is said, level by level, when the entries cannot be written
};

extern const dparse_side DPARSE_INTERFACE;
extern const dparse_side DPARSE_IMPLEMENTATION;

// What the classes or entries of one export are written with.
struct dparse_exporting {
  dparse_exporting(FILE* stream, dd_list* fields, const dparse_side& what)
      : out(stream),
        field_list(fields),
        side(what),
        in_class(what.in_class),
        in_entry(what.in_entry) {}

  dparse_out out;
  dd_list* field_list;
  const dparse_side& side;
  const dparse_place in_class;
  const dparse_place in_entry;
};

// Writes the entries, the first of which is at that depth: 1, or -1. `failure` is the outline's.
int dparse_write_entries(dparse_exporting& to, std::span<dparse_outline_entry> entries, int depth,
                         const tav_ebuf& failure);

#endif
