// The running program, as the system knows it: a program tells nothing, so that none can forget to.
#include <errno.h>

#include <cstdlib>
#include <fstream>

#include "vantor/binding.h"

tav_caller tav_caller_of_process() {
  tav_caller caller{program_invocation_short_name, TAV_VERSION, {}, {}};
  std::ifstream line("/proc/self/cmdline", std::ios::binary);
  line.exceptions(std::ios::badbit);  // want of memory is no shorter command line
  std::string argument;
  std::getline(line, argument, '\0');  // the program's name
  while (std::getline(line, argument, '\0')) caller.arguments.push_back(argument);
  if (const char* reason = std::getenv("TAV_REASON")) caller.reason = reason;
  return caller;
}
