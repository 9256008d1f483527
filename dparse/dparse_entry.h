// The steps around the block of a field entry.
#ifndef DPARSE_DPARSE_ENTRY_H
#define DPARSE_DPARSE_ENTRY_H

#include "dparse/dparse_element.h"
#include "dparse/dparse_lexer.h"

// Starts the entry and reads its name and "{": 1, or -1 with a message.
int dparse_entry_head(FILE* stream, dparse_element& entry, const dparse_block& block, int token);
// Hands the entry to its parent: 1, or -1 with a message.
int dparse_append_entry(tav_flist_t* parent, dparse_element& entry);

#endif
