// The steps around the block of a field entry.
#ifndef DPARSE_READ_ENTRY_H
#define DPARSE_READ_ENTRY_H

#include "dparse/read/element.h"
#include "dparse/read/lexer.h"

// Reads the name and "{" of an entry, whose list is empty: 1, or -1 with a message.
int dparse_entry_head(FILE* stream, dparse_element& entry);

#endif
