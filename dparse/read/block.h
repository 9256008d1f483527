// Blocks: what stands between braces. Field definitions, classes and field entries are read by one
// loop, which a record tells what is allowed.
#ifndef DPARSE_READ_BLOCK_H
#define DPARSE_READ_BLOCK_H

#include <cstdio>

#include "dd/vantor.h"

struct dparse_element;

struct dparse_block {
  unsigned attributes;        // the DD_IN_ set of the attributes
  uint32_t types;             // set of the field types whose keywords open an entry: 1 << type code
  const dparse_block* entry;  // the block of such an entry; null where there are none
  // Each records and logs the block's own line and gives -1: for a token that is not allowed, and
  // after the failure of an attribute or entry whose keyword this was.
  int (*unknown)(int token, const char* text);
  int (*failed)(int token, const char* text);
};

extern const dparse_block DPARSE_DEFINITION;
extern const dparse_block DPARSE_CLASS;
extern const dparse_block DPARSE_CLASS_ENTRY;
extern const dparse_block DPARSE_SQL_CLASS;
extern const dparse_block DPARSE_SQL_ENTRY;
extern const dparse_block DPARSE_LDAP_CLASS;
extern const dparse_block DPARSE_LDAP_ENTRY;

// Reads what follows "{", the "}" included, into the element: 1, or -1 with a message.
int dparse_read_block(FILE* stream, dparse_element& element);
// Reads the name and "{" of a field entry, whose list is empty: 1, or -1 with a message.
int dparse_entry_head(FILE* stream, dparse_element& entry);

#endif
