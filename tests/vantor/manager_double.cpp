#include "manager_double.h"

manager_double the_manager;

static tav_dm_session* connect(uint64_t* database, tav_ebuf* ebuf) {
  the_manager.calls += "connect ";
  if (the_manager.connect_error != 0) {
    tav_set_error(ebuf, {TAV_ERRLOC_CM, TAV_ERRCLASS_SYSTEM, the_manager.connect_error});
    return nullptr;
  }
  *database = 1;
  return reinterpret_cast<tav_dm_session*>(&the_manager);
}

static tav_flist_t* op(tav_dm_session*, uint32_t opcode, uint32_t flags, const tav_flist_t* input,
                       tav_ebuf* ebuf) {
  the_manager.calls += "op " + std::to_string(opcode) + " " + std::to_string(flags) + " ";
  return tav_flist_copy(input, ebuf);
}

static void close(tav_dm_session*, tav_ebuf*) {
  the_manager.calls += "close ";
}

const tav_data_manager* tav_bound_data_manager() {
  static constexpr tav_data_manager DOUBLE{connect, op, close};
  return &DOUBLE;
}
