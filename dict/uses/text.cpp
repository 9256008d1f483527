// For people: a line for each thing that was found, and below it, indented, what uses it.
#include <iostream>

#include "dict/terminal/columns.h"
#include "dict/terminal/visible.h"
#include "dict/uses/uses.h"

namespace dict {

static constexpr size_t INDENT = 4;

static std::string text_of(const std::vector<std::string>& path) {
  std::string text;
  for (const std::string& name : path) text.append(text.empty() ? "" : ".").append(name);
  return text;
}

static void print(const found_field& field) {
  std::cout << "field " << visible{field.name};
  if (field.number == 0) {
    std::cout << " (not defined)";
  } else {
    std::cout << " (" << field.type << ", " << field.number
              << (field.is_predefined ? ", predefined)" : ")");
  }
  std::cout << (field.users.empty() ? ": no class uses it\n" : "\n");
  columns table{{}, INDENT};
  for (const place& user : field.users) table.rows.push_back({user.class_name, text_of(user.path)});
  std::cout << table;
}

static void print(const found_class& one) {
  std::cout << "class " << visible{one.name} << '\n';
  columns table{{}, INDENT};
  for (const std::string& name : one.subclasses) table.rows.push_back({"subclass", name});
  for (const auto& [name, path] : one.tables) table.rows.push_back({"table", name, text_of(path)});
  std::cout << table;
}

static void print(const found_table& one) {
  std::cout << "table " << visible{one.name} << " of " << visible{one.owner.class_name};
  if (!one.owner.path.empty()) std::cout << ", " << visible{text_of(one.owner.path)};
  std::cout << '\n';
  columns table{{}, INDENT};
  for (const auto& [name, path] : one.columns) {
    table.rows.push_back({"column", name, text_of(path)});
  }
  std::cout << table;
}

void print_text(const uses& found) {
  for (const found_field& field : found.fields) print(field);
  for (const found_class& one : found.classes) print(one);
  for (const found_table& one : found.tables) print(one);
}

void print_text(const std::vector<found_field>& unused) {
  columns table;
  for (const found_field& field : unused) {
    table.rows.push_back({field.name, field.type, std::to_string(field.number)});
  }
  std::cout << table;
}

}  // namespace dict
