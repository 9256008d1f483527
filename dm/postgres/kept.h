// A cache of all stored classes, for a transaction that writes many of them.
//
// Each class is looked up before it is written. After 50 such look-ups all classes are read at
// once, and later ones are answered from memory; writes update it. So a list of thousands of
// classes needs no round trip for each.
#ifndef DM_POSTGRES_KEPT_H
#define DM_POSTGRES_KEPT_H

#include <map>
#include <string>

#include "dm/queries.h"

namespace dm {

struct kept_class {
  int64_t id, stamp;
  std::string name, definition;
};

struct postgres_kept {
  int asked = 0;                           // look-ups in this transaction so far
  int64_t database = 0;                    // whose classes are kept; 0: none
  std::map<std::string, kept_class> rows;  // by key
};

struct postgres_store;

// Answers a look-up from the cache, which it fills at the 50th. `answered` is false where the
// server must be asked.
bool answer_kept(postgres_store& store, int64_t database, const lookup& wanted,
                 visitor<class_row> visitor, bool& answered, problem& why);
// Updates the cache with a class that is written.
void note_kept(postgres_store& store, int64_t database, const class_row& row);

}  // namespace dm

#endif
