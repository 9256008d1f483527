// The reader's judgement of a text.
#ifndef LINT_JUDGE_H
#define LINT_JUDGE_H

#include <string>
#include <string_view>

#include "dd/list.h"
#include "dparse/read/messages.h"

namespace lint {

// The definitions that are read, as an import has them.
struct definitions {
  dd_list fields;
  dd_list interfaces;
  dd_list implementations;

  definitions();
  definitions(const definitions&) = delete;
  definitions& operator=(const definitions&) = delete;
};

struct verdict {
  dparse::message told = dparse::message::NONE;  // NONE: the reader takes the text
  std::string sentence{};                        // one line, in the reader's words
  size_t definitions = 0;                        // read before the one that failed
  uint64_t line = 0;                             // at which the reader tells it
  size_t taken = 0;                              // bytes up to the end of the token that failed
  bool ended = false;                            // the text ended where a token was expected

  bool is_sound() const { return told == dparse::message::NONE; }
};

// Reads definitions up to one that fails. Throws std::bad_alloc.
verdict judge(std::string_view text, definitions& to);
// The same for a text whose definitions nobody wants.
verdict judge(std::string_view text);

}  // namespace lint

#endif
