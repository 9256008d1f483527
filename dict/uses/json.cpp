// For programs; tav_dict(1) tells the shape, which is part of the interface.
#include "dict/terminal/json.h"
#include "dict/uses/uses.h"

namespace dict {

static void put_field(json_writer& out, const found_field& field) {
  put_member(out, "name", field.name);
  put_member(out, "type", field.type);
  put_number(out, "number", field.number);
}

static void put_place(json_writer& out, const place& one) {
  put_member(out, "class", one.class_name);
  put_texts(out, "path", one.path);
}

static void put_user(json_writer& out, const place& user) {
  out.StartObject();
  put_place(out, user);
  out.EndObject();
}

static void put_used_field(json_writer& out, const found_field& field) {
  out.StartObject();
  put_field(out, field);
  put_flag(out, "predefined", field.is_predefined);
  put_array(out, "users", field.users, put_user);
  out.EndObject();
}

static void put_unused_field(json_writer& out, const found_field& field) {
  out.StartObject();
  put_field(out, field);
  out.EndObject();
}

// A table of a class, or a column of a table.
template <class Stored>
static void put_stored(json_writer& out, const Stored& one) {
  out.StartObject();
  put_member(out, "name", one.name);
  put_texts(out, "path", one.path);
  out.EndObject();
}

static void put_class(json_writer& out, const found_class& one) {
  out.StartObject();
  put_member(out, "name", one.name);
  put_texts(out, "subclasses", one.subclasses);
  put_array(out, "tables", one.tables, put_stored<found_class::table>);
  out.EndObject();
}

static void put_table(json_writer& out, const found_table& one) {
  out.StartObject();
  put_member(out, "name", one.name);
  put_place(out, one.owner);
  put_array(out, "columns", one.columns, put_stored<found_table::column>);
  out.EndObject();
}

void print_json(const std::string& asked, const uses& found) {
  json_page page;
  page.out.StartObject();
  put_member(page.out, "asked", asked);
  put_array(page.out, "fields", found.fields, put_used_field);
  put_array(page.out, "classes", found.classes, put_class);
  put_array(page.out, "tables", found.tables, put_table);
  page.out.EndObject();
  print(page);
}

void print_json(const std::vector<found_field>& unused) {
  json_page page;
  page.out.StartObject();
  put_array(page.out, "unused", unused, put_unused_field);
  page.out.EndObject();
  print(page);
}

}  // namespace dict
