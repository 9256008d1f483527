// Telling the operator (standard error) and the administrator (the application's tavlog).
#ifndef DD_REPORT_H
#define DD_REPORT_H

#include <cstdarg>
#include <string>
#include <vector>

#include "dd/call.h"

// Prints to standard error; what standard output holds goes out first, so that both keep their
// order where they end in one place.
void dd_print_error(const char* format, ...) TAV_PRINTF(1, 2);
void dd_vprint_error(const char* format, va_list arguments) TAV_PRINTF(1, 0);

// From now on each text that is printed so is appended there in place of it; null ends that.
void dd_take_errors(std::vector<std::string>* texts);

// One record of level 1; the second form with the error buffer's contents.
void dd_log(dd_site site, const char* message);
void dd_log(dd_site site, const char* message, const tav_ebuf& ebuf);

#endif
