#include <csignal>

#include "dd/report.h"
#include "deploy/tav_deploy.h"

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

int main(int argc, char** argv) {
#ifdef SIGPIPE
  // A reader that goes away is a failed write, which the exports report.
  std::signal(SIGPIPE, SIG_IGN);
#endif
  static tav_deploy_ctx_t ctx;  // all zero
  if (tav_deploy_read_arguments(argc, argv, &ctx) < 1) return 1;
  const int result = dispatch(&ctx, argv[0]);
  return result < 1 || tav_deploy_get_error() < 1 ? 1 : 0;
}
