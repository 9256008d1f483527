#include "lint/excuses.h"

#include <algorithm>

namespace lint {

using syntax::node_kind;

namespace {

enum class need : uint8_t { NUMBER, FIELD, RELATED, INTERFACE, STORAGE, TABLE };

// What a finding needs to be more than a consequence.
struct excuse {
  std::string_view rule;
  need what;
};

constexpr excuse EXCUSES[] = {
    {"field-number-in-use", need::NUMBER},
    {"field-number-conflict", need::NUMBER},
    {"missing-field-definition", need::FIELD},
    {"field-type-mismatch", need::FIELD},
    {"field-not-defined", need::FIELD},
    {"field-without-type", need::FIELD},
    {"missing-superclass", need::RELATED},
    {"missing-interface", need::INTERFACE},
    {"missing-field-interface", need::INTERFACE},
    {"missing-class-table", need::STORAGE},
    {"missing-table", need::STORAGE},
    {"missing-buf-storage", need::STORAGE},
    {"missing-buf-table", need::STORAGE},
    {"missing-buf-column", need::STORAGE},
    {"missing-column", need::STORAGE},
    {"column-without-table", need::TABLE},
};

}  // namespace

static std::string_view view(const char* text) {
  return text != nullptr ? text : "";
}

// A definition of that name, or something that nobody can name and that holds the word.
static bool is_definition_left_out(const left_out& missing, node_kind kind, std::string_view name) {
  return is_left_out(missing, {kind, name}) || is_left_out(missing, {node_kind::BROKEN, {}, name});
}

static bool is_entry_left_out(const left_out& missing, node_kind kind,
                              const deploy::subject& about) {
  const std::string_view name = view(about.class_name);
  if (is_definition_left_out(missing, kind, name)) return true;
  if (about.field != nullptr && is_left_out(missing, {kind, name, about.field})) return true;
  for (const deploy::entry_path* upper = about.around; upper != nullptr; upper = upper->around)
    if (is_left_out(missing, {kind, name, upper->name})) return true;
  return false;
}

static bool is_storage_left_out(const left_out& missing, const deploy::subject& about,
                                const char* entry) {
  constexpr auto KIND = node_kind::IMPLEMENTATION;
  return is_entry_left_out(missing, KIND, about) ||
         std::ranges::any_of(
             std::initializer_list<std::string_view>{"SQL_TABLE", "SQL_COLUMN"},
             [&](std::string_view attribute) {
               return is_left_out(missing, {KIND, view(about.class_name), view(entry), attribute});
             });
}

bool is_excused(const left_out& missing, std::string_view rule, const deploy::subject& about) {
  const auto* row = std::ranges::find(EXCUSES, rule, &excuse::rule);
  if (missing.parts.empty() || row == std::end(EXCUSES)) return false;
  switch (row->what) {
    case need::NUMBER:
      return is_left_out(missing, {node_kind::FIELD, view(about.field), {}, "ID"});
    case need::FIELD:
      return is_definition_left_out(missing, node_kind::FIELD, view(about.field));
    case need::RELATED:
      return is_definition_left_out(missing, node_kind::INTERFACE, view(about.related_class));
    case need::INTERFACE:
      return is_entry_left_out(missing, node_kind::INTERFACE, about);
    case need::STORAGE:
      return is_storage_left_out(missing, about, about.field);
    case need::TABLE:
      return is_definition_left_out(missing, node_kind::FIELD, view(about.field)) ||
             is_storage_left_out(missing, about,
                                 about.around != nullptr ? about.around->name : nullptr);
  }
  return false;
}

}  // namespace lint
