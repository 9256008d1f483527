#include "dict/site/script.h"

#include "dm/journal/hash.h"

namespace dict {

void put(data_writer& out, std::string_view text) {
  const std::string utf8 = as_utf8(std::string(text));
  out.String(utf8.data(), static_cast<rapidjson::SizeType>(utf8.size()));
}

void put(data_writer& out, std::string_view key, std::string_view text) {
  out.Key(key.data(), static_cast<rapidjson::SizeType>(key.size()));
  put(out, text);
}

// The characters at which a quoted text of a script, or the script in a page, could end: a quote, a
// backslash, "<", and the separators U+2028 and U+2029 (e2 80 a8, e2 80 a9).
static size_t find_special(std::string_view text, size_t from) {
  return text.find_first_of("'\\<\xe2", from);
}

static std::string_view escaped(std::string_view text) {
  switch (text[0]) {
    case '\'':
      return "\\'";
    case '\\':
      return "\\\\";
    case '<':
      return "\\x3c";
    default:
      if (text.starts_with("\xe2\x80\xa8")) return "\\u2028";
      return text.starts_with("\xe2\x80\xa9") ? "\\u2029" : "";
  }
}

static void append_quoted(std::string& script, std::string_view text) {
  script += '\'';
  for (size_t from = 0; from < text.size();) {
    const size_t at = std::min(find_special(text, from), text.size());
    script.append(text.substr(from, at - from));
    if (at == text.size()) break;
    const std::string_view code = escaped(text.substr(at));
    script.append(code.empty() ? text.substr(at, 1) : code);
    from = at + (code.starts_with("\\u") ? 3 : 1);
  }
  script += '\'';
}

site_file named_by_content(std::string text, std::string_view ending) {
  static constexpr size_t DIGITS = 16;
  std::string name = "data/";
  name.append(dm::hash_of(text).substr(0, DIGITS)).append(ending);
  return {std::move(name), std::move(text)};
}

site_file script_of(std::string_view name, std::string_view json) {
  std::string script = "siteData(";
  script.reserve(json.size() + json.size() / 8);
  append_quoted(script, name);
  script += ',';
  append_quoted(script, json);
  script += ");\n";
  return named_by_content(std::move(script), ".js");
}

}  // namespace dict
