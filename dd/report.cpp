#include "dd/report.h"

#include <cstdio>

void dd_vprint_error(const char* format, va_list arguments) {
  std::fflush(stdout);
  std::vfprintf(stderr, format, arguments);
}

void dd_print_error(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  dd_vprint_error(format, arguments);
  va_end(arguments);
}

void dd_log(dd_site site, const char* message) {
  tav_err_log_msg(1, message, site.module, site.line);
}

void dd_log(dd_site site, const char* message, const tav_ebuf& ebuf) {
  tav_err_log_ebuf(1, message, site.module, site.line, &ebuf);
}
