// Telling the operator (standard error) and the administrator (the application's tavlog).
#ifndef DD_REPORT_H
#define DD_REPORT_H

#include <cstdarg>
#include <cstdio>
#include <string>
#include <vector>

#include "dd/call.h"

// Prints to standard error. Flushes standard output first, so that both keep their order where they
// end in one place. On a terminal, texts and characters among the arguments are made visible
// (dd/visible.h): names and descriptions may hold anything. Only the conversions %s, %d and %c may
// be used, without width or flags.
void dd_print_error(const char* format, ...) TAV_PRINTF(1, 2);
void dd_vprint_error(const char* format, va_list arguments) TAV_PRINTF(1, 0);
// The same to another stream.
void dd_print(FILE* stream, const char* format, ...) TAV_PRINTF(2, 3);

// Prints a text of the program's own, of any number of lines, to standard error as it is.
void dd_print_error_text(const char* text);

// From now on these calls append each text to `texts` instead of printing it; null ends that.
void dd_take_errors(std::vector<std::string>* texts);

// One record of level 1; the second form with the error buffer's contents.
void dd_log(dd_site site, const char* message);
void dd_log(dd_site site, const char* message, const tav_ebuf& ebuf);

#endif
