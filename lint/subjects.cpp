#include "lint/subjects.h"

namespace lint {

using deploy::definition_side;
using syntax::node_kind;

std::vector<std::string_view> path_to(const deploy::subject& about) {
  constexpr size_t MOST_NAMES = 32;
  return deploy::path_of(about, MOST_NAMES);
}

std::optional<node_place> find_on(subject_finder& in, const deploy::subject& about,
                                  definition_side side, size_t n) {
  const bool is_interface = side == definition_side::INTERFACE;
  const defined* found = find(
      in.all, is_interface ? node_kind::INTERFACE : node_kind::IMPLEMENTATION, about.class_name);
  if (found == nullptr) return std::nullopt;
  if (about.field == nullptr) return found->where;
  entry_finder& entries = is_interface ? in.interfaces : in.implementations;
  const auto path = path_to(about);
  if (path.empty()) return entries.find_anywhere(found->where, about.field);
  bool is_whole = false;
  const node_place at = entries.find(found->where, path, is_whole, n);
  if (!is_whole) return std::nullopt;
  return at;
}

std::optional<node_place> find(subject_finder& in, const deploy::subject& about, size_t n) {
  if (about.class_name == nullptr) {
    const defined* field = find(in.all, node_kind::FIELD, about.field);
    return field != nullptr ? std::optional(field->where) : std::nullopt;
  }
  const bool is_interface = about.side == definition_side::INTERFACE;
  const auto other = is_interface ? definition_side::IMPLEMENTATION : definition_side::INTERFACE;
  if (const auto at = find_on(in, about, about.side, n)) return at;
  if (const auto at = find_on(in, about, other, n)) return at;
  if (about.field == nullptr) return std::nullopt;
  deploy::subject around = about;
  around.field = nullptr;
  return find(in, around);
}

std::string words_of(const deploy::subject& about) {
  std::string words;
  if (about.class_name == nullptr) {
    words = "field " + std::string(about.field != nullptr ? about.field : "");
  } else {
    words = "class " + std::string(about.class_name);
    const auto path = path_to(about);
    for (size_t i = 0; i < path.size(); ++i) {
      words += i == 0 ? ", entry " : "/";
      words += path[i];
    }
    if (path.empty() && about.field != nullptr) words += ", entry " + std::string(about.field);
  }
  if (about.attribute != nullptr) words += ", attribute " + std::string(about.attribute);
  return words;
}

}  // namespace lint
