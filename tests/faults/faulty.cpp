#define FAULTY_DOUBLES
#include "tests/faults/faulty.h"

#include <cstring>

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
bool faulty_fails(const char* name, tav_ebuf* ebuf) {
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

void faulty_tcm_op(tcm_context_t* context, uint32_t opcode, uint32_t flags, tav_flist_t* input,
                   tav_flist_t** output, tav_ebuf* ebuf) {
  if (faulty_fails("tcm_op", ebuf) || refuses(opcode, ebuf)) return;
  tcm_op(context, opcode, flags, input, output, ebuf);
}

void faulty_tav_conf(const char* program, const char* key, int32_t type, void** value,
                     int32_t* error) {
  if (!is_the_one("tav_conf")) return tav_conf(program, key, type, value, error);
  *value = nullptr;
  *error = TAV_ERR_BAD_CONF;
}
