// The last resort when memory has run out and no caller handled that.
#ifndef DD_LAST_RESORT_H
#define DD_LAST_RESORT_H

// From now on std::terminate for an uncaught std::bad_alloc, or for an exception that could not be
// allocated itself, prints the line to standard error and exits with the status instead of
// aborting. The line is borrowed for good.
void dd_end_without_memory(const char* line, int status);

#endif
