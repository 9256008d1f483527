// Why an operation was refused or a dictionary could not be reached.
#ifndef DM_PROBLEM_H
#define DM_PROBLEM_H

#include <initializer_list>
#include <string>
#include <string_view>

#include "dd/vantor.h"

namespace dm {

struct problem {
  int32_t code = TAV_ERR_NONE;  // TAV_ERR_
  uint32_t field = 0;           // identifier of the field concerned, 0 for none
  int32_t rec_id = 0;           // id of the element concerned
  int32_t detail = 0;           // the engine's result code, an errno
  std::string sentence{};       // for the administrator: what was wrong with which field or class
  bool is_unreachable = false;  // the connection to the dictionary is lost
  bool is_damage = false;       // what the dictionary holds is at fault, not the access to it
};

inline bool failed(const problem& why) {
  return why.code != TAV_ERR_NONE;
}

// Whether the dictionary could not answer: it is no fault of what was asked.
inline bool is_of_the_system(const problem& why) {
  return why.code == TAV_ERR_NO_MEM || why.code == TAV_ERR_BUSY || why.code == TAV_ERR_STORAGE ||
         why.code == TAV_ERR_NOT_CONNECTED;
}

// The pieces as one text.
std::string join(std::initializer_list<std::string_view> pieces);

// A user's text as part of a sentence: in single quotes, control characters replaced by '?', cut to
// 200 bytes or a little less (never within a character).
std::string quoted(std::string_view text);

}  // namespace dm

#endif
