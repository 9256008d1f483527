/* Another client library: just enough of one to export the only field of its dictionary, with a
 * note of what is asked on standard error. It shares nothing with the project's but names and
 * numbers. */
#include <stddef.h>
#include <stdio.h>
#include <stdlib.h>

#include "dd/error_codes.h"
#include "dd/field_ids.h"

struct error {
  int32_t location, err_class, code;
};
static const struct field {
  int32_t type, number;
  const char *name, *descr;
} dictionary = {TAV_FLDT_STRING, 101, "OTHER_FLD_NAME", "Not ours."};
static int thing; /* what every handle points to */

void tav_conf(const char* program, const char* key, int32_t type, void** value, int32_t* code) {
  fprintf(stderr, "other library: %s of %s\n", key, program);
  *value = type == TAV_FLDT_POID ? &thing : NULL;
  *code = TAV_ERR_NONE;
}
void tcm_connect(void** context) {
  *context = &thing;
}
void tcm_op(void* context, uint32_t opcode, uint32_t flags, void* input, const void** output) {
  fprintf(stderr, "other library: op %u %u\n", opcode, flags);
  *output = context == &thing && input == &thing ? &dictionary : NULL;
}
const void* tav_flist_elem_get_next(const void* list, uint32_t array, int32_t* id, int32_t reserved,
                                    const void** cookie, int32_t reserved2, struct error* ebuf) {
  (void)array, (void)id, (void)reserved, (void)reserved2;
  if (*cookie != NULL) ebuf->code = TAV_ERR_NOT_FOUND;
  return *cookie != NULL ? NULL : (*cookie = list);
}
const void* tavi_flist_get(const struct field* list, uint32_t field) {
  if (field == TAV_FLD_FIELD_TYPE) return &list->type;
  if (field == TAV_FLD_FIELD_NUM) return &list->number;
  return field == TAV_FLD_FIELD_NAME ? list->name : list->descr;
}
int32_t tav_flist_elem_count(void) {
  return 1;
}

/* clang-format off */
#define GIVES_A_THING(name) void* name(void) { return &thing; }
GIVES_A_THING(tav_flist_create) GIVES_A_THING(tav_flist_elem_add) GIVES_A_THING(tav_poid_copy)
#define DOES_NOTHING(name) void name(void) {}
DOES_NOTHING(tav_flist_destroy) DOES_NOTHING(tav_poid_destroy) DOES_NOTHING(tavi_flist_put)
DOES_NOTHING(tavi_flist_set) DOES_NOTHING(tcm_context_close)
#define NO_NEED(name) void name(void) { abort(); }
NO_NEED(tav_decimal) NO_NEED(tav_decimal_alloc_result_zero) NO_NEED(tav_decimal_to_str)
NO_NEED(tav_err_log_ebuf) NO_NEED(tav_err_log_msg) NO_NEED(tav_err_set_level)
NO_NEED(tav_errclass_to_str) NO_NEED(tav_errloc_to_str) NO_NEED(tav_flist_copy)
NO_NEED(tav_flist_elem_take_next) NO_NEED(tav_log_flist) NO_NEED(tav_name_of_field)
NO_NEED(tav_poid_create) NO_NEED(tav_poid_get_db) NO_NEED(tav_poid_get_id)
NO_NEED(tav_poid_get_type) NO_NEED(tav_snprintf) NO_NEED(tav_strlcat) NO_NEED(tav_strlcpy)
NO_NEED(tav_taverr_to_str) NO_NEED(tavi_client_put_cleanup) NO_NEED(tavi_flist_drop)
