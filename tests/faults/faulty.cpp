// The tool's calls of the client library go through these doubles (doubles.txt), which fail as the
// plan says. What the tool calls without an error buffer (to free, to close) it cannot see fail.
#include <cstring>

#include "dd/vantor.h"
#include "tests/faults/plan.h"

static void fail(tav_ebuf* ebuf, int32_t code) {
  ebuf->location = TAV_ERRLOC_DM;
  ebuf->err_class = TAV_ERRCLASS_SYSTEM;
  ebuf->err_code = code;
}

static bool is_the_one(const char* name) {
  if (++plan().calls != plan().failing_call) return false;
  plan().failed_call = name;
  return true;
}

// Whether this call is the one that must fail; one made with an error in the buffer does nothing.
static bool fails(const char* name, tav_ebuf* ebuf) {
  if (ebuf == nullptr || ebuf->err_code != 0 || !is_the_one(name)) return false;
  const bool is_step = std::strstr(name, "_next") != nullptr;  // with that code at its end
  if (is_step && plan().failing_code == TAV_ERR_NOT_FOUND) return false;
  plan().failed_module = ebuf->filename != nullptr ? ebuf->filename : "dm";
  plan().failed_line = ebuf->line_no;
  fail(ebuf, plan().failing_code);
  return true;
}

static bool refuses(uint32_t opcode, tav_ebuf* ebuf) {
  if (ebuf == nullptr || ebuf->err_code != 0) return false;
  plan().operations[plan().operation_count++] = opcode;
  if (plan().refused_operation != opcode) return false;
  fail(ebuf, TAV_ERR_WRITE_REFUSED);
  return true;
}

// A call that fails gives nothing; its last argument is the error buffer.
template <class Result>
static Result nothing() {
  return Result();
}
#define DOUBLE(result, call, parameters, arguments)                 \
  extern "C" result faulty_##call parameters {                      \
    return fails(#call, ebuf) ? nothing<result>() : call arguments; \
  }

using list = tav_flist_t;
using cookie = tav_cookie_t;
DOUBLE(list*, tav_flist_create, (tav_ebuf * ebuf), (ebuf))
DOUBLE(list*, tav_flist_copy, (const list* from, tav_ebuf* ebuf), (from, ebuf))
DOUBLE(void*, tavi_flist_get,
       (list * from, uint32_t field, int32_t id, int32_t optional, int32_t zero, tav_ebuf* ebuf),
       (from, field, id, optional, zero, ebuf))
DOUBLE(void, tavi_flist_set,
       (list * to, uint32_t field, int32_t id, int32_t zero, const void* value, tav_ebuf* ebuf),
       (to, field, id, zero, value, ebuf))
DOUBLE(void, tavi_flist_put,
       (list * to, uint32_t field, int32_t id, int32_t zero, void* value, tav_ebuf* ebuf),
       (to, field, id, zero, value, ebuf))
DOUBLE(void, tavi_flist_drop, (list * from, uint32_t field, int32_t id, tav_ebuf* ebuf),
       (from, field, id, ebuf))
DOUBLE(list*, tav_flist_elem_add, (list * to, uint32_t array, int32_t id, tav_ebuf* ebuf),
       (to, array, id, ebuf))
DOUBLE(list*, tav_flist_elem_get_next,
       (list * from, uint32_t array, int32_t* id, int32_t zero, cookie** at, int32_t zero2,
        tav_ebuf* ebuf),
       (from, array, id, zero, at, zero2, ebuf))
DOUBLE(list*, tav_flist_elem_take_next,
       (list * from, uint32_t array, int32_t* id, int32_t zero, cookie** at, int32_t zero2,
        tav_ebuf* ebuf),
       (from, array, id, zero, at, zero2, ebuf))
DOUBLE(int32_t, tav_flist_elem_count, (list * from, uint32_t array, tav_ebuf* ebuf),
       (from, array, ebuf))
DOUBLE(tav_poid_t*, tav_poid_create,
       (uint64_t database, const char* type, int64_t id, tav_ebuf* ebuf),
       (database, type, id, ebuf))
DOUBLE(tav_poid_t*, tav_poid_copy, (const tav_poid_t* from, tav_ebuf* ebuf), (from, ebuf))
DOUBLE(tav_decimal_t*, tav_decimal, (const char* text, tav_ebuf* ebuf), (text, ebuf))
DOUBLE(tav_decimal_t*, tav_decimal_alloc_result_zero, (tav_ebuf * ebuf), (ebuf))
DOUBLE(void, tav_decimal_to_str,
       (const tav_decimal_t* from, int32_t mode, char* to, size_t size, tav_ebuf* ebuf),
       (from, mode, to, size, ebuf))
DOUBLE(void, tcm_connect, (tcm_context_t * *context, uint64_t* database, tav_ebuf* ebuf),
       (context, database, ebuf))

// These two are recorded too, or have no buffer.
extern "C" void faulty_tcm_op(tcm_context_t* context, uint32_t opcode, uint32_t flags,
                              tav_flist_t* input, tav_flist_t** output, tav_ebuf* ebuf) {
  if (fails("tcm_op", ebuf) || refuses(opcode, ebuf)) return;
  tcm_op(context, opcode, flags, input, output, ebuf);
}

extern "C" void faulty_tav_conf(const char* program, const char* key, int32_t type, void** value,
                                int32_t* error) {
  if (!is_the_one("tav_conf")) return tav_conf(program, key, type, value, error);
  *value = nullptr;
  *error = TAV_ERR_BAD_CONF;
}
