// Classes: interfaces and implementations.
#include "dd/values.h"
#include "dd/walk.h"
#include "dparse/write/entries.h"
#include "dparse/write/writer.h"

static constexpr char MODULE[] = "dparse_export";

namespace dparse {

static int write_class(exporting& to, class_outline& outline, const outlined_class& storable,
                       tav_ebuf* ebuf) {
  output& out = to.out;
  const char* name = dd_required_text(storable.element, TAV_FLD_NAME, at(ebuf, HERE));
  attribute_values values;
  get_values(values, storable.element, to.in_class, ebuf);
  if (dd_failed(*ebuf)) return export_list_failed(out, HERE, *ebuf);

  put(out, "\n");
  put_banner(out, 40, 0, "Storable Class", name);
  put(out, "\nSTORABLE CLASS ");
  put(out, name);
  put(out, to.side.class_tail);
  write_state writing{out, name, 1, ebuf};
  write_values(writing, values, to.in_class);
  if (write_entries(to, entries_of(outline, storable), 1, outline.failure) < 1)
    return export_fail(out, HERE, to.side.failed);
  put(out, "}\n\n");
  return 1;
}

static int write_classes(exporting& to, class_outline& outline, tav_ebuf* ebuf) {
  for (const outlined_class& storable : outline.classes) {
    if (storable.element == nullptr) {
      *ebuf = outline.failure;
      return export_list_failed(to.out, HERE, *ebuf);
    }
    if (write_class(to, outline, storable, ebuf) < 1) return -1;
  }
  dd_clear(*ebuf);
  return 1;
}

static int export_outline(FILE* stream, dd_list* field_list, class_outline& outline,
                          const export_side& side, tav_ebuf* ebuf) {
  exporting to(stream, field_list, side);
  return write_classes(to, outline, ebuf);
}

static int export_classes(FILE* stream, dd_list* field_list, tav_flist_t* class_list,
                          const export_side& side, tav_ebuf* ebuf) {
  if (ebuf == nullptr) return export_no_buffer();
  class_outline outline = outline_classes(class_list, *ebuf);
  return export_outline(stream, field_list, outline, side, ebuf);
}

}  // namespace dparse

int dparseExportInterfaceClasses(FILE* stream, dd_list* field_list, tav_flist_t* class_list,
                                 tav_ebuf* ebuf) {
  return dparse::export_classes(stream, field_list, class_list, dparse::INTERFACE_SIDE, ebuf);
}

int dparseExportInterfaceClasses(FILE* stream, dd_list* field_list, dparse::class_outline& classes,
                                 tav_ebuf* ebuf) {
  return dparse::export_outline(stream, field_list, classes, dparse::INTERFACE_SIDE, ebuf);
}

int dparseExportImplClasses(FILE* stream, dd_list* field_list, tav_flist_t* class_list,
                            tav_ebuf* ebuf) {
  return dparse::export_classes(stream, field_list, class_list, dparse::IMPLEMENTATION_SIDE, ebuf);
}

int dparseExportImplClasses(FILE* stream, dd_list* field_list, dparse::class_outline& classes,
                            tav_ebuf* ebuf) {
  return dparse::export_outline(stream, field_list, classes, dparse::IMPLEMENTATION_SIDE, ebuf);
}
