// Data as classic scripts, which open from a folder as well as from a server: each hands one JSON
// text to the page.
#ifndef DICT_SITE_SCRIPT_H
#define DICT_SITE_SCRIPT_H

#include <rapidjson/writer.h>

#include <string_view>

#include "dict/site/site.h"
#include "dict/terminal/json.h"

namespace dict {

using data_writer = rapidjson::Writer<json_text, json_encoding, json_encoding, dm::json_memory>;

struct data_page {
  json_text text{};
  data_writer out{text};

  std::string_view json() const { return {text.GetString(), text.GetSize()}; }
};

// Bytes that are no UTF-8 are replaced.
void put(data_writer& out, std::string_view text);
void put(data_writer& out, std::string_view key, std::string_view text);

template <class Rows, class Put>
void put_rows(data_writer& out, const Rows& rows, Put put_row) {
  out.StartArray();
  for (const auto& row : rows) put_row(row);
  out.EndArray();
}

// The file that hands the data over as `name`; it is named by its content.
site_file script_of(std::string_view name, std::string_view json);
// A file with this ending, named by its content.
site_file named_by_content(std::string text, std::string_view ending);

}  // namespace dict

#endif
