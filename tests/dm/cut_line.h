// A line to the server that is cut at a given message of the client.
#ifndef TESTS_DM_CUT_LINE_H
#define TESTS_DM_CUT_LINE_H

#include <string>
#include <thread>

class cut_line {
 public:
  // Listens in the folder as a server would. The message of that number (from 1) does not reach
  // the server; or it does, and its answer does not come back.
  cut_line(const std::string& folder, int message, bool delivered);
  ~cut_line();
  cut_line(const cut_line&) = delete;
  cut_line& operator=(const cut_line&) = delete;

 private:
  void carry(int left, bool delivered) const;
  int listening_;
  std::thread thread_;
};

#endif
