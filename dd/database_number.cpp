#include "dd/database_number.h"

#include <charconv>

std::string dd_database_text(uint64_t number) {
  std::string text;
  for (int shift = 48; shift >= 0; shift -= 16) {
    if (!text.empty()) text += '.';
    text += std::to_string((number >> shift) & 0xffff);
  }
  return text;
}

bool dd_read_database(std::string_view text, uint64_t& number) {
  const char* at = text.data();
  const char* end = at + text.size();
  uint64_t packed = 0;
  for (int group = 0; group < 4; ++group) {
    if (group > 0 && (at == end || *at++ != '.')) return false;
    uint16_t value = 0;
    const auto read = std::from_chars(at, end, value);
    if (read.ec != std::errc()) return false;
    at = read.ptr;
    packed = packed << 16 | value;
  }
  if (at == end) number = packed;
  return at == end;
}
