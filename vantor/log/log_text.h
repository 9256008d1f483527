// The text of a log record.
#ifndef VANTOR_LOG_LOG_TEXT_H
#define VANTOR_LOG_LOG_TEXT_H

#include <chrono>
#include <string>

#include "dd/vantor.h"

namespace vantor {

constexpr size_t INDENT = 2;  // blanks per level in the lines after a record's first

// Appends the time, in UTC with milliseconds.
void append_time(std::string& out, std::chrono::milliseconds since_1970);
// Appends TIME HOST PROGRAM[PID] LEVEL SOURCE:LINE MESSAGE and a line end. Further lines of the
// message are indented, so that none looks like a record.
void append_head(std::string& out, int32_t level, const char* message, const char* source,
                 int32_t line);
// Appends the buffer's members, one a line, indented.
void append_ebuf(std::string& out, const tav_ebuf& ebuf);

}  // namespace vantor

#endif
