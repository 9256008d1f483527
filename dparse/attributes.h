// The attributes of the language: how those of dd/attributes.h are read and written.
//
// A value that is spelled in a new way is a new form: a function that reads it and one that writes
// it.
#ifndef DPARSE_ATTRIBUTES_H
#define DPARSE_ATTRIBUTES_H

#include <cstdio>
#include <span>

#include "dd/attributes.h"
#include "dd/vantor.h"
#include "dparse/words.h"

namespace dparse {

enum class message : unsigned char;  // what the reader says: dparse/read/messages.h
struct target_element;               // what a reader fills
struct write_state;                  // where a writer stands
struct attribute;

// How a value is spelled.
struct value_form {
  // Reads what follows the keyword, ";" included, and stores it: 1, or -1 with a message (the block
  // adds a line of its own to the log), or 0 with all messages.
  int (*read)(FILE* stream, target_element& element, const attribute& row);
  // Writes the line, or nothing where the value (null: absent) calls for none; null: never written.
  // A failure stays in the writing's error buffer.
  void (*write)(write_state& writing, const attribute& row, const void* value);
  bool required = false;            // the writer takes a missing value for a failure
  const char* refused_takes = "s";  // the letters of the conversions in the row's `refused`
};

struct attribute {
  int token;
  uint32_t field;  // of a text in an array: the text's
  const value_form* form;
  unsigned read_in;     // sets of contexts
  unsigned written_in;  // the SQL names of an entry depend on its type: see write/storage.cpp
  const value_word* words = nullptr;  // of a value from a word list
  message refused{};                  // for a value that is not allowed; else NONE
  message expected{};                 // for one of another kind, where that differs; else NONE
};

// In the order in which they are written.
std::span<const attribute> attributes();

// The row of an attribute that may stand there, or null.
const attribute* find_attribute(int token, unsigned context);

}  // namespace dparse

#endif
