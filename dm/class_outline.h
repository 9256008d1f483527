// What a stored definition says of names and storage, read without building lists: for questions to
// many classes at once.
#ifndef DM_CLASS_OUTLINE_H
#define DM_CLASS_OUTLINE_H

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "dm/problem.h"
#include "dm/store.h"

namespace dm {

struct outline_entry {
  const char* name = "";
  const char* sql_name = "";  // as TAV_FLD_SQL_TABLE of a field entry
  int32_t type = 0;
  int32_t parent;  // position of the container, -1 at the top level
};

struct class_outline {
  const char* table = "";  // the class's own
  std::vector<outline_entry> entries{};
};

// The table that an entry has, borrowed; empty for none.
std::string_view table_of(const outline_entry& entry);

class outline_reader {
 public:
  outline_reader();
  ~outline_reader();
  // Gives the outline of the row's definition, valid until the next is read; null with the problem
  // for a text that is none of ours.
  const class_outline* read(const class_row& row, problem& why);

 private:
  struct buffers;
  std::unique_ptr<buffers> buffers_;
};

}  // namespace dm

#endif
