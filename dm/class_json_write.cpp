#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include "dm/class_json.h"
#include "dm/text_rules.h"

namespace dm {

using json_writer = rapidjson::Writer<rapidjson::StringBuffer>;

struct class_writer::buffers {
  rapidjson::StringBuffer text;
  json_writer json{text};
};

class_writer::class_writer() : buffers_(std::make_unique<buffers>()) {}
class_writer::~class_writer() = default;

static void write_decimal(const void* value, json_writer& json) {
  char digits[LONGEST_TEXT + 1] = "";
  tav_decimal_to_str(static_cast<const tav_decimal_t*>(value), 0, digits, sizeof digits, nullptr);
  json.String(digits);
}

static void write_texts(const void* value, const attribute& row, json_writer& json) {
  const auto* node = static_cast<const tav_node*>(value);
  uint32_t position = 0;
  int32_t id = 0;
  json.StartArray();
  while (const tav_node* element = tav_node_next(node, row.field, &position, &id)) {
    const void* text = tav_node_get(element, row.text);
    if (text != nullptr) json.String(static_cast<const char*>(text));
  }
  json.EndArray();
}

static void write_value(const void* value, const attribute& row, json_writer& json) {
  json.Key(row.key);
  switch (row.form) {
    case value_form::TEXT:
      json.String(static_cast<const char*>(value));
      break;
    case value_form::NUMBER:
      json.Int(*static_cast<const int32_t*>(value));
      break;
    case value_form::DECIMAL:
      write_decimal(value, json);
      break;
    case value_form::TEXTS:
      write_texts(value, row, json);
      break;
  }
}

template <size_t N>
static void write_values(const std::array<const void*, N>& values,
                         const std::array<attribute, N>& rows, json_writer& json) {
  for (size_t i = 0; i < N; ++i) {
    if (values[i] != nullptr) write_value(values[i], rows[i], json);
  }
}

// Entries stand in the order of the text: a container's own follow it.
static void write_entries(const class_def& definition, json_writer& json) {
  int32_t depth = 0;
  for (const entry_def& entry : definition.entries) {
    if (entry.depth > depth) {
      json.Key(ENTRIES_KEY);
      json.StartArray();
    } else {
      json.EndObject();
    }
    for (; depth > entry.depth; --depth) {
      json.EndArray();
      json.EndObject();
    }
    depth = entry.depth;
    json.StartObject();
    write_values(entry.values, ENTRY_ATTRIBUTES, json);
  }
  for (; depth > 0; --depth) {
    json.EndObject();
    json.EndArray();
  }
}

std::string_view class_writer::write(const class_def& definition) {
  json_writer& json = buffers_->json;
  buffers_->text.Clear();
  json.Reset(buffers_->text);
  json.StartObject();
  write_values(definition.values, CLASS_ATTRIBUTES, json);
  write_entries(definition, json);
  json.EndObject();
  return {buffers_->text.GetString(), buffers_->text.GetSize()};
}

}  // namespace dm
