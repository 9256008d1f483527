// Classes: interfaces and implementations.
#include <cstring>

#include "dd/values.h"
#include "dd/walk.h"
#include "dparse/dparse_export.h"
#include "dparse/dparse_export_entries.h"

static constexpr char MODULE[] = "dparse_export";

bool dparseIsTopLevelClass(const char* class_name) {
  return class_name != nullptr && class_name[0] != '\0' &&
         std::strchr(class_name + 1, '/') == nullptr;
}

static int write_class(dparse_out& out, dd_list* field_list, tav_flist_t* element,
                       const dparse_side& side, tav_ebuf* ebuf) {
  const char* name = dd_required_text(element, TAV_FLD_NAME, at(ebuf, HERE));
  dparse_values values;
  dparse_get_values(values, element, side.in_class, ebuf);
  if (dd_failed(*ebuf)) return dparse_export_list_failed(out, HERE, *ebuf);

  out.text += '\n';
  dparse_put_banner(out, 40, 0, "Storable Class", name);
  out.text.append("\nSTORABLE CLASS ").append(name).append(side.class_tail);
  dparse_writing writing{out, name, 1, ebuf};
  dparse_write_values(writing, values, side.in_class);
  if (dparse_write_entries(out, field_list, element, 1, side) < 1)
    return dparse_export_fail(out, HERE, side.failed);
  out.text.append("}\n\n");
  dparse_flush_large(out);
  return 1;
}

static int write_classes(dparse_out& out, dd_list* field_list, tav_flist_t* class_list,
                         const dparse_side& side, tav_ebuf* ebuf) {
  dd_walk walk(class_list, TAV_FLD_OBJ_DESC);
  while (tav_flist_t* element = walk.next(at(ebuf, HERE)))
    if (write_class(out, field_list, element, side, ebuf) < 1) return -1;
  return dd_failed(*ebuf) ? dparse_export_list_failed(out, HERE, *ebuf) : 1;
}

static int export_classes(FILE* stream, dd_list* field_list, tav_flist_t* class_list,
                          const dparse_side& side, tav_ebuf* ebuf) {
  dparse_out out{stream, {}};
  if (ebuf == nullptr) return dparse_export_no_buffer(out);
  const int result = write_classes(out, field_list, class_list, side, ebuf);
  dparse_flush(out);
  return result;
}

int dparseExportInterfaceClasses(FILE* stream, dd_list* field_list, tav_flist_t* class_list,
                                 tav_ebuf* ebuf) {
  return export_classes(stream, field_list, class_list, DPARSE_INTERFACE, ebuf);
}

int dparseExportImplClasses(FILE* stream, dd_list* field_list, tav_flist_t* class_list,
                            tav_ebuf* ebuf) {
  return export_classes(stream, field_list, class_list, DPARSE_IMPLEMENTATION, ebuf);
}
