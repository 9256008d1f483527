// The data manager as the client library sees it.
#include <new>

#include "dm/data_manager.h"
#include "dm/open.h"
#include "dm/ops/operations.h"
#include "vantor/binding.h"

struct tav_dm_session : dm::session {};

namespace dm {

static constexpr char MODULE[] = "dm";

static std::vector<problem>* noted;

void note_problems(std::vector<problem>* problems) {
  noted = problems;
}

static void report(int32_t location, const problem& why, tav_ebuf* ebuf) {
  if (why.is_unreachable) location = TAV_ERRLOC_CM;
  const auto component = location == TAV_ERRLOC_CM ? tav_component::CM : tav_component::DM;
  if (noted != nullptr) noted->push_back(why);
  tav_component_log(component, 1, why.sentence.c_str(), HERE);
  const int32_t err_class = is_of_the_system(why) ? TAV_ERRCLASS_SYSTEM : TAV_ERRCLASS_REQUEST;
  tav_set_error(ebuf, {location, err_class, why.code, why.field, why.rec_id, why.detail});
}

// Allocates nothing.
static void report_no_memory(int32_t location, tav_ebuf* ebuf) {
  const auto component = location == TAV_ERRLOC_CM ? tav_component::CM : tav_component::DM;
  tav_component_log(component, 1, "There is not enough memory.", HERE);
  tav_set_error(ebuf, {location, TAV_ERRCLASS_SYSTEM, TAV_ERR_NO_MEM});
}

tav_dm_session* open_session(const settings& settings, const open_options& options,
                             tav_ebuf* ebuf) {
  auto opened = std::make_unique<tav_dm_session>();
  problem why;
  opened->settings = settings;
  opened->store = open_dictionary(settings, options, why);
  if (opened->store != nullptr) return opened.release();
  report(TAV_ERRLOC_CM, why, ebuf);
  return nullptr;
}

static tav_dm_session* connect(uint64_t* database, tav_ebuf* ebuf) try {
  settings settings;
  problem why;
  const bool is_read = read_settings(settings, why);
  if (database != nullptr) *database = settings.database;
  if (is_read) return open_session(settings, open_options(), ebuf);
  report(TAV_ERRLOC_CM, why, ebuf);
  return nullptr;
} catch (const std::bad_alloc&) {
  report_no_memory(TAV_ERRLOC_CM, ebuf);
  return nullptr;
}

static constexpr struct {
  uint32_t opcode;
  dd_flist (*carry_out)(operation&);
} OPERATIONS[] = {
    {TCM_OP_SDK_GET_FLD_SPECS, get_fields},    {TCM_OP_SDK_SET_FLD_SPECS, set_fields},
    {TCM_OP_SDK_GET_OBJ_SPECS, get_classes},   {TCM_OP_SDK_SET_OBJ_SPECS, set_classes},
    {TCM_OP_SDK_DEL_FLD_SPECS, delete_fields},
};

static dd_flist carry_out(operation& op, uint32_t opcode) {
  bool done = false;
  if (!settle_trial(op.session, opcode, op.flags, op.input, done, op.why)) return nullptr;
  if (done) return nothing_to_give(op);
  for (const auto& row : OPERATIONS) {
    if (row.opcode == opcode) return row.carry_out(op);
  }
  return refuse(op, TAV_ERR_BAD_OPCODE, 0,
                join({"There is no operation ", std::to_string(opcode), "."}));
}

static tav_flist_t* run(tav_dm_session* session, uint32_t opcode, uint32_t flags,
                        const tav_flist_t* input, tav_ebuf* ebuf) try {
  operation op{*session, input, tav_node_of(input), flags, {}};
  dd_flist output = carry_out(op, opcode);
  clean_up(*session);
  if (output == nullptr) {
    op.why.sentence.insert(0, join({"Operation ", std::to_string(opcode), ": "}));
    report(TAV_ERRLOC_DM, op.why, ebuf);
    return nullptr;
  }
  for (const std::string& note : op.notes) {
    tav_component_log(tav_component::DM, 1, note.c_str(), HERE);
  }
  return output.release();
} catch (const std::bad_alloc&) {
  clean_up(*session);
  report_no_memory(TAV_ERRLOC_DM, ebuf);
  return nullptr;
}

// Where memory runs out, the session's store is closed without a commit, and rolls back.
static void close_session(tav_dm_session* session, tav_ebuf* ebuf) try {
  const std::unique_ptr<tav_dm_session> owner(session);
  problem why;
  if (ebuf == nullptr || settle_at_end(*session, why)) return;
  why.sentence.insert(0, "The fields could not be stored at the end of the session: ");
  report(TAV_ERRLOC_DM, why, ebuf);
} catch (const std::bad_alloc&) {
  report_no_memory(TAV_ERRLOC_DM, ebuf);
}

}  // namespace dm

const tav_data_manager* tav_bound_data_manager() {
  static constexpr tav_data_manager BOUND = {dm::connect, dm::run, dm::close_session};
  return &BOUND;
}
