// Stored classes read ahead while a list of them is written.
//
// Whoever writes many classes looks each one up before, most often in the order of their keys. So
// a look-up reads the classes that follow it, too: more each time, as long as they are asked for.
#ifndef DM_POSTGRES_AHEAD_H
#define DM_POSTGRES_AHEAD_H

#include <map>
#include <set>
#include <string>

#include "dm/queries.h"

namespace dm {

struct kept_class {
  int64_t id, stamp;
  std::string name, definition;
};

struct postgres_ahead {
  int64_t database = 0;                    // 0: nothing is kept
  std::string first, last;                 // all classes with keys from first to last are kept
  std::map<std::string, kept_class> rows;  // by key
  std::set<std::string> written;           // keys whose classes are newer than that
  int size = 1;                            // how many rows to read
  int used = 0;                            // how many of those kept were asked for
};

struct postgres_store;

// Answers from what is kept, after reading it ahead where that promises something. `answered` is
// false for a question that must be put to the server.
bool answer_ahead(postgres_store& store, int64_t database, const lookup& wanted,
                  visitor<class_row> visitor, bool& answered, problem& why);

}  // namespace dm

#endif
