// Collects changes of rows and sends many with one statement, which gets each column as an array.
//
// A batch holds at most one change of any row. So the kinds can be sent in a fixed order, which
// only has to respect foreign keys.
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

// A column's values as elements of a binary array of the protocol, without the array's header.
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
  key_set keys;     // of the rows that it changes
  size_t size = 0;  // of all values, in bytes
};

struct postgres_store;

// Puts a change into the batch. The key identifies the row among all rows of all tables. If the
// batch is full or changes that row already, it is sent first.
bool put_change(postgres_store& store, change kind, const std::string& key,
                std::initializer_list<cell> cells, problem& why);
// Sends the batch.
bool flush(postgres_store& store, problem& why);

}  // namespace dm

#endif
