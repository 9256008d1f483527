#include "dict/terminal/json.h"

#include <iostream>

#include "dict/terminal/visible.h"

namespace dict {

static bool is_utf8(const std::string& text) {
  rapidjson::StringStream from(text.c_str());
  unsigned code = 0;
  while (from.Peek() != '\0') {
    if (!json_encoding::Decode(from, &code)) return false;
  }
  return true;
}

std::string as_utf8(std::string text) {
  if (is_utf8(text)) return text;
  for (char& c : text) {
    if (static_cast<unsigned char>(c) > 127) c = '?';
  }
  return text;
}

void put_text(json_writer& out, const std::string& text) {
  out.String(as_utf8(text).c_str());
}

void put_member(json_writer& out, const char* key, const std::string& text) {
  out.Key(key);
  if (!text.empty()) return put_text(out, text);
  out.Null();
}

void put_flag(json_writer& out, const char* key, bool value) {
  out.Key(key);
  out.Bool(value);
}

void put_number(json_writer& out, const char* key, int64_t number) {
  out.Key(key);
  out.Int64(number);
}

void put_texts(json_writer& out, const char* key, const std::vector<std::string>& texts) {
  put_array(out, key, texts, put_text);
}

std::string text_of(const json_page& page) {
  return std::string(page.text.GetString(), page.text.GetSize()) + "\n";
}

void print(const json_page& page) {
  std::cout << visible_lines{text_of(page)};
}

}  // namespace dict
