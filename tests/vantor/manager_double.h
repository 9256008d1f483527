// A data manager that records what it is asked for and gives every operation's input back.
#ifndef TESTS_VANTOR_MANAGER_DOUBLE_H
#define TESTS_VANTOR_MANAGER_DOUBLE_H

#include <string>

#include "vantor/binding.h"

struct manager_double {
  std::string calls;
  int32_t connect_error = 0;
};
extern manager_double the_manager;

#endif
