#include <cstdint>
#include <cstdio>

#include "dd/fold.h"
#include "dict/export/export.h"
#include "dm/folded.h"

namespace dict {

static constexpr std::string_view ENDING = ".def";
static constexpr std::string_view CLASS = "class_";
static constexpr std::string_view FIELDS = "fields";
static constexpr std::string_view FIELDS_LIKE = "fields_";
static constexpr size_t LONGEST = 200;

static bool is_plain(char c) {
  return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_' || c == '-';
}

// The steps of a class name are parted by dots; a dot of the name itself is written as a code.
static std::string escaped(std::string_view key) {
  std::string result;
  for (const char c : key) {
    char code[4];
    std::snprintf(code, sizeof code, "%%%02x", static_cast<unsigned char>(c));
    if (is_plain(c)) {
      result += c;
    } else {
      result += c == '/' ? "." : code;
    }
  }
  return result;
}

// FNV-1a: the same in every run, as the hashes of dd/hash.h are not.
static std::string digest(std::string_view key) {
  uint64_t hash = 0xcbf29ce484222325u;
  for (const char c : key) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3u;
  char text[17];
  std::snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(hash));
  return text;
}

// A name that is too long is cut, and ends with a digest behind "~", which no other name holds.
static std::string file_name(std::string_view kind, std::string_view key) {
  std::string name(kind);
  name.append(escaped(key));
  if (name.size() + ENDING.size() > LONGEST) {
    const std::string end = digest(key);
    name.resize(LONGEST - ENDING.size() - 1 - end.size());
    name.append("~").append(end);
  }
  return name.append(ENDING);
}

std::string file_of_class(std::string_view class_name) {
  const std::string key = dm::folded(class_name);
  return file_name(CLASS, std::string_view(key).substr(key.find_first_not_of('/')));
}

std::string file_of_field(std::string_view field_name) {
  const std::string key = dm::folded(field_name);
  const size_t first = key.find('_');
  if (first == key.npos) return file_name(FIELDS, "");
  const size_t second = key.find('_', first + 1);
  const size_t end = second != key.npos ? second : first;
  return file_name(FIELDS_LIKE, std::string_view(key).substr(0, end + 1));
}

bool is_file_of_export(std::string_view name) {
  const auto begins = [&](std::string_view start) { return name.substr(0, start.size()) == start; };
  return (begins(CLASS) || begins(FIELDS)) && name.size() > ENDING.size() &&
         name.size() <= LONGEST && name.substr(name.size() - ENDING.size()) == ENDING &&
         name.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789_-.%~") == name.npos;
}

}  // namespace dict
