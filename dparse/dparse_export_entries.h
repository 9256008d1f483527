// The two things that are written about a class: its interface and its implementation.
#ifndef DPARSE_DPARSE_EXPORT_ENTRIES_H
#define DPARSE_DPARSE_EXPORT_ENTRIES_H

#include "dd/list.h"
#include "dparse/dparse_export_forms.h"

struct dparse_side {
  unsigned in_class;  // the attributes of a class, and of its field entries
  unsigned in_entry;
  const char* class_tail;  // what follows the class name
  // Writes the attributes of a field entry that has that type.
  void (*write_entry)(dparse_writing& writing, const dparse_values& values, int type_code);
  const char* failed;  // what is said, level by level, when the entries cannot be written
};

extern const dparse_side DPARSE_INTERFACE;
extern const dparse_side DPARSE_IMPLEMENTATION;

// Writes the entries of the parent and all inside them: 1, or -1.
int dparse_write_entries(dparse_out& out, dd_list* field_list, tav_flist_t* parent, int depth,
                         const dparse_side& side);

#endif
