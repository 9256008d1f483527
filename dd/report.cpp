#include "dd/report.h"

#include <unistd.h>

#include <algorithm>

#include "dd/visible.h"

static void put(FILE* stream, std::string_view text) {
  std::fwrite(text.data(), 1, text.size(), stream);
}

static void put_visible(FILE* stream, std::string_view text) {
  while (!text.empty()) {
    const dd_visible_piece piece = dd_take_visible(text);
    put(stream, piece.plain);
    std::fputs(piece.code, stream);
  }
}

// Prints piece by piece, so that it needs no memory: the message may be that there is none. A
// conversion other than %s, %d and %c would end the formatting: the rest is printed as it stands.
static void print_visible(FILE* stream, std::string_view format, va_list arguments) {
  while (!format.empty()) {
    const size_t start = std::min(format.find('%'), format.size());
    put(stream, format.substr(0, start));
    format.remove_prefix(start);
    const char conversion = format.size() > 1 ? format[1] : '\0';
    if (conversion == 's') {
      const char* text = va_arg(arguments, const char*);
      put_visible(stream, text != nullptr ? text : "(null)");
    } else if (conversion == 'c') {
      const char character = static_cast<char>(va_arg(arguments, int));
      put_visible(stream, {&character, 1});
    } else if (conversion == 'd') {
      std::fprintf(stream, "%d", va_arg(arguments, int));
    } else {
      return put(stream, format);
    }
    format.remove_prefix(2);
  }
}

static void vprint(FILE* stream, const char* format, va_list arguments) TAV_PRINTF(2, 0);
static void vprint(FILE* stream, const char* format, va_list arguments) {
  std::fflush(stdout);
  if (isatty(fileno(stream)) != 0) return print_visible(stream, format, arguments);
  std::vfprintf(stream, format, arguments);
}

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
  vprint(stderr, format, arguments);
}

void dd_print(FILE* stream, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  vprint(stream, format, arguments);
  va_end(arguments);
}

void dd_print_error_text(const char* text) {
  if (taken != nullptr) return taken->push_back(text);
  std::fflush(stdout);
  std::fputs(text, stderr);
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
