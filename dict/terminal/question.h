// Asking the person at the terminal.
#ifndef DICT_TERMINAL_QUESTION_H
#define DICT_TERMINAL_QUESTION_H

#include <string>

namespace dict {

// Whether there is somebody to ask: one who can answer and sees what is asked about, which goes to
// standard output.
bool can_ask();

// Asks; only "yes" agrees.
bool agrees(const std::string& question);

}  // namespace dict

#endif
