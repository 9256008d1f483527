#include "deploy/server.h"

#include <cstring>
#include <utility>

#include "dd/class_names.h"
#include "dd/list.h"
#include "dd/values.h"
#include "dd/walk.h"
#include "deploy/lookup.h"
#include "deploy/report.h"

static constexpr char MODULE[] = "tav_deploy_tcm";

deploy::server_session::~server_session() {
  if (connection != nullptr) tcm_context_close(connection, 0, nullptr);
}

void deploy::log_out(deploy::server_session& session) {
  if (session.connection == nullptr) return;
  tav_ebuf ebuf{};
  tcm_context_close(session.connection, 0, at(&ebuf, HERE));
  session.connection = nullptr;
}

int tav_deploy_login(deploy::server_session& session, tav_ebuf* ebuf) {
  session.connection = nullptr;
  session.identity.reset();

  void* identity = nullptr;
  int32_t error = 0;
  tav_conf("-", "userid", TAV_FLDT_POID, &identity, &error);
  // The buffer stays clear: the run goes on, and its first operation reports the missing login.
  if (error != 0) {
    return deploy::report(HERE, "missing-identity");
  }
  session.identity.reset(static_cast<tav_poid_t*>(identity));
  if (ebuf == nullptr) return deploy::report(HERE, "missing-error-buffer");
  uint64_t unused_database = 0;
  tcm_connect(&session.connection, &unused_database, at(ebuf, HERE));
  return dd_failed(*ebuf) ? deploy::call_failed(HERE, *ebuf, "connection-failed") : 1;
}

// The login's identity, or the same type and id in the database that the command line names.
static dd_poid target(const deploy::server_session& session, uint64_t database, tav_ebuf* ebuf) {
  const tav_poid_t* identity = session.identity.get();
  if (database == 0) return dd_poid(tav_poid_copy(identity, ebuf));
  return dd_poid(
      tav_poid_create(database, tav_poid_get_type(identity), tav_poid_get_id(identity), ebuf));
}

static dd_flist new_request(const deploy::server_session& session, uint64_t database,
                            tav_ebuf* ebuf) {
  dd_flist request(tav_flist_create(at(ebuf, HERE)));
  dd_put(request.get(), TAV_FLD_POID, 0, target(session, database, at(ebuf, HERE)), at(ebuf, HERE));
  return request;
}

static void ask_for(tav_flist_t* request, const dd_shape& shape, int32_t id, const char* name,
                    tav_ebuf* ebuf) {
  tav_flist_t* element = tav_flist_elem_add(request, shape.array, id, at(ebuf, HERE));
  if (element != nullptr) dd_set_text(element, shape.name, name, at(ebuf, HERE));
}

// Runs the retrieval; 1, or -1 after the full report (also of a failure to build the request).
static int retrieve(const deploy::server_session& session, uint32_t opcode, tav_flist_t* request,
                    dd_flist& answer, tav_ebuf* ebuf) {
  tav_flist_t* output = nullptr;
  tcm_op(session.connection, opcode, 0, request, &output, at(ebuf, HERE));
  answer.reset(output);
  if (!dd_failed(*ebuf)) return 1;
  answer.reset();
  return deploy::call_failed(HERE, *ebuf, "retrieval-failed");
}

int tav_deploy_get_dd_fields(const deploy::server_session& session, dd_flist& fields,
                             uint64_t database, const tav_deploy_ctx_t* ctx) {
  tav_ebuf ebuf{};
  dd_flist request = new_request(session, database, &ebuf);
  const int32_t count = ctx != nullptr ? ctx->name_count : 0;
  for (int32_t i = 0; i < count; ++i) ask_for(request.get(), DD_FIELDS, i, ctx->names[i], &ebuf);
  return retrieve(session, TCM_OP_SDK_GET_FLD_SPECS, request.get(), fields, &ebuf);
}

static void ask_for_classes(tav_flist_t* request, const tav_deploy_ctx_t& ctx, tav_ebuf* ebuf) {
  int32_t id = 0;
  for (int32_t i = 0; i < ctx.name_count; ++i) {
    ask_for(request, DD_CLASSES, id++, ctx.names[i], ebuf);
    if (ctx.include_subclasses != 1) continue;
    char below[2048];
    tav_snprintf(below, sizeof below, "%s%s", ctx.names[i], DD_AND_BELOW.data());
    ask_for(request, DD_CLASSES, id++, below, ebuf);
  }
}

static bool must_be_found(const char* name) {
  return std::strlen(name) > DD_AND_BELOW.size() && !dd_asks_for_below(name);
}

// 1 when every class asked for is there, 0 when not, -1 when the request cannot be walked.
static int report_missing(tav_flist_t* request, tav_flist_t* answer) {
  tav_ebuf ebuf{};
  dd_list found(DD_CLASSES, answer);
  int result = 1;
  dd_walk walk(request, TAV_FLD_OBJ_DESC);
  while (tav_flist_t* asked = walk.next(at(&ebuf, HERE))) {
    const char* name = dd_text(asked, TAV_FLD_NAME, at(&ebuf, HERE));
    if (!must_be_found(name) || tav_deploy_get_class_by_name(found, name) != nullptr) continue;
    deploy::report(HERE, "class-not-found", {.class_name = name});
    result = 0;
  }
  return dd_failed(ebuf) ? deploy::call_failed(HERE, ebuf) : result;
}

int tav_deploy_get_dd_classes(const deploy::server_session& session, dd_flist& classes,
                              uint64_t database, const tav_deploy_ctx_t* ctx) {
  tav_ebuf ebuf{};
  dd_flist request = new_request(session, database, &ebuf);
  if (ctx != nullptr) ask_for_classes(request.get(), *ctx, &ebuf);
  if (retrieve(session, TCM_OP_SDK_GET_OBJ_SPECS, request.get(), classes, &ebuf) < 1) return -1;
  const int result = report_missing(request.get(), classes.get());
  if (result < 0) classes.reset();
  return result;
}
