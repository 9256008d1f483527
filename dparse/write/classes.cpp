// Classes: interfaces and implementations.
#include "dd/values.h"
#include "dd/walk.h"
#include "dparse/write/entries.h"
#include "dparse/write/writer.h"

static constexpr char MODULE[] = "dparse_export";

static int write_class(dparse_exporting& to, dparse_outline& outline,
                       const dparse_outline_class& storable, tav_ebuf* ebuf) {
  dparse_out& out = to.out;
  const char* name = dd_required_text(storable.element, TAV_FLD_NAME, at(ebuf, HERE));
  dparse_values values;
  dparse_get_values(values, storable.element, to.in_class, ebuf);
  if (dd_failed(*ebuf)) return dparse_export_list_failed(out, HERE, *ebuf);

  dparse_put(out, "\n");
  dparse_put_banner(out, 40, 0, "Storable Class", name);
  dparse_put(out, "\nSTORABLE CLASS ");
  dparse_put(out, name);
  dparse_put(out, to.side.class_tail);
  dparse_writing writing{out, name, 1, ebuf};
  dparse_write_values(writing, values, to.in_class);
  if (dparse_write_entries(to, dparse_entries_of(outline, storable), 1, outline.failure) < 1)
    return dparse_export_fail(out, HERE, to.side.failed);
  dparse_put(out, "}\n\n");
  return 1;
}

static int write_classes(dparse_exporting& to, dparse_outline& outline, tav_ebuf* ebuf) {
  for (const dparse_outline_class& storable : outline.classes) {
    if (storable.element == nullptr) {
      *ebuf = outline.failure;
      return dparse_export_list_failed(to.out, HERE, *ebuf);
    }
    if (write_class(to, outline, storable, ebuf) < 1) return -1;
  }
  dd_clear(*ebuf);
  return 1;
}

static int export_outline(FILE* stream, dd_list* field_list, dparse_outline& outline,
                          const dparse_side& side, tav_ebuf* ebuf) {
  dparse_exporting to(stream, field_list, side);
  return write_classes(to, outline, ebuf);
}

static int export_classes(FILE* stream, dd_list* field_list, tav_flist_t* class_list,
                          const dparse_side& side, tav_ebuf* ebuf) {
  if (ebuf == nullptr) return dparse_export_no_buffer();
  dparse_outline outline = dparse_outline_classes(class_list, *ebuf);
  return export_outline(stream, field_list, outline, side, ebuf);
}

int dparseExportInterfaceClasses(FILE* stream, dd_list* field_list, tav_flist_t* class_list,
                                 tav_ebuf* ebuf) {
  return export_classes(stream, field_list, class_list, DPARSE_INTERFACE, ebuf);
}

int dparseExportInterfaceClasses(FILE* stream, dd_list* field_list, dparse_outline& classes,
                                 tav_ebuf* ebuf) {
  return export_outline(stream, field_list, classes, DPARSE_INTERFACE, ebuf);
}

int dparseExportImplClasses(FILE* stream, dd_list* field_list, tav_flist_t* class_list,
                            tav_ebuf* ebuf) {
  return export_classes(stream, field_list, class_list, DPARSE_IMPLEMENTATION, ebuf);
}

int dparseExportImplClasses(FILE* stream, dd_list* field_list, dparse_outline& classes,
                            tav_ebuf* ebuf) {
  return export_outline(stream, field_list, classes, DPARSE_IMPLEMENTATION, ebuf);
}
