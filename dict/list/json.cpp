// For programs; tav_dict(1) tells the shape, which is part of the interface.
#include "dict/terminal/json.h"
#include "dict/list/list.h"

namespace dict {

static void put_field(json_writer& out, const listed_field& field) {
  out.StartObject();
  put_member(out, "name", field.name);
  put_member(out, "type", field.type);
  put_number(out, "number", field.number);
  put_flag(out, "predefined", field.is_predefined);
  put_member(out, "description", field.descr);
  out.EndObject();
}

static void put_class(json_writer& out, const listed_class& one) {
  out.StartObject();
  put_member(out, "name", one.name);
  out.EndObject();
}

static void put_table(json_writer& out, const listed_table& table) {
  out.StartObject();
  put_member(out, "name", table.name);
  put_member(out, "class", table.class_name);
  out.EndObject();
}

// Each class holds an array of those below it.
static void put_tree(json_writer& out, const std::vector<listed_class>& classes) {
  size_t open = 0;  // classes whose object is
  const auto close = [&](size_t depth) {
    for (; open > depth; --open) out.EndArray(), out.EndObject();
  };
  out.Key("classes");
  out.StartArray();
  for (const listed_class& one : classes) {
    close(one.depth);
    out.StartObject();
    put_member(out, "name", one.name);
    out.Key("subclasses");
    out.StartArray();
    ++open;
  }
  close(0);
  out.EndArray();
}

void print_json(const listing& found, bool is_tree) {
  json_page page;
  page.out.StartObject();
  if (found.has_fields) put_array(page.out, "fields", found.fields, put_field);
  if (found.has_classes && is_tree) put_tree(page.out, found.classes);
  if (found.has_classes && !is_tree) put_array(page.out, "classes", found.classes, put_class);
  if (found.has_tables) put_array(page.out, "tables", found.tables, put_table);
  page.out.EndObject();
  print(page);
}

}  // namespace dict
