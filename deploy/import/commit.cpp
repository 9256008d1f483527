// Sends the definitions to the server: as a trial, or for good.
#include <utility>

#include "dd/values.h"
#include "dd/walk.h"
#include "deploy/import/import.h"
#include "deploy/report.h"

static constexpr char MODULE[] = "tav_deploy_import";

namespace {

// Where the operations go: the dictionary of a database.
struct target {
  tcm_context_t* connection;
  const tav_poid_t* identity;
  uint64_t database;  // 0 for the identity's
};

struct dictionary_object {
  const char* type;
  const char* database_note;
};

struct set_operation {
  uint32_t opcode;
  uint32_t flags_handed_on;  // a mask
  uint32_t array;
  const dictionary_object& object;
  const char* list_note;
  deploy::finding not_writeable;
  deploy::finding committed;
};

constexpr dictionary_object FIELDS{"/dd/fields", "db_flag set: /dd/fields"};
constexpr dictionary_object OBJECTS{"/dd/objects", "db_flag set: /dd/objects"};

constexpr set_operation SET_FIELDS{TCM_OP_SDK_SET_FLD_SPECS,
                                   0,
                                   TAV_FLD_FIELD,
                                   FIELDS,
                                   "TCM_OP_SDK_SET_FLD_SPECS\ninput flist\n",
                                   "fields-not-writeable",
                                   "fields-committed"};
constexpr set_operation SET_CLASSES{TCM_OP_SDK_SET_OBJ_SPECS,
                                    ~0u,
                                    TAV_FLD_OBJ_DESC,
                                    OBJECTS,
                                    "TCM_OP_SDK_SET_OBJ_SPECS\ninput flist\n",
                                    "classes-not-writeable",
                                    "classes-committed"};

}  // namespace

static void address(tav_flist_t* input, const dictionary_object& object, const target& to,
                    tav_ebuf* ebuf) {
  if (dd_failed(*ebuf)) return;
  if (to.database != 0) tav_err_log_msg(3, object.database_note, MODULE, __LINE__);
  const uint64_t database = to.database != 0 ? to.database : tav_poid_get_db(to.identity);
  const int64_t id = tav_poid_get_id(to.identity);
  dd_poid poid(tav_poid_create(database, object.type, id, at(ebuf, HERE)));
  dd_put(input, TAV_FLD_POID, 0, std::move(poid), at(ebuf, HERE));
}

static void run(const target& to, uint32_t opcode, uint32_t flags, tav_flist_t* input,
                const char* list_note, tav_ebuf* ebuf) {
  if (dd_failed(*ebuf)) return;
  tav_log_flist(3, list_note, MODULE, __LINE__, input);
  tav_flist_t* output = nullptr;
  tcm_op(to.connection, opcode, flags, input, &output, at(ebuf, HERE));
  const dd_flist unread(output);
}

static int set_failed(const set_operation& operation, const tav_ebuf& ebuf) {
  if (ebuf.err_code == TAV_ERR_WRITE_REFUSED) {
    return deploy::call_failed(HERE, ebuf, operation.not_writeable);
  }
  return deploy::call_failed(HERE, ebuf, "definitions-refused");
}

static int set_definitions(const set_operation& operation, uint32_t flags, const target& to,
                           tav_flist_t* definitions) {
  tav_ebuf ebuf{};
  if (tav_flist_elem_count(definitions, operation.array, at(&ebuf, HERE)) > 0) {
    const dd_flist input(tav_flist_copy(definitions, at(&ebuf, HERE)));
    address(input.get(), operation.object, to, &ebuf);
    run(to, operation.opcode, flags & operation.flags_handed_on, input.get(), operation.list_note,
        &ebuf);
  }
  return dd_failed(ebuf) ? set_failed(operation, ebuf) : 1;
}

// Whether the commit goes on: a trial does after a failure too, for its roll-back must come.
static bool commit_step(const set_operation& operation, uint32_t flags, const target& to,
                        tav_flist_t* definitions) {
  if (set_definitions(operation, flags, to, definitions) < 1) {
    if (flags == TAV_DEPLOY_COMMIT_TRIAL) tav_deploy_raise_error();
    return flags == TAV_DEPLOY_COMMIT_TRIAL;
  }
  if (flags == TAV_DEPLOY_COMMIT_REAL) deploy::report(HERE, operation.committed);
  return true;
}

// Copies the fields that the server did not hold before the trial; gives their number.
static int32_t copy_created(tav_flist_t* fields, tav_flist_t* created, tav_ebuf* ebuf) {
  int32_t count = 0;
  dd_walk walk(fields, TAV_FLD_FIELD);
  while (tav_flist_t* field = walk.next(at(ebuf, HERE))) {
    if (dd_int(field, TAV_FLD_FLAGS, at(ebuf, HERE)) == DD_FIELD_ON_SERVER) continue;
    tavi_flist_set(created, TAV_FLD_FIELD, count++, 0, field, at(ebuf, HERE));
  }
  return count;
}

static int roll_back(const target& to, tav_flist_t* fields) {
  tav_ebuf ebuf{};
  const dd_flist created(tav_flist_create(at(&ebuf, HERE)));
  address(created.get(), FIELDS, to, &ebuf);
  const int32_t count = copy_created(fields, created.get(), &ebuf);
  if (dd_failed(ebuf)) return deploy::call_failed(HERE, ebuf);
  if (count == 0) return 1;
  run(to, TCM_OP_SDK_DEL_FLD_SPECS, 0, created.get(), "TCM_OP_SDK_DEL_FLD_SPECS\ninput flist\n",
      &ebuf);
  if (!dd_failed(ebuf)) return 1;
  return deploy::call_failed(HERE, ebuf, "trial-not-rolled-back");
}

int tav_deploy_import_commit(tcm_context_t* connection, uint32_t flags, const tav_poid_t* identity,
                             tav_flist_t* fields, tav_flist_t* classes, uint64_t database) {
  const target to{connection, identity, database};
  if (!commit_step(SET_FIELDS, flags, to, fields)) return -1;
  if (!commit_step(SET_CLASSES, flags, to, classes)) return -1;
  return flags == TAV_DEPLOY_COMMIT_TRIAL ? roll_back(to, fields) : 1;
}
