// Field entries.
#include "dparse/write/entries.h"

#include "dd/report.h"
#include "dd/values.h"
#include "dparse/write/types.h"
#include "dparse/write/writer.h"

static constexpr char MODULE[] = "dparse_export";

static void write_interface_entry(dparse_writing& writing, const dparse_place& place,
                                  const dparse_values& values, int) {
  dparse_write_values(writing, values, place);
}

// A type without storage is told, and its block stays empty: deliberate.
static void write_implementation_entry(dparse_writing& writing, const dparse_place& place,
                                       const dparse_values& values, int type_code) {
  const auto text = [&](uint32_t field) {
    size_t i = 0;
    while (place.rows[i]->field != field) ++i;
    return static_cast<const char*>(values.by_row[i]);
  };
  dparse_write_sql_names(writing, type_code, text(TAV_FLD_SQL_TABLE), text(TAV_FLD_SQL_STORAGE));
}

const dparse_side DPARSE_INTERFACE{DD_IN_CLASS, DD_IN_ENTRY, " {\n\n", write_interface_entry,
                                   "Error: Unable to export class fields"};
const dparse_side DPARSE_IMPLEMENTATION{DD_IN_SQL_CLASS, DD_IN_SQL_ENTRY,
                                        " IMPLEMENTATION TESSEL7 {\n\n", write_implementation_entry,
                                        "Error: Unable to export storable class implementation"};

static int unknown_type(dparse_out& out, const char* name, const tav_ebuf& ebuf) {
  dparse_flush(out);
  dd_print_error("Error: Unable to determine field type from name: %s", name);
  dd_log(HERE, "Unable to determine field type from name", ebuf);
  return -1;
}

static void write_banner(dparse_out& out, int depth) {
  dparse_put(out, "\n");
  dparse_put_banner(out, 20, depth, "Fields", nullptr);
  dparse_put(out, "\n");
}

// All of an entry before its own entries.
static int write_entry(dparse_exporting& to, dparse_outline_entry& entry) {
  tav_ebuf ebuf{};
  dparse_out& out = to.out;
  const char* name = entry.name != nullptr
                         ? entry.name
                         : dd_required_text(entry.entry, TAV_FLD_FIELD_NAME, at(&ebuf, HERE));
  dparse_values values;
  dparse_get_values(values, entry.entry, to.in_entry, &ebuf);
  if (dd_failed(ebuf)) return dparse_export_list_failed(out, HERE, ebuf);
  if (entry.type == DPARSE_TYPE_NOT_KNOWN) entry.type = dparse_find_type(out, to.field_list, name);
  if (entry.type == DPARSE_TYPE_NOT_KNOWN) return unknown_type(out, name, ebuf);
  dparse_put_tabs(out, entry.depth);
  if (dparse_put_head(out, entry.type, name) < 1) return -1;
  dparse_writing writing{out, name, entry.depth + 1, &ebuf};
  to.side.write_entry(writing, to.in_entry, values, entry.type);
  return dd_failed(ebuf) ? dparse_export_list_failed(out, HERE, ebuf) : 1;
}

static void close_entries(dparse_out& out, int& open, int depth) {
  for (; open >= depth; --open) {
    dparse_put_tabs(out, open);
    dparse_put(out, "}\n\n");
  }
}

// The failure of an entry is one of each entry around it.
static int fail_all(dparse_exporting& to, int levels) {
  for (; levels > 0; --levels) dparse_export_fail(to.out, HERE, to.side.failed);
  return -1;
}

int dparse_write_entries(dparse_exporting& to, std::span<dparse_outline_entry> entries, int depth,
                         const tav_ebuf& failure) {
  int open = depth - 1;  // the depth of the innermost entry that is open
  for (dparse_outline_entry& entry : entries) {
    const bool is_first = entry.depth > open;
    close_entries(to.out, open, entry.depth);
    if (entry.entry == nullptr) {
      dparse_export_list_failed(to.out, HERE, failure);
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
                          const dparse_side& side) {
  dparse_exporting to(stream, field_list, side);
  dparse_outline outline = dparse_outline_entries(parent, depth);
  return dparse_write_entries(to, outline.entries, depth, outline.failure);
}

int dparseExportClassFields(FILE* stream, dd_list* field_list, tav_flist_t* parent, int depth) {
  return export_entries(stream, field_list, parent, depth, DPARSE_INTERFACE);
}

int dparseExportImplClassFields(FILE* stream, dd_list* field_list, tav_flist_t* parent, int depth) {
  return export_entries(stream, field_list, parent, depth, DPARSE_IMPLEMENTATION);
}
