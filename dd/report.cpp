#include "dd/report.h"

#include <cstdio>

static std::vector<std::string>* taken;

void dd_take_errors(std::vector<std::string>* texts) {
  taken = texts;
}

static void take(const char* format, va_list arguments) {
  va_list measured;
  va_copy(measured, arguments);
  const int length = std::vsnprintf(nullptr, 0, format, measured);
  va_end(measured);
  std::string text(length > 0 ? static_cast<size_t>(length) : 0, '\0');
  std::vsnprintf(text.data(), text.size() + 1, format, arguments);
  taken->push_back(std::move(text));
}

void dd_vprint_error(const char* format, va_list arguments) {
  if (taken != nullptr) return take(format, arguments);
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
