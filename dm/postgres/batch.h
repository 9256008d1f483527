// Collects changes of rows and sends many with one statement, which gets each column as an array.
//
// A batch holds at most one change of any row. So the kinds can be sent in a fixed order, which
// only has to respect foreign keys. While the server works on one batch, the next is collected.
#ifndef DM_POSTGRES_BATCH_H
#define DM_POSTGRES_BATCH_H

#include <array>
#include <deque>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "dm/folded.h"
#include "dm/problem.h"

namespace dm {

// In the order in which they are sent.
enum class change {
  DELETE_FIELD,
  DELETE_TABLE,
  DELETE_CLASS,
  DESCRIBE_FIELD,
  REPLACE_CLASS,
  ADD_FIELD,
  ADD_CLASS,
  ADD_TABLE,
  ADD_JOURNAL_PART,
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

// A column's values as a binary array of the protocol, whose header is filled in when it is sent.
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

class parameters;

// A statement of a batch, from when the batch is full until its answer is there.
struct batch_statement {
  const char* sql;
  std::unique_ptr<parameters> with;  // null once it is sent
  uint64_t rows;                     // must be changed
};

struct postgres_store;

// Puts a change into the batch. The key identifies the row among all rows of all tables. If the
// batch is full or changes that row already, it is sent first; how that ended may be told by a
// later call.
bool put_change(postgres_store& store, change kind, const std::string& key,
                std::initializer_list<cell> cells, problem& why);
// Sends the batch, and waits for what the server says to it.
bool flush(postgres_store& store, problem& why);
// Waits for what the server says to batches that were sent.
bool finish_batches(postgres_store& store, problem& why);
// Forgets all that is not sent yet, and what the server says to the rest.
void drop_batches(postgres_store& store);

}  // namespace dm

#endif
