// The reader's failing: one statement that records (the first message stands), logs, and gives -1.
#ifndef DPARSE_READ_STATE_H
#define DPARSE_READ_STATE_H

#include "dd/call.h"

// What a client-library call that failed is reported as.
inline constexpr char DPARSE_INTERNAL_ERROR[] = "Error: Internal Error";
// A type that cannot stand there.
inline constexpr char DPARSE_INVALID_TYPE[] = "Invalid field type";

// Line 1, no message: the start of a file.
void dparse_reset();
// Forgets the message.
void dparse_forget_message();
// Records the message without a log record.
void dparse_note(const char* format, ...) TAV_PRINTF(1, 2);
// Records and logs the message; gives -1.
int dparse_fail(dd_site site, const char* format, ...) TAV_PRINTF(2, 3);
// Records one text and logs another; gives -1.
int dparse_fail_as(dd_site site, const char* recorded, const char* format, ...) TAV_PRINTF(3, 4);
// Records and logs the internal error that the buffer holds; gives -1.
int dparse_call_failed(dd_site site, const tav_ebuf& ebuf);
// Gives 1, or -1 with that failure when the buffer holds an error.
inline int dparse_done(dd_site site, const tav_ebuf& ebuf) {
  return dd_failed(ebuf) ? dparse_call_failed(site, ebuf) : 1;
}

#endif
