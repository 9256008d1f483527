// Field entries.
#include "dparse/write/entries.h"

#include "dd/report.h"
#include "dd/values.h"
#include "dparse/write/types.h"
#include "dparse/write/writer.h"

static constexpr char MODULE[] = "dparse_export";

namespace dparse {

static void write_interface_entry(write_state& writing, const attribute_place& place,
                                  const attribute_values& values, int) {
  write_values(writing, values, place);
}

// A type without storage is told, and its block stays empty: deliberate.
static void write_implementation_entry(write_state& writing, const attribute_place& place,
                                       const attribute_values& values, int type_code) {
  const auto text = [&](uint32_t field) {
    size_t i = 0;
    while (place.rows[i]->field != field) ++i;
    return static_cast<const char*>(values.by_row[i]);
  };
  write_sql_names(writing, type_code, text(TAV_FLD_SQL_TABLE), text(TAV_FLD_SQL_STORAGE));
}

const export_side INTERFACE_SIDE{DD_IN_CLASS, DD_IN_ENTRY, " {\n\n", write_interface_entry,
                                 "Error: Unable to export class fields"};
const export_side IMPLEMENTATION_SIDE{DD_IN_SQL_CLASS, DD_IN_SQL_ENTRY,
                                      " IMPLEMENTATION TESSEL7 {\n\n", write_implementation_entry,
                                      "Error: Unable to export storable class implementation"};

static int unknown_type(output& out, const char* name, const tav_ebuf& ebuf) {
  flush(out);
  dd_print_error("Error: Unable to determine field type from name: %s", name);
  dd_log(HERE, "Unable to determine field type from name", ebuf);
  return -1;
}

static void write_banner(output& out, int depth) {
  put(out, "\n");
  put_banner(out, 20, depth, "Fields", nullptr);
  put(out, "\n");
}

// All of an entry before its own entries.
static int write_entry(exporting& to, outlined_entry& entry) {
  tav_ebuf ebuf{};
  output& out = to.out;
  const char* name = entry.name != nullptr
                         ? entry.name
                         : dd_required_text(entry.entry, TAV_FLD_FIELD_NAME, at(&ebuf, HERE));
  attribute_values values;
  get_values(values, entry.entry, to.in_entry, &ebuf);
  if (dd_failed(ebuf)) return export_list_failed(out, HERE, ebuf);
  if (entry.type == TYPE_NOT_KNOWN) entry.type = find_type(out, to.field_list, name);
  if (entry.type == TYPE_NOT_KNOWN) return unknown_type(out, name, ebuf);
  put_tabs(out, entry.depth);
  if (put_head(out, entry.type, name) < 1) return -1;
  write_state writing{out, name, entry.depth + 1, &ebuf};
  to.side.write_entry(writing, to.in_entry, values, entry.type);
  return dd_failed(ebuf) ? export_list_failed(out, HERE, ebuf) : 1;
}

static void close_entries(output& out, int& open, int depth) {
  for (; open >= depth; --open) {
    put_tabs(out, open);
    put(out, "}\n\n");
  }
}

// The failure of an entry is one of each entry around it.
static int fail_all(exporting& to, int levels) {
  for (; levels > 0; --levels) export_fail(to.out, HERE, to.side.failed);
  return -1;
}

int write_entries(exporting& to, std::span<outlined_entry> entries, int depth,
                  const tav_ebuf& failure) {
  int open = depth - 1;  // the depth of the innermost entry that is open
  for (outlined_entry& entry : entries) {
    const bool is_first = entry.depth > open;
    close_entries(to.out, open, entry.depth);
    if (entry.entry == nullptr) {
      export_list_failed(to.out, HERE, failure);
      return fail_all(to, entry.depth - depth);
    }
    if (is_first) write_banner(to.out, entry.depth);
    if (write_entry(to, entry) < 1) return fail_all(to, entry.depth - depth);
    open = entry.depth;
  }
  close_entries(to.out, open, depth);
  return 1;
}

static int export_entries(FILE* stream, dd_list* field_list, tav_flist_t* parent, int depth,
                          const export_side& side) {
  exporting to(stream, field_list, side);
  class_outline outline = outline_entries(parent, depth);
  return write_entries(to, outline.entries, depth, outline.failure);
}

}  // namespace dparse

int dparseExportClassFields(FILE* stream, dd_list* field_list, tav_flist_t* parent, int depth) {
  return dparse::export_entries(stream, field_list, parent, depth, dparse::INTERFACE_SIDE);
}

int dparseExportImplClassFields(FILE* stream, dd_list* field_list, tav_flist_t* parent, int depth) {
  return dparse::export_entries(stream, field_list, parent, depth, dparse::IMPLEMENTATION_SIDE);
}
