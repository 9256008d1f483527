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

static void put_journal(json_writer& out, const dictionary_status& found) {
  put_member(out, "identity", found.identity);
  out.Key("journal");
  out.StartObject();
  put_number(out, "record", found.head.number);
  put_member(out, "hash", found.head.hash);
  out.EndObject();
  if (found.deployment == 0) return;
  out.Key("last_deployment");
  out.StartObject();
  put_number(out, "deployment", found.deployment);
  put_member(out, "time", found.deployment_time);
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
  if (!found.identity.empty()) put_journal(page.out, found);
  page.out.EndObject();
  print(page);
}

}  // namespace dict
