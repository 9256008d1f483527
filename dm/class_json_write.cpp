#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <algorithm>
#include <charconv>

#include "dd/longest_text.h"
#include "dm/class_json.h"
#include "dm/json_memory.h"
#include "dm/json_run.h"

namespace dm {

struct json_text {
  std::vector<char> text;
  size_t size = 0;  // bytes written so far; the rest is room
  using buffer = rapidjson::GenericStringBuffer<rapidjson::UTF8<>, json_memory>;
  buffer escaped;
  rapidjson::Writer<buffer, rapidjson::UTF8<>, rapidjson::UTF8<>, json_memory> escaper{escaped};
};

class_writer::class_writer() : json_(std::make_unique<json_text>()) {}
class_writer::~class_writer() = default;

template <class... Piece>
static void put(json_text& json, Piece... piece) {
  const size_t size = json.size + (std::string_view(piece).size() + ...);
  if (size > json.text.size()) json.text.resize(size * 2);
  char* at = json.text.data() + json.size;
  ((at = std::copy_n(std::string_view(piece).data(), std::string_view(piece).size(), at)), ...);
  json.size = size;
}

// Nearly every text needs no escape and is copied; the library writes the others.
static void put_text(std::string_view text, json_text& json) {
  if (plain_run(text.data(), text.size()) == text.size()) return put(json, "\"", text, "\"");
  json.escaped.Clear();
  json.escaper.Reset(json.escaped);
  json.escaper.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
  put(json, std::string_view(json.escaped.GetString(), json.escaped.GetSize()));
}

static void put_number(int32_t number, json_text& json) {
  char digits[16];
  const auto end = std::to_chars(std::begin(digits), std::end(digits), number);
  put(json, std::string_view(digits, static_cast<size_t>(end.ptr - digits)));
}

static void put_decimal(const void* value, json_text& json) {
  char digits[DD_LONGEST_TEXT + 1];
  *digits = '\0';
  tav_decimal_to_str(static_cast<const tav_decimal_t*>(value), 0, digits, sizeof digits, nullptr);
  put_text(digits, json);
}

// The comma before the next part of an object or array; empty before the first.
static std::string_view comma(const json_text& json) {
  const char last = json.text[json.size - 1];
  return last != '{' && last != '[' ? "," : "";
}

static void put_texts(const void* value, const dd_attribute& row, json_text& json) {
  const auto* node = static_cast<const tav_node*>(value);
  uint32_t position = 0;
  int32_t id = 0;
  put(json, "[");
  while (const tav_node* element = tav_node_next(node, row.field, &position, &id)) {
    const void* text = tav_node_get(element, row.text);
    if (text == nullptr) continue;
    put(json, comma(json));
    put_text(static_cast<const char*>(text), json);
  }
  put(json, "]");
}

// Keys need no escapes: they are those of the table of attributes.
static void put_key(std::string_view key, json_text& json) {
  put(json, comma(json), "\"", key, "\":");
}

static void put_value(const void* value, const dd_attribute& row, json_text& json) {
  put_key(row.key, json);
  switch (row.kind) {
    case dd_value_kind::TEXT:
      return put_text(static_cast<const char*>(value), json);
    case dd_value_kind::NUMBER:
      return put_number(*static_cast<const int32_t*>(value), json);
    case dd_value_kind::DECIMAL:
      return put_decimal(value, json);
    case dd_value_kind::TEXTS:
      return put_texts(value, row, json);
  }
}

template <size_t N>
static void put_values(const std::array<const void*, N>& values,
                       const std::array<dd_attribute, N>& rows, json_text& json) {
  for (size_t i = 0; i < N; ++i) {
    if (values[i] != nullptr) put_value(values[i], rows[i], json);
  }
}

// The entries of a container follow it, in the record as in the text.
static void put_entries(const class_def& definition, json_text& json) {
  int32_t depth = 0;
  for (const entry_def& entry : definition.entries) {
    if (entry.depth > depth) {
      put_key(ENTRIES_KEY, json);
      put(json, "[");
    } else {
      put(json, "}");
    }
    for (; depth > entry.depth; --depth) put(json, "]}");
    depth = entry.depth;
    put(json, comma(json), "{");
    put_values(entry.values, ENTRY_ATTRIBUTES, json);
  }
  for (; depth > 0; --depth) put(json, "}]");
}

std::string_view class_writer::write(const class_def& definition) {
  json_text& json = *json_;
  json.size = 0;
  put(json, "{");
  put_values(definition.values, CLASS_ATTRIBUTES, json);
  put_entries(definition, json);
  put(json, "}", std::string_view("", 1));
  return {json.text.data(), json.size - 1};
}

}  // namespace dm
