// What is being read: a field definition, a class or a field entry.
#ifndef DPARSE_READ_ELEMENT_H
#define DPARSE_READ_ELEMENT_H

#include "dd/owners.h"
#include "dparse/read/block.h"
#include "dparse/tokens.h"

namespace dparse {

struct target_element {
  tav_flist_t* list;                // borrowed
  const block_rules* block;         // what its braces may hold
  const char* class_name = "";      // of a class; its list is not asked, which then is packed
  int32_t type = TAV_FLDT_UNUSED;   // of a field
  int32_t entry_count = 0;          // of the entries in it
  tav_flist_t* earlier = nullptr;   // field definition: the one of its name read before
  uint32_t hash = 0;                // and the name's hash
  int token = 0;                    // field entry: the keyword that opened it,
  char keyword[KEYWORD_SIZE] = "";  // as it was written
};

// Each gives 1, or -1 with a message: sets a value; adds an element that holds one text.
int store_text(target_element& element, uint32_t field, const char* text);
int store_number(target_element& element, uint32_t field, int32_t number);
int store_element(target_element& element, uint32_t array, uint32_t field, const char* text);
// A text of the element, borrowed; empty where it is absent.
const char* text_of(const target_element& element, uint32_t field);

}  // namespace dparse

#endif
