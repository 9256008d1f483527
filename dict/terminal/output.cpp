#include "dict/terminal/output.h"

#include <unistd.h>

#include <cerrno>
#include <iostream>

namespace dict {

output::output() : before_(std::cout.rdbuf(this)) {
  setp(room_.data(), room_.data() + room_.size());
  if (isatty(STDOUT_FILENO)) std::cout << std::unitbuf;
}

output::~output() {
  std::cout.flush();
  std::cout << std::nounitbuf;
  std::cout.rdbuf(before_);
}

int output::sync() {
  for (const char* from = pbase(); from < pptr() && error_ == 0;) {
    const ssize_t written = write(STDOUT_FILENO, from, static_cast<size_t>(pptr() - from));
    if (written >= 0) from += written;
    if (written < 0 && errno != EINTR) error_ = errno;
  }
  setp(room_.data(), room_.data() + room_.size());
  return error_ == 0 ? 0 : -1;
}

output::int_type output::overflow(int_type c) {
  if (sync() != 0) return traits_type::eof();
  if (c != traits_type::eof()) sputc(traits_type::to_char_type(c));
  return traits_type::not_eof(c);
}

}  // namespace dict
