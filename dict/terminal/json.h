// JSON for programs, indented by two blanks.
//
//   json_page page;
//   page.out.StartObject();
//   put_member(page.out, "name", row.name);
//   page.out.EndObject();
//   print(page);
#ifndef DICT_TERMINAL_JSON_H
#define DICT_TERMINAL_JSON_H

#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include <string>
#include <vector>

#include "dm/json_memory.h"

namespace dict {

using json_encoding = rapidjson::UTF8<>;
using json_text = rapidjson::GenericStringBuffer<json_encoding, dm::json_memory>;
using json_writer =
    rapidjson::PrettyWriter<json_text, json_encoding, json_encoding, dm::json_memory>;

struct json_page {
  json_text text{};
  json_writer out{text};

  json_page() { out.SetIndent(' ', 2); }
};

// The text as JSON may hold it: where it is not UTF-8, bytes above 127 show as "?".
std::string as_utf8(std::string text);

void put_text(json_writer& out, const std::string& text);
// Null for an empty text.
void put_member(json_writer& out, const char* key, const std::string& text);
void put_flag(json_writer& out, const char* key, bool value);
void put_number(json_writer& out, const char* key, int64_t number);
void put_texts(json_writer& out, const char* key, const std::vector<std::string>& texts);

template <class Rows, class Put>
void put_array(json_writer& out, const char* key, const Rows& rows, Put put) {
  out.Key(key);
  out.StartArray();
  for (const auto& row : rows) put(out, row);
  out.EndArray();
}

// An object of texts, without blanks.
std::string json_object(const std::vector<std::pair<const char*, std::string>>& members);

// The whole page, with a line end.
std::string text_of(const json_page& page);
// To standard output.
void print(const json_page& page);
// What of it is there, to standard output, so that a long page need not be kept.
void print_so_far(json_page& page);

}  // namespace dict

#endif
