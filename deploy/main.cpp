#include <csignal>
#include <new>

#include "dd/descriptors.h"
#include "dd/last_resort.h"
#include "dd/report.h"
#include "deploy/export/export.h"
#include "deploy/modes.h"
#include "deploy/report.h"

static constexpr char MODULE[] = "tav_deploy";
static constexpr char NO_MEMORY[] = "Error: There is not enough memory\n";

static int dispatch(tav_deploy_ctx_t* ctx, const char* program) {
  switch (ctx->mode) {
    case TAV_DEPLOY_MODE_FIELD:
      return tav_deploy_export_fields(ctx);
    case TAV_DEPLOY_MODE_VERIFY:
    case TAV_DEPLOY_MODE_CREATE:
    case TAV_DEPLOY_MODE_REPLACE:
      return tav_deploy_import(ctx);
    case TAV_DEPLOY_MODE_CLASS:
      return tav_deploy_export_class(ctx);
    default:
      dd_print_error("Error: Invalid mode\n");
      tav_deploy_display_usage(stderr, program);
      return -1;
  }
}

// Whether whoever ran an importing mode could be told its outcome. It is looked at when all is
// done, and decides about no commit. An export tells its own failing.
static int outcome_is_written(const tav_deploy_ctx_t& ctx) {
  const bool is_export = ctx.mode == TAV_DEPLOY_MODE_FIELD || ctx.mode == TAV_DEPLOY_MODE_CLASS;
  if (is_export || tav_deploy_is_written()) return 1;
  return tav_deploy_fail(HERE, "Unable to write the outcome to stdout",
                         "Error: Unable to write the outcome to stdout\n");
}

static int run(int argc, char** argv) {
  static tav_deploy_ctx_t ctx;  // all zero
  if (tav_deploy_read_arguments(argc, argv, &ctx) < 1) return 1;
  const int result = dispatch(&ctx, argv[0]);
  const int told = outcome_is_written(ctx);
  return result < 1 || told < 1 || tav_deploy_get_error() < 1 ? 1 : 0;
}

int main(int argc, char** argv) {
  if (!dd_fill_descriptors()) return 1;
  dd_end_without_memory(NO_MEMORY, 1);
#ifdef SIGPIPE
  // A reader that goes away is a failed write, which the exports report.
  std::signal(SIGPIPE, SIG_IGN);
#endif
#ifdef SIGXFSZ
  // So is one beyond the limit of a file's size.
  std::signal(SIGXFSZ, SIG_IGN);
#endif
  try {
    return run(argc, argv);
  } catch (const std::bad_alloc&) {
    tav_deploy_fail(HERE, "There is not enough memory", NO_MEMORY);
    return 1;
  }
}
