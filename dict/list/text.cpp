// For people: a row for each thing.
#include <iostream>

#include "dict/list/list.h"
#include "dict/terminal/columns.h"
#include "dict/terminal/visible.h"

namespace dict {

// Fields have other columns than classes and tables: each kind is a table of its own.
void print_text(const listing& found) {
  columns fields, classes, tables;
  for (const listed_field& field : found.fields) {
    fields.rows.push_back(
        {"field", field.name, field.type, std::to_string(field.number), field.descr});
  }
  for (const listed_class& one : found.classes) classes.rows.push_back({"class", one.name});
  for (const listed_table& table : found.tables) {
    tables.rows.push_back({"table", table.name, table.class_name});
  }
  std::cout << fields << classes << tables;
}

void print_tree(const listing& found) {
  for (const listed_class& one : found.classes) {
    std::cout << std::string(one.depth * 2, ' ')
              << visible{std::string_view(one.name).substr(one.above)} << '\n';
  }
}

}  // namespace dict
