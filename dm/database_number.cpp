#include "dm/database_number.h"

#include <charconv>
#include <cstring>

namespace dm {

std::string database_text(uint64_t number) {
  std::string text;
  for (int shift = 48; shift >= 0; shift -= 16) {
    if (!text.empty()) text += '.';
    text += std::to_string((number >> shift) & 0xffff);
  }
  return text;
}

bool database_of_text(const char* text, uint64_t& number) {
  const char* end = text + std::strlen(text);
  uint64_t packed = 0;
  for (int group = 0; group < 4; ++group) {
    if (group > 0 && (text == end || *text++ != '.')) return false;
    uint16_t value = 0;
    const auto read = std::from_chars(text, end, value);
    if (read.ec != std::errc()) return false;
    text = read.ptr;
    packed = packed << 16 | value;
  }
  number = packed;
  return text == end;
}

problem damaged_counter(uint64_t number) {
  return {TAV_ERR_STORAGE, TAV_FLD_POID, 0, 0,
          join({"The counter of database ", database_text(number),
                " is damaged; restore the dictionary from a backup."})};
}

}  // namespace dm
