// What a run reads must not be what it writes.
#ifndef DICT_LINT_SPARED_H
#define DICT_LINT_SPARED_H

#include <string>
#include <vector>

#include "dm/problem.h"

namespace dict {

// Whether the file that the option names is none of those that are read, by whatever name ("-" for
// standard input), and nothing that a database keeps beside it. Only regular files can be lost.
// False with the reason.
bool is_spared(const char* option, const std::string& written, const std::vector<std::string>& read,
               dm::problem& why);

}  // namespace dict

#endif
