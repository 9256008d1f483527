#include "vantor/guard.h"
#include "vantor/list/value.h"

using namespace vantor;

tav_poid_t* tav_poid_create(uint64_t database, const char* type, int64_t id, tav_ebuf* ebuf) {
  return guarded<tav_poid_t*>({ebuf},
                              [&] { return new_poid(database, type != nullptr ? type : "", id); });
}

tav_poid_t* tav_poid_copy(const tav_poid_t* poid, tav_ebuf* ebuf) {
  return guarded<tav_poid_t*>({ebuf}, [&] {
    return poid != nullptr ? new_poid(poid->database, poid->type(), poid->id) : nullptr;
  });
}

void tav_poid_destroy(tav_poid_t* poid, tav_ebuf*) {
  free_value(poid);
}

uint64_t tav_poid_get_db(const tav_poid_t* poid) {
  return poid != nullptr ? poid->database : 0;
}

const char* tav_poid_get_type(const tav_poid_t* poid) {
  return poid != nullptr ? poid->type() : "";
}

int64_t tav_poid_get_id(const tav_poid_t* poid) {
  return poid != nullptr ? poid->id : 0;
}
