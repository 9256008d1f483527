// Shows on a terminal how far long work has come: one line on standard error, redrawn.
//
//   progress shown{"checking classes", 10000};
//   for (...) step(shown);             // "checking classes 3,400 of 10,000"
//   next(shown, "checking tables");    // another part of the same work
//
// Nothing is drawn before the work has taken a second, nor where standard error is no terminal. The
// line is gone when the record ends; hide() it before anything else is printed in between.
#ifndef DICT_TERMINAL_PROGRESS_H
#define DICT_TERMINAL_PROGRESS_H

#include <chrono>
#include <cstdint>

namespace dict {

struct progress {
  const char* what;    // borrowed: what is being done
  uint64_t total = 0;  // how much there is; 0 where nobody knows
  uint64_t done = 0;
  std::chrono::steady_clock::time_point due;  // when the line is drawn next
  bool is_drawn = false;

  explicit progress(const char* part, uint64_t count = 0);
  progress(const progress&) = delete;
  progress& operator=(const progress&) = delete;
  ~progress();  // takes the line away
};

void step(progress& shown, uint64_t count = 1);
void next(progress& shown, const char* what, uint64_t total = 0);
void hide(progress& shown);

}  // namespace dict

#endif
