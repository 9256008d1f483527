// Rows on their way to the server: many go with one statement, as arrays of their columns.
//
// A batch holds one change of each row at most, so that the order of the kinds does not matter
// but for what refers to what.
#ifndef DM_POSTGRES_BATCH_H
#define DM_POSTGRES_BATCH_H

#include <array>
#include <initializer_list>
#include <string>
#include <vector>

#include "dm/folded.h"
#include "dm/problem.h"

namespace dm {

// In the order in which they are sent.
enum class change {
  DELETE_FIELD,
  DELETE_TABLE,
  DESCRIBE_FIELD,
  REPLACE_CLASS,
  ADD_FIELD,
  ADD_CLASS,
  ADD_TABLE,
  CHANGES  // their number
};

// A value of a row: a number, or a text (null: NULL), which is copied.
struct cell {
  cell(int64_t value) : number(value), is_number(true) {}
  cell(int32_t value) : number(value), is_number(true) {}
  cell(const char* value) : text(value) {}
  int64_t number = 0;
  const char* text = nullptr;
  bool is_number = false;
};

// A column's values in the protocol's binary form, without the head.
struct array_column {
  std::string bytes;
  bool is_number = false;
};

struct postgres_batch {
  struct part {
    std::vector<array_column> columns;
    uint32_t rows = 0;
  };
  std::array<part, static_cast<size_t>(change::CHANGES)> parts;
  key_set keys;     // of the rows in it
  size_t size = 0;  // bytes
};

struct postgres_store;

// Puts a change into the batch. The key names the row among all; a batch that is full, or holds
// that row already, is sent first.
bool put_change(postgres_store& store, change kind, const std::string& key,
                std::initializer_list<cell> cells, problem& why);
// Sends the batch.
bool flush(postgres_store& store, problem& why);

}  // namespace dm

#endif
