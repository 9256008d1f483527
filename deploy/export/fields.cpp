// The mode `field`.
#include <utility>

#include "dd/memory.h"
#include "dd/values.h"
#include "dd/walk.h"
#include "deploy/export/export.h"
#include "deploy/lookup.h"
#include "deploy/report.h"
#include "deploy/server.h"
#include "dparse/write/writer.h"

static constexpr char MODULE[] = "tav_deploy_export";

bool deploy::is_selected(tav_flist_t* field, const tav_deploy_ctx_t& ctx, tav_ebuf* ebuf) {
  if (ctx.select_custom == ctx.select_predefined) return true;
  const int32_t flags = dd_int(field, TAV_FLD_FIELD_FLAGS, ebuf);
  const bool predefined = (flags & DD_FIELD_PREDEFINED) != 0;
  return predefined == (ctx.select_predefined != 0);
}

bool deploy::is_written() {
  return std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
}

// Gathers the selected fields, borrowed.
static int filter(tav_flist_t* fields, std::vector<tav_flist_t*>& selected,
                  const tav_deploy_ctx_t& ctx) {
  tav_ebuf ebuf{};
  dd_walk walk(fields, TAV_FLD_FIELD);
  while (tav_flist_t* field = walk.next(at(&ebuf, HERE))) {
    if (deploy::is_selected(field, ctx, at(&ebuf, HERE))) selected.push_back(field);
  }
  return dd_failed(ebuf) ? deploy::call_failed(HERE, ebuf) : 1;
}

// 1 when every field asked for was fetched, else 0; -1 when they cannot be counted.
static int report_unknown(dd_list& fetched, const tav_deploy_ctx_t& ctx) {
  tav_ebuf ebuf{};
  const int32_t count = fetched.count(at(&ebuf, HERE));
  if (dd_failed(ebuf)) return deploy::call_failed(HERE, ebuf);
  if (count == ctx.name_count) return 1;
  int result = 1;
  for (int32_t i = 0; i < ctx.name_count; ++i) {
    if (tav_deploy_get_field_by_name(fetched, ctx.names[i]) != nullptr) continue;
    deploy::report(HERE, "unknown-field", {.field = ctx.names[i]});
    result = 0;
  }
  return result;
}

static int write_failed() {
  return deploy::report(HERE, "fields-not-written");
}

template <class Fields>
static int write_fields(const Fields& fields) {
  tav_ebuf ebuf{};
  if (dparseExportInterfaceFields(stdout, fields, &ebuf) >= 1 && deploy::is_written()) return 1;
  return write_failed();
}

static int write_fetched(dd_list& fetched, const tav_deploy_ctx_t& ctx) {
  const bool named = ctx.name_count > 0;
  std::vector<tav_flist_t*> selected;
  const bool selects = !named && ctx.select_custom != ctx.select_predefined;
  if (selects && filter(fetched.get(), selected, ctx) < 1) {
    return deploy::report(HERE, "fields-not-selected");
  }
  const int result = named ? report_unknown(fetched, ctx) : 1;
  if (result < 0) return -1;
  const int written = selects ? write_fields(selected) : write_fields(fetched.get());
  return written < 1 ? -1 : result;
}

// What was written before the memory ran out stays.
static int without_memory(const tav_ebuf& ebuf) {
  deploy::call_failed(HERE, ebuf);
  return write_failed();
}

int tav_deploy_export_fields(tav_deploy_ctx_t* ctx) {
  tav_ebuf ebuf{};
  deploy::server_session session;
  tav_deploy_login(session, &ebuf);
  if (dd_failed(ebuf)) return deploy::report(HERE, "login-failed");

  const bool named = ctx->name_count > 0;
  dd_flist fields;
  if (tav_deploy_get_dd_fields(session, fields, ctx->database, named ? ctx : nullptr) < 1) {
    return named ? deploy::report(HERE, "selected-fields-not-retrieved")
                 : deploy::report(HERE, "fields-not-retrieved");
  }
  dd_list fetched(DD_FIELDS, std::move(fields));
  int result = -1;
  dd_with_memory(at(&ebuf, HERE), [&] { result = write_fetched(fetched, *ctx); });
  fetched.leave();
  return dd_failed(ebuf) ? without_memory(ebuf) : result;
}
