// The commands of tav_dict; each gives the exit status.
#ifndef DICT_COMMANDS_H
#define DICT_COMMANDS_H

#include <string>

#include "dm/problem.h"

namespace dict {

enum exit_status { DONE = 0, FOUND = 1, FAILED = 2 };

int init();
int add_database(const std::string& number);
int status();
int check();
int backup(const std::string& file);
int restore(const std::string& file);

// Says on standard error what went wrong; gives FAILED.
int fail(const dm::problem& why);

}  // namespace dict

#endif
