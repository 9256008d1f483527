// The stored classes, kept in memory while many of them are written.
//
// Whoever writes classes looks each one up before. After some such questions all classes are read
// at once, and what is written is noted there, too: a list of thousands costs no round trip for
// each, in whatever order it stands.
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
  int asked = 0;                           // questions in this transaction
  int64_t database = 0;                    // whose classes are kept; 0: none
  std::map<std::string, kept_class> rows;  // by key
};

struct postgres_store;

// Answers from what is kept, after reading it where that pays. `answered` is false for a question
// that must be put to the server.
bool answer_kept(postgres_store& store, int64_t database, const lookup& wanted,
                 visitor<class_row> visitor, bool& answered, problem& why);
// Notes what is written.
void note_kept(postgres_store& store, int64_t database, const class_row& row);

}  // namespace dm

#endif
