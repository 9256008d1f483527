// A process that is killed while it talks with the server.
#ifndef TESTS_DM_DYING_H
#define TESTS_DM_DYING_H

// Kills this process at the client library's message of that number: before it is sent, or behind.
void die_at(int message, bool delivered);

#endif
