// Field definitions.
#include "dd/report.h"
#include "dd/values.h"
#include "dd/walk.h"
#include "dparse/failures.h"
#include "dparse/write/forms.h"
#include "dparse/write/types.h"
#include "dparse/write/writer.h"

static constexpr char MODULE[] = "dparse_export";

namespace dparse {

// This list's failures are worded a little differently from those of classes: deliberate.
static int list_failed(output& out, dd_site site, const tav_ebuf& ebuf, const char* end) {
  flush(out);
  dd_print_error_text(INTERNAL_ERROR_TEXT);
  dd_print_error_text(end);
  dd_log(site, "Flist error", ebuf);
  return -1;
}

static int write_field(output& out, const attribute_place& place, tav_flist_t* field,
                       tav_ebuf* ebuf) {
  const char* name = dd_required_text(field, TAV_FLD_FIELD_NAME, at(ebuf, HERE));
  const int32_t type = dd_required_int(field, TAV_FLD_FIELD_TYPE, at(ebuf, HERE));
  attribute_values values;
  get_values(values, field, place, ebuf);
  if (dd_failed(*ebuf)) return list_failed(out, HERE, *ebuf, "\n");

  put(out, "\n");
  put_banner(out, 40, 0, "Field", name);
  put(out, "\n");
  if (put_head(out, type, name) < 1) return -1;
  write_state writing{out, name, 1, ebuf};
  write_values(writing, values, place);
  put(out, "}\n\n");
  return 1;
}

}  // namespace dparse

int dparseExportInterfaceFields(FILE* stream, tav_flist_t* field_list, tav_ebuf* ebuf) {
  if (ebuf == nullptr) return dparse::export_no_buffer();
  dparse::output out(stream);
  const dparse::attribute_place place(DD_IN_DEFINITION);
  dd_walk walk(field_list, TAV_FLD_FIELD);
  while (tav_flist_t* field = walk.next(at(ebuf, HERE)))
    if (dparse::write_field(out, place, field, ebuf) < 1) return -1;
  if (dd_failed(*ebuf)) return dparse::list_failed(out, HERE, *ebuf, "");
  return 1;
}

int dparseExportInterfaceFields(FILE* stream, std::span<tav_flist_t* const> fields,
                                tav_ebuf* ebuf) {
  if (ebuf == nullptr) return dparse::export_no_buffer();
  dparse::output out(stream);
  const dparse::attribute_place place(DD_IN_DEFINITION);
  for (tav_flist_t* field : fields)
    if (dparse::write_field(out, place, field, ebuf) < 1) return -1;
  return 1;
}
