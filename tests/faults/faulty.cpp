#define FAULTY_DOUBLES
#include "tests/faults/faulty.h"

#include <cstdio>
#include <cstdlib>

namespace {

long number(const char* variable) {
  const char* text = std::getenv(variable);
  return text != nullptr ? std::atol(text) : 0;
}

void record(const char* format, unsigned a, unsigned b) {
  const char* path = std::getenv("TAV_RECORD");
  FILE* out = path != nullptr ? std::fopen(path, "a") : nullptr;
  if (out == nullptr) return;
  std::fprintf(out, format, a, b);
  std::fclose(out);
}

struct counter {
  long calls = 0;
  ~counter() { record("calls %u%.0u\n", static_cast<unsigned>(calls), 0); }
} counted;

void fail(tav_ebuf* ebuf, int32_t code) {
  ebuf->location = TAV_ERRLOC_DM;
  ebuf->err_class = TAV_ERRCLASS_SYSTEM;
  ebuf->err_code = code;
}

// Whether this call is the one that must fail; one made with an error in the buffer does nothing.
bool fails(tav_ebuf* ebuf) {
  if (ebuf == nullptr || ebuf->err_code != 0 || ++counted.calls != number("TAV_FAIL_AT")) {
    return false;
  }
  fail(ebuf, TAV_ERR_STORAGE);
  return true;
}

bool refuses(uint32_t opcode, uint32_t flags, tav_ebuf* ebuf) {
  if (ebuf == nullptr || ebuf->err_code != 0) return false;
  record("op %u flags %u\n", opcode, flags);
  if (number("TAV_REFUSE") != static_cast<long>(opcode)) return false;
  fail(ebuf, TAV_ERR_WRITE_REFUSED);
  return true;
}

}  // namespace

#define FAULTY_DEFINE(result, name, parameters, arguments) \
  result faulty_##name parameters {                        \
    if (fails(ebuf)) return static_cast<result>(0);        \
    return name arguments;                                 \
  }
FAULTY_CALLS(FAULTY_DEFINE)

void faulty_tcm_op(tcm_context_t* context, uint32_t opcode, uint32_t flags, tav_flist_t* input,
                   tav_flist_t** output, tav_ebuf* ebuf) {
  if (fails(ebuf) || refuses(opcode, flags, ebuf)) return;
  tcm_op(context, opcode, flags, input, output, ebuf);
}
