// For programs; tav_dict(1) tells the shape, which is part of the interface.
#include "dict/terminal/json.h"
#include "dict/status/status.h"

namespace dict {

static void put_database(json_writer& out, const database_status& one) {
  out.StartObject();
  put_member(out, "database", one.number);
  put_number(out, "fields", one.fields);
  put_number(out, "classes", one.classes);
  out.EndObject();
}

void print_json(const dictionary_status& found) {
  json_page page;
  page.out.StartObject();
  put_member(page.out, "dictionary", found.name);
  put_number(page.out, "schema_version", found.schema_version);
  put_flag(page.out, "writeable", found.is_writeable);
  put_flag(page.out, "accepts_fields", found.accepts_fields);
  put_flag(page.out, "accepts_classes", found.accepts_classes);
  put_number(page.out, "bytes", found.bytes);
  put_array(page.out, "databases", found.databases, put_database);
  page.out.EndObject();
  print(page);
}

}  // namespace dict
