// The mode `class`.
#include "dd/memory.h"
#include "dd/values.h"
#include "deploy/export/export.h"
#include "deploy/report.h"
#include "deploy/server.h"
#include "dparse/write/writer.h"

static constexpr char MODULE[] = "tav_deploy_export";

static int gather(dparse::class_outline& classes, deploy::included_fields& included,
                  dd_list& fields, const tav_deploy_ctx_t& ctx) {
  for (const dparse::outlined_class& storable : classes.classes) {
    if (storable.element == nullptr) return deploy::call_failed(HERE, classes.failure);
    if (tav_deploy_get_include_class_fields(classes, storable, included, fields, ctx) < 1) {
      return deploy::report(HERE, "class-not-included");
    }
  }
  return 1;
}

static int write_used_fields(dparse::class_outline& classes, dd_list& fields,
                             const tav_deploy_ctx_t& ctx) {
  deploy::included_fields included;
  included.fields.reserve(classes.entries.size());
  included.places.reserve(classes.entries.size());
  if (gather(classes, included, fields, ctx) < 1) return -1;
  tav_ebuf ebuf{};
  if (dparseExportInterfaceFields(stdout, included.fields, &ebuf) >= 1) return 1;
  return deploy::report(HERE, "interface-fields-not-written");
}

static int interfaces_failed(const tav_ebuf& ebuf) {
  return deploy::call_failed(HERE, ebuf, "interfaces-not-written");
}

static int write_classes(dparse::class_outline& classes, dd_list& fields,
                         const tav_deploy_ctx_t& ctx) {
  tav_ebuf ebuf{};
  const bool interfaces = ctx.export_interface != 0 || ctx.export_impl == 0;
  if (interfaces && dparseExportInterfaceClasses(stdout, &fields, classes, &ebuf) < 1) {
    return interfaces_failed(ebuf);
  }
  if (ctx.export_impl == 0) return deploy::is_written() ? 1 : interfaces_failed(ebuf);
  if (dparseExportImplClasses(stdout, &fields, classes, &ebuf) < 1 || !deploy::is_written()) {
    return deploy::call_failed(HERE, ebuf, "implementations-not-written");
  }
  return 1;
}

static int write_all(dparse::class_outline& classes, dd_list& fields, const tav_deploy_ctx_t& ctx) {
  const bool with_fields = ctx.select_custom != 0 || ctx.select_predefined != 0;
  if (with_fields && write_used_fields(classes, fields, ctx) < 1) {
    return deploy::report(HERE, "used-fields-not-written");
  }
  return write_classes(classes, fields, ctx);
}

// What was written before the memory ran out stays.
static int write_outline(tav_flist_t* classes, dd_list& fields, const tav_deploy_ctx_t& ctx) {
  tav_ebuf ebuf{};
  int result = -1;
  dd_with_memory(at(&ebuf, HERE), [&] {
    dparse::class_outline outline = dparse::outline_classes(classes, {});
    result = write_all(outline, fields, ctx);
  });
  if (!dd_failed(ebuf)) return result;
  deploy::call_failed(HERE, ebuf);
  return interfaces_failed(ebuf);
}

int tav_deploy_export_class(tav_deploy_ctx_t* ctx) {
  tav_ebuf ebuf{};
  deploy::server_session session;
  tav_deploy_login(session, &ebuf);
  if (dd_failed(ebuf)) return deploy::report(HERE, "login-failed");

  dd_flist fields;
  if (tav_deploy_get_dd_fields(session, fields, ctx->database, nullptr) < 1) {
    return deploy::report(HERE, "fields-not-retrieved");
  }
  dd_flist classes;
  const int found = tav_deploy_get_dd_classes(session, classes, ctx->database, ctx);
  if (found < 0) return deploy::report(HERE, "classes-not-retrieved");
  dd_list dictionary(DD_FIELDS, std::move(fields));
  const int result = write_outline(classes.get(), dictionary, *ctx) < 1 ? -1 : found;
  dd_leave(std::move(classes));
  dictionary.leave();
  return result;
}
