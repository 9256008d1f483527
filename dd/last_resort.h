// What is left where memory has run out and nobody could give up his work in good order.
#ifndef DD_LAST_RESORT_H
#define DD_LAST_RESORT_H

// Has the process end with that line on standard error and that status, in place of being aborted,
// where an exception finds no memory for itself or where nobody catches that there was none. The
// line is kept as it is.
void dd_end_without_memory(const char* line, int status);

#endif
