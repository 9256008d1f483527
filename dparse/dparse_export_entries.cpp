// Field entries. The entries that are open are kept in a vector, not on the stack: the dictionary
// decides how deep they nest.
#include "dparse/dparse_export_entries.h"

#include <vector>

#include "dd/report.h"
#include "dd/values.h"
#include "dd/walk.h"
#include "dparse/dparse_export.h"
#include "dparse/dparse_export_sql.h"
#include "dparse/dparse_export_types.h"

static constexpr char MODULE[] = "dparse_export";

static void write_interface_entry(dparse_writing& writing, const dparse_values& values, int) {
  dparse_write_values(writing, values, DPARSE_IN_ENTRY);
}

// A type without storage is told, and its block stays empty: deliberate.
static void write_implementation_entry(dparse_writing& writing, const dparse_values& values,
                                       int type_code) {
  const auto text = [&values](uint32_t field) {
    size_t i = 0;
    while (values.rows[i]->field != field) ++i;
    return static_cast<const char*>(values.values[i]);
  };
  dparse_put_sql_names(writing.out, type_code, text(TAV_FLD_SQL_TABLE), text(TAV_FLD_SQL_STORAGE),
                       writing.indent);
}

const dparse_side DPARSE_INTERFACE{DPARSE_IN_CLASS, DPARSE_IN_ENTRY, " {\n\n",
                                   write_interface_entry, "Error: Unable to export class fields"};
const dparse_side DPARSE_IMPLEMENTATION{DPARSE_IN_SQL_CLASS, DPARSE_IN_SQL_ENTRY,
                                        " IMPLEMENTATION TESSEL7 {\n\n", write_implementation_entry,
                                        "Error: Unable to export storable class implementation"};

static int unknown_type(dparse_out& out, const char* name, const tav_ebuf& ebuf) {
  dparse_flush(out);
  dd_print_error("Error: Unable to determine field type from name: %s", name);
  dd_log(HERE, "Unable to determine field type from name", ebuf);
  return -1;
}

static void write_banner(dparse_out& out, int depth) {
  out.text += '\n';
  dparse_put_banner(out, 20, depth, "Fields", nullptr);
  out.text += '\n';
}

// All of an entry before its own entries.
static int write_entry(dparse_out& out, dd_list* field_list, tav_flist_t* entry, int depth,
                       const dparse_side& side, tav_ebuf* ebuf) {
  const char* name = dd_required_text(entry, TAV_FLD_FIELD_NAME, at(ebuf, HERE));
  dparse_values values;
  dparse_get_values(values, entry, side.in_entry, ebuf);
  if (dd_failed(*ebuf)) return dparse_export_list_failed(out, HERE, *ebuf);
  const int type = dparse_find_type(out, field_list, name);
  if (type == -1) return unknown_type(out, name, *ebuf);
  dparse_put_tabs(out, depth);
  if (dparse_put_head(out, type, name) < 1) return -1;
  dparse_writing writing{out, name, depth + 1, ebuf};
  side.write_entry(writing, values, type);
  if (dd_failed(*ebuf)) return dparse_export_list_failed(out, HERE, *ebuf);
  dparse_flush_large(out);
  return 1;
}

static void close_entry(dparse_out& out, int depth) {
  dparse_put_tabs(out, depth);
  out.text.append("}\n\n");
  dparse_flush_large(out);
}

// The failure of an entry is one of each entry around it.
static int fail_all(dparse_out& out, size_t levels, const dparse_side& side) {
  for (; levels > 1; --levels) dparse_export_fail(out, HERE, side.failed);
  return -1;
}

int dparse_write_entries(dparse_out& out, dd_list* field_list, tav_flist_t* parent, int depth,
                         const dparse_side& side) {
  tav_ebuf ebuf{};
  std::vector<dd_walk> levels{{parent, TAV_FLD_OBJ_ELEM}};
  bool first = true;
  for (;;) {
    tav_flist_t* entry = levels.back().next(at(&ebuf, HERE));
    const int here = depth + static_cast<int>(levels.size()) - 1;
    if (entry != nullptr) {
      if (first) write_banner(out, here);
      if (write_entry(out, field_list, entry, here, side, &ebuf) < 1)
        return fail_all(out, levels.size(), side);
      levels.emplace_back(entry, TAV_FLD_OBJ_ELEM);
      first = true;
      continue;
    }
    if (dd_failed(ebuf)) {
      dparse_export_list_failed(out, HERE, ebuf);
      return fail_all(out, levels.size(), side);
    }
    levels.pop_back();
    if (levels.empty()) return 1;
    close_entry(out, here - 1);
    first = false;
  }
}

static int export_entries(FILE* stream, dd_list* field_list, tav_flist_t* parent, int depth,
                          const dparse_side& side) {
  dparse_out out{stream, {}};
  const int result = dparse_write_entries(out, field_list, parent, depth, side);
  dparse_flush(out);
  return result;
}

int dparseExportClassFields(FILE* stream, dd_list* field_list, tav_flist_t* parent, int depth) {
  return export_entries(stream, field_list, parent, depth, DPARSE_INTERFACE);
}

int dparseExportImplClassFields(FILE* stream, dd_list* field_list, tav_flist_t* parent, int depth) {
  return export_entries(stream, field_list, parent, depth, DPARSE_IMPLEMENTATION);
}
