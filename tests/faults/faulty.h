// Included before every source of the tool when it is built for the fault tests: the tool's calls
// of the client library go through doubles that fail as the plan says (tests/faults/plan.h).
#ifndef TESTS_FAULTS_FAULTY_H
#define TESTS_FAULTS_FAULTY_H

#include "dd/vantor.h"

// X(result, name, parameters, arguments): the fallible calls; the last parameter is the error
// buffer. Two stand by themselves: tcm_op, which is recorded and refused too, and tav_conf, which
// has no buffer. What the tool calls without one (to free, to close) it cannot see fail.
#define FAULTY_CALLS(X)                                                                            \
  X(tav_flist_t*, tav_flist_create, (tav_ebuf * ebuf), (ebuf))                                     \
  X(tav_flist_t*, tav_flist_copy, (const tav_flist_t* list, tav_ebuf* ebuf), (list, ebuf))         \
  X(void*, tavi_flist_get,                                                                         \
    (tav_flist_t * list, uint32_t field, int32_t id, int32_t optional, int32_t r,                  \
     tav_ebuf * ebuf),                                                                             \
    (list, field, id, optional, r, ebuf))                                                          \
  X(void, tavi_flist_set,                                                                          \
    (tav_flist_t * list, uint32_t field, int32_t id, int32_t r, const void* value,                 \
     tav_ebuf* ebuf),                                                                              \
    (list, field, id, r, value, ebuf))                                                             \
  X(void, tavi_flist_put,                                                                          \
    (tav_flist_t * list, uint32_t field, int32_t id, int32_t r, void* value, tav_ebuf* ebuf),      \
    (list, field, id, r, value, ebuf))                                                             \
  X(void, tavi_flist_drop, (tav_flist_t * list, uint32_t field, int32_t id, tav_ebuf * ebuf),      \
    (list, field, id, ebuf))                                                                       \
  X(tav_flist_t*, tav_flist_elem_add,                                                              \
    (tav_flist_t * list, uint32_t array, int32_t id, tav_ebuf * ebuf), (list, array, id, ebuf))    \
  X(tav_flist_t*, tav_flist_elem_get_next,                                                         \
    (tav_flist_t * list, uint32_t array, int32_t * id, int32_t r, tav_cookie_t * *cookie,          \
     int32_t r2, tav_ebuf * ebuf),                                                                 \
    (list, array, id, r, cookie, r2, ebuf))                                                        \
  X(tav_flist_t*, tav_flist_elem_take_next,                                                        \
    (tav_flist_t * list, uint32_t array, int32_t * id, int32_t r, tav_cookie_t * *cookie,          \
     int32_t r2, tav_ebuf * ebuf),                                                                 \
    (list, array, id, r, cookie, r2, ebuf))                                                        \
  X(int32_t, tav_flist_elem_count, (tav_flist_t * list, uint32_t array, tav_ebuf * ebuf),          \
    (list, array, ebuf))                                                                           \
  X(tav_poid_t*, tav_poid_create,                                                                  \
    (uint64_t database, const char* type, int64_t id, tav_ebuf* ebuf), (database, type, id, ebuf)) \
  X(tav_poid_t*, tav_poid_copy, (const tav_poid_t* poid, tav_ebuf* ebuf), (poid, ebuf))            \
  X(tav_decimal_t*, tav_decimal, (const char* text, tav_ebuf* ebuf), (text, ebuf))                 \
  X(tav_decimal_t*, tav_decimal_alloc_result_zero, (tav_ebuf * ebuf), (ebuf))                      \
  X(void, tav_decimal_to_str,                                                                      \
    (const tav_decimal_t* decimal, int32_t mode, char* buffer, size_t size, tav_ebuf* ebuf),       \
    (decimal, mode, buffer, size, ebuf))                                                           \
  X(void, tcm_connect, (tcm_context_t * *context, uint64_t * database, tav_ebuf * ebuf),           \
    (context, database, ebuf))

void faulty_tcm_op(tcm_context_t* context, uint32_t opcode, uint32_t flags, tav_flist_t* input,
                   tav_flist_t** output, tav_ebuf* ebuf);
void faulty_tav_conf(const char* program, const char* key, int32_t type, void** value,
                     int32_t* error);
#define FAULTY_DECLARE(result, name, parameters, arguments) result faulty_##name parameters;
FAULTY_CALLS(FAULTY_DECLARE)
#undef FAULTY_DECLARE

#ifndef FAULTY_DOUBLES
#define tav_flist_create faulty_tav_flist_create
#define tav_flist_copy faulty_tav_flist_copy
#define tavi_flist_get faulty_tavi_flist_get
#define tavi_flist_set faulty_tavi_flist_set
#define tavi_flist_put faulty_tavi_flist_put
#define tavi_flist_drop faulty_tavi_flist_drop
#define tav_flist_elem_add faulty_tav_flist_elem_add
#define tav_flist_elem_get_next faulty_tav_flist_elem_get_next
#define tav_flist_elem_take_next faulty_tav_flist_elem_take_next
#define tav_flist_elem_count faulty_tav_flist_elem_count
#define tav_poid_create faulty_tav_poid_create
#define tav_poid_copy faulty_tav_poid_copy
#define tav_decimal faulty_tav_decimal
#define tav_decimal_alloc_result_zero faulty_tav_decimal_alloc_result_zero
#define tav_decimal_to_str faulty_tav_decimal_to_str
#define tcm_connect faulty_tcm_connect
#define tcm_op faulty_tcm_op
#define tav_conf faulty_tav_conf
#endif

#endif
