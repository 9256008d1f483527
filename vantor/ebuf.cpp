#include "vantor/binding.h"

void tav_set_error(tav_ebuf* ebuf, const tav_error& error) {
  if (ebuf == nullptr || ebuf->err_code != TAV_ERR_NONE) return;
  ebuf->location = error.location;
  ebuf->err_class = error.err_class;
  ebuf->err_code = error.code;
  ebuf->field = error.field;
  ebuf->rec_id = error.rec_id;
  ebuf->reserved = error.reserved;
}
