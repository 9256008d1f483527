// Tests of what only a dictionary on a server meets. They run beside scripts/with-postgres.
#ifndef TESTS_DM_SERVER_H
#define TESTS_DM_SERVER_H

#include "bench.h"

// What the client library sends to the server; the last message that says how long to wait.
extern int messages_sent;
extern std::string last_limit;

// Cuts the client library's line to the server at its message of that number: the message does not
// reach the server, or it does, and the answer does not come back.
void cut_line_at(int message, bool delivered);
// Ends that, and gives whether the line was cut.
bool mend_line();

// SQL by which the server refuses a row when it is written or when it is committed: the one that
// the sequence "refusals" counts as 0.
extern const char ROW_REFUSALS[];

class on_a_server : public dictionary {
 protected:
  // Waits until the server says so.
  void wait_until(const std::string& condition) const;
  void expect_logged(const std::string& component, const std::string& words) const;
};

#endif
