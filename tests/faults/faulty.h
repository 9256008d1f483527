// Included before every source of the tool when it is built for the fault tests: the tool's calls
// of the client library go through doubles that fail as the plan says (tests/faults/plan.h). What
// the tool calls without an error buffer (to free, to close) it cannot see fail.
#ifndef TESTS_FAULTS_FAULTY_H
#define TESTS_FAULTS_FAULTY_H

#include <tuple>

#include "dd/vantor.h"

// Whether the call, which `name` holds the name of, is the one that must fail; its buffer is set.
bool faulty_fails(const char* name, tav_ebuf* ebuf);

// The double of a call whose last parameter is the error buffer.
template <auto Call>
struct faulty;
template <class Result, class... Parameters, Result (*Call)(Parameters...)>
struct faulty<Call> {
  static Result call(Parameters... given) {
    if (faulty_fails(__PRETTY_FUNCTION__, std::get<sizeof...(given) - 1>(std::tie(given...)))) {
      return Result();
    }
    return Call(given...);
  }
};

// These two are recorded too, or have no buffer.
void faulty_tcm_op(tcm_context_t* context, uint32_t opcode, uint32_t flags, tav_flist_t* input,
                   tav_flist_t** output, tav_ebuf* ebuf);
void faulty_tav_conf(const char* program, const char* key, int32_t type, void** value,
                     int32_t* error);

#ifndef FAULTY_DOUBLES
#define tcm_op faulty_tcm_op
#define tav_conf faulty_tav_conf
#define tav_flist_create faulty<tav_flist_create>::call
#define tav_flist_copy faulty<tav_flist_copy>::call
#define tavi_flist_get faulty<tavi_flist_get>::call
#define tavi_flist_set faulty<tavi_flist_set>::call
#define tavi_flist_put faulty<tavi_flist_put>::call
#define tavi_flist_drop faulty<tavi_flist_drop>::call
#define tav_flist_elem_add faulty<tav_flist_elem_add>::call
#define tav_flist_elem_get_next faulty<tav_flist_elem_get_next>::call
#define tav_flist_elem_take_next faulty<tav_flist_elem_take_next>::call
#define tav_flist_elem_count faulty<tav_flist_elem_count>::call
#define tav_poid_create faulty<tav_poid_create>::call
#define tav_poid_copy faulty<tav_poid_copy>::call
#define tav_decimal faulty<tav_decimal>::call
#define tav_decimal_alloc_result_zero faulty<tav_decimal_alloc_result_zero>::call
#define tav_decimal_to_str faulty<tav_decimal_to_str>::call
#define tcm_connect faulty<tcm_connect>::call
#endif

#endif
