#include "dict/terminal/question.h"

#include <unistd.h>

#include <iostream>

namespace dict {

bool can_ask() {
  return isatty(STDIN_FILENO) != 0 && isatty(STDOUT_FILENO) != 0;
}

bool agrees(const std::string& question) {
  std::cout.flush();
  std::cerr << question << " Type yes: ";
  std::string answer;
  std::getline(std::cin, answer);
  return answer == "yes";
}

}  // namespace dict
