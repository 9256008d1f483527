#include <csignal>
#include <new>

#include "dd/descriptors.h"
#include "dd/last_resort.h"
#include "deploy/export/export.h"
#include "deploy/modes.h"
#include "deploy/report.h"

static constexpr char MODULE[] = "tav_deploy";

static int dispatch(tav_deploy_ctx_t* ctx, const char* program) {
  for (const deploy::mode_row& row : deploy::MODES) {
    if (row.mode == ctx->mode) return row.run(ctx);
  }
  deploy::report(HERE, "invalid-mode");
  tav_deploy_display_usage(stderr, program);
  return -1;
}

// Whether whoever ran an importing mode could be told its outcome. It is looked at when all is
// done, and decides about no commit. An export tells its own failing.
static int outcome_is_written(const tav_deploy_ctx_t& ctx) {
  const bool is_export = ctx.mode == TAV_DEPLOY_MODE_FIELD || ctx.mode == TAV_DEPLOY_MODE_CLASS;
  if (is_export || deploy::is_written()) return 1;
  return deploy::report(HERE, "outcome-not-written");
}

static int run(int argc, char** argv) {
  static tav_deploy_ctx_t ctx;  // all zero
  if (deploy::read_arguments(argc, argv, &ctx) < 1) return 1;
  const int result = dispatch(&ctx, argv[0]);
  const int told = outcome_is_written(ctx);
  return result < 1 || told < 1 || tav_deploy_get_error() < 1 ? 1 : 0;
}

int main(int argc, char** argv) {
  if (!dd_fill_descriptors()) return 1;
  dd_end_without_memory(deploy::finding("not-enough-memory").row().text, 1);
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
    deploy::report(HERE, "not-enough-memory");
    return 1;
  }
}
