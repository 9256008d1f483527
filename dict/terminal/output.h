// Standard output that knows why it could not be written.
#ifndef DICT_TERMINAL_OUTPUT_H
#define DICT_TERMINAL_OUTPUT_H

#include <array>
#include <streambuf>

namespace dict {

// While this lives, std::cout writes through it: line by line on a terminal, in pieces elsewhere.
// After a write that fails nothing more is written.
class output : public std::streambuf {
 public:
  output();
  ~output() override;
  output(const output&) = delete;
  output& operator=(const output&) = delete;

  // The errno of the write that failed; 0 where none did.
  int error() const { return error_; }

 protected:
  int_type overflow(int_type c) override;
  int sync() override;

 private:
  std::array<char, 1 << 14> room_;
  std::streambuf* before_;
  int error_ = 0;
};

}  // namespace dict

#endif
