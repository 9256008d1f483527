#include "dict/terminal/json.h"

#include <iostream>

#include "dd/utf8.h"
#include "dict/terminal/visible.h"

namespace dict {

static bool is_utf8(std::string_view text) {
  while (!text.empty()) {
    const size_t size = dd_utf8_length(text.data(), text.size());
    if (size == 0) return false;
    text.remove_prefix(size);
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
  const std::string utf8 = as_utf8(text);
  out.String(utf8.data(), static_cast<rapidjson::SizeType>(utf8.size()));
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

std::string json_object(const std::vector<std::pair<const char*, std::string>>& members) {
  json_text text;
  rapidjson::Writer<json_text, json_encoding, json_encoding, dm::json_memory> out(text);
  out.StartObject();
  for (const auto& [key, value] : members) {
    out.Key(key);
    out.String(value.c_str());
  }
  out.EndObject();
  return text.GetString();
}

std::string text_of(const json_page& page) {
  return std::string(page.text.GetString(), page.text.GetSize()) + "\n";
}

void print(const json_page& page) {
  std::cout << visible_lines{text_of(page)};
}

void print_so_far(json_page& page) {
  std::cout << visible_lines{{page.text.GetString(), page.text.GetSize()}};
  page.text.Clear();
}

}  // namespace dict
