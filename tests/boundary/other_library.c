/* Another client library: just enough of one to export the two fields of its dictionary, with a
 * note of every connection, operation and close on standard error. It shares nothing with the
 * project's but names and numbers; what such an export has no need of ends the process. */
#include <stddef.h>
#include <stdio.h>
#include <stdlib.h>

#include "dd/error_codes.h"
#include "dd/field_ids.h"
#include "dd/opcodes.h"

struct error {
  int32_t location, err_class, code;
};
struct field {
  int32_t type, number;
  const char *name, *descr;
};
static struct field dictionary[] = {{TAV_FLDT_STRING, 101, "OTHER_FLD_NAME", "A name."},
                                    {TAV_FLDT_INT64, 102, "OTHER_FLD_COUNT", NULL}};
static int request; /* its address stands for the list that asks, the dictionary's for the answer */
static int identity; /* of who logs in */

static void say(const char* what, unsigned number) {
  fprintf(stderr, "other library: %s %u\n", what, number);
}

void tav_conf(const char* program, const char* key, int32_t type, void** value, int32_t* code) {
  (void)program, (void)key, (void)type;
  *value = &identity;
  *code = TAV_ERR_NONE;
}
void tcm_connect(void** context, uint64_t* database, struct error* ebuf) {
  (void)ebuf;
  *context = &identity;
  *database = 1;
  say("connect", 1);
}
void tcm_op(void* context, uint32_t opcode, uint32_t flags, void* input, void** output,
            struct error* ebuf) {
  (void)context, (void)flags;
  say("op", opcode);
  if (opcode != TCM_OP_SDK_GET_FLD_SPECS || input != &request) ebuf->code = TAV_ERR_BAD_OPCODE;
  *output = dictionary;
}
void tcm_context_close(void* context) {
  say("close", context == &identity);
}

void* tav_flist_elem_get_next(void* list, uint32_t array, int32_t* id, int32_t reserved,
                              struct field** cookie, int32_t reserved2, struct error* ebuf) {
  (void)array, (void)reserved, (void)reserved2;
  struct field* next = *cookie == NULL ? dictionary : *cookie + 1;
  if (list != dictionary || next == dictionary + 2) return ebuf->code = TAV_ERR_NOT_FOUND, NULL;
  if (id != NULL) *id = (int32_t)(next - dictionary);
  return *cookie = next;
}
const void* tavi_flist_get(const struct field* list, uint32_t field) {
  switch (field) {
    case TAV_FLD_FIELD_NAME:
      return list->name;
    case TAV_FLD_FIELD_TYPE:
      return &list->type;
    case TAV_FLD_FIELD_NUM:
      return &list->number;
    default:
      return field == TAV_FLD_DESCR ? list->descr : NULL;
  }
}
void* tav_flist_create(void) {
  return &request;
}
void* tav_flist_elem_add(void) {
  return &request;
}
void tavi_flist_set(void* list, uint32_t field, int32_t id, int32_t reserved, const char* name) {
  (void)list, (void)id, (void)reserved;
  if (field == TAV_FLD_FIELD_NAME) fprintf(stderr, "other library: asked for %s\n", name);
}
int32_t tav_flist_elem_count(void) {
  return 2;
}
void* tav_poid_copy(void* poid) {
  return poid;
}
void tavi_flist_put(void) {}
void tav_flist_destroy(void) {}
void tav_poid_destroy(void) {}

#define NO_NEED(name) \
  void name(void) {   \
    abort();          \
  }
/* clang-format off */
NO_NEED(tav_decimal) NO_NEED(tav_decimal_alloc_result_zero) NO_NEED(tav_decimal_to_str)
NO_NEED(tav_err_log_ebuf) NO_NEED(tav_err_log_msg) NO_NEED(tav_err_set_level)
NO_NEED(tav_errclass_to_str) NO_NEED(tav_errloc_to_str) NO_NEED(tav_flist_copy)
NO_NEED(tav_flist_elem_take_next) NO_NEED(tav_log_flist) NO_NEED(tav_name_of_field)
NO_NEED(tav_poid_create) NO_NEED(tav_poid_get_db) NO_NEED(tav_poid_get_id)
NO_NEED(tav_poid_get_type) NO_NEED(tav_snprintf) NO_NEED(tav_strlcat) NO_NEED(tav_strlcpy)
NO_NEED(tav_taverr_to_str) NO_NEED(tavi_client_put_cleanup) NO_NEED(tavi_flist_drop)
