#include "dict/parsed_json.h"

namespace dict {

// Each level would take room on the stack, and an indent where it is shown.
static bool is_too_deep(std::string_view text) {
  constexpr int DEEPEST = 64;
  int depth = 0;
  bool in_string = false;
  for (size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '"') in_string = !in_string;
    if (in_string && c == '\\') ++i;
    if (in_string) continue;
    if (c == '[' || c == '{') ++depth;
    if (c == ']' || c == '}') --depth;
    if (depth > DEEPEST) return true;
  }
  return false;
}

parsed_json parse_json(std::string_view text) {
  parsed_json read;
  if (!is_too_deep(text)) read.Parse(text.data(), text.size());
  return read;
}

const json_value* find_member(const json_value& value, const char* key) {
  if (!value.IsObject()) return nullptr;
  const auto found = value.FindMember(key);
  return found != value.MemberEnd() ? &found->value : nullptr;
}

}  // namespace dict
