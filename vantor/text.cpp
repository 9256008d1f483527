#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "dd/vantor.h"

size_t tav_snprintf(char* buffer, size_t size, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(buffer, size < INT_MAX ? size : INT_MAX, format, arguments);
  va_end(arguments);
  if (length >= 0) return static_cast<size_t>(length);
  if (size > 0) buffer[0] = '\0';
  return 0;
}

size_t tav_strlcpy(char* buffer, const char* text, size_t size) {
  const size_t length = std::strlen(text);
  if (size == 0) return length;
  const size_t copied = length < size ? length : size - 1;
  std::memcpy(buffer, text, copied);
  buffer[copied] = '\0';
  return length;
}

size_t tav_strlcat(char* buffer, const char* text, size_t size) {
  const size_t used = strnlen(buffer, size);
  return used + tav_strlcpy(buffer + used, text, size - used);
}
