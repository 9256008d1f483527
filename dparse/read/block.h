// Blocks: what stands between braces. Field definitions, classes and field entries are read by one
// loop, which a record tells what is allowed.
#ifndef DPARSE_READ_BLOCK_H
#define DPARSE_READ_BLOCK_H

#include <cstdio>

#include "dd/vantor.h"

namespace dparse {

struct target_element;

struct block_rules {
  unsigned attributes;       // the DD_IN_ set of the attributes
  uint32_t types;            // set of the field types whose keywords open an entry: 1 << type code
  const block_rules* entry;  // the block of such an entry; null where there are none
  // Each records and logs the block's own line and gives -1: for a token that is not allowed, and
  // after the failure of an attribute or entry whose keyword this was.
  int (*unknown)(int token, const char* text);
  int (*failed)(int token, const char* text);
};

extern const block_rules DEFINITION_BLOCK;
extern const block_rules CLASS_BLOCK;
extern const block_rules CLASS_ENTRY_BLOCK;
extern const block_rules SQL_CLASS_BLOCK;
extern const block_rules SQL_ENTRY_BLOCK;
extern const block_rules LDAP_CLASS_BLOCK;
extern const block_rules LDAP_ENTRY_BLOCK;

// Reads what follows "{", the "}" included, into the element: 1, or -1 with a message.
int read_block(FILE* stream, target_element& element);
// Reads the name and "{" of a field entry, whose list is empty: 1, or -1 with a message.
int read_entry_head(FILE* stream, target_element& entry);

}  // namespace dparse

#endif
