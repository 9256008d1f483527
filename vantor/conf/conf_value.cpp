#include "vantor/conf/conf_value.h"

#include <charconv>
#include <cstdlib>
#include <cstring>
#include <new>

#include "dd/database_number.h"
#include "vantor/list/value.h"

namespace vantor {

namespace {

constexpr char BLANKS[] = " \t";

template <class Number>
bool whole_number(const std::string& text, Number& number) {
  const char* end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && stopped == end;
}

// Takes the part before the first of `separators` off the text, and the separators after it.
std::string cut(std::string& text, const char* separators) {
  const size_t end = text.find_first_of(separators);
  const std::string first = text.substr(0, end);
  const size_t next = text.find_first_not_of(separators, end);
  text = next == std::string::npos ? "" : text.substr(next);
  return first;
}

}  // namespace

void* heap_copy(const void* bytes, size_t size) {
  void* copy = std::malloc(size);
  if (copy == nullptr) throw std::bad_alloc();
  return std::memcpy(copy, bytes, size);
}

bool number_from(const std::string& text, int32_t& number) {
  return whole_number(text, number);
}

tav_poid_t* poid_from(const std::string& text) {
  std::string rest = text;
  const std::string first = cut(rest, BLANKS);
  const std::string type = cut(rest, BLANKS);
  uint64_t database = 0;
  int64_t id = 0;
  if (!dd_read_database(first, database) || !whole_number(rest, id)) return nullptr;
  return new_poid(database, type.c_str(), id);
}

}  // namespace vantor
