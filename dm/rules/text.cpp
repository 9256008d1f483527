#include "dm/rules/text.h"

#include <cstdint>
#include <cstring>

#include "dd/buf_storage.h"
#include "dd/utf8.h"
#include "dm/keywords.h"

namespace dm {

// Whether it is plain ASCII, and so short that escapes cannot make it too long: nearly every text.
static bool is_plain(const char* text) {
  constexpr uint64_t HIGH_BITS = 0x8080808080808080u;
  constexpr size_t WORD = sizeof(uint64_t);
  const size_t length = std::strlen(text);
  if (length > DD_LONGEST_TEXT / 2) return false;
  uint64_t bits = 0;
  const auto take = [&](size_t at) {
    uint64_t bytes;
    std::memcpy(&bytes, text + at, WORD);
    bits |= bytes;
  };
  for (size_t at = 0; at + WORD < length; at += WORD) take(at);
  if (length >= WORD) take(length - WORD);
  for (size_t at = 0; length < WORD && at < length; ++at) {
    bits |= static_cast<unsigned char>(text[at]);
  }
  return (bits & HIGH_BITS) == 0;
}

const char* text_fault(const char* text) {
  if (is_plain(text)) return nullptr;
  size_t length = 0;
  while (*text != '\0') {
    const size_t bytes = dd_utf8_length(text);
    if (bytes == 0) return "is not UTF-8";
    length += *text == '\t' || *text == '\n' ? 2 : bytes;
    text += bytes;
  }
  return length > DD_LONGEST_TEXT ? TOO_LONG : nullptr;
}

static constexpr char WHITE_SPACE[] = " \t\n\v\f\r";
static constexpr char NO_PART_OF_A_WORD[] = " \t\n\v\f\r={};";

const char* field_name_fault(const char* name) {
  if (*name == '\0') return "is empty";
  if (*name == '"' || *name == '#') return "begins with a quote or a number sign";
  if (const char* at = std::strpbrk(name, NO_PART_OF_A_WORD)) {
    return std::strpbrk(at, WHITE_SPACE) != nullptr ? "holds white space" : "holds one of = ; { }";
  }
  if (is_keyword(name)) return "is a keyword of the definition language";
  return text_fault(name);
}

const char* class_name_fault(const char* name) {
  if (*name != '/') return "does not begin with '/'";
  if (std::strstr(name, "//") != nullptr || name[std::strlen(name) - 1] == '/') {
    return "has an empty step";
  }
  return field_name_fault(name);
}

static bool has_control(const char* name) {
  while (*name != '\0' && static_cast<unsigned char>(*name) >= ' ' && *name != '\177') ++name;
  return *name != '\0';
}

const char* storage_name_fault(const char* name, bool is_of_buf) {
  if (std::strpbrk(name, "\"\\") != nullptr) return "holds a double quote or a backslash";
  if (has_control(name)) return "holds a control character";
  if (is_of_buf && std::strchr(name, ' ') != nullptr) return "holds white space";
  if (is_of_buf && std::strstr(name, DD_TABLE_MARK.data()) != nullptr) return "holds 'T='";
  if (std::strlen(name) > DD_LONGEST_STORAGE_NAME) return STORAGE_NAME_TOO_LONG;
  return text_fault(name);
}

}  // namespace dm
