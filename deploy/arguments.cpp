// The command line: a mode word, option groups and words in any order.
#include <cstdio>

#include "dd/fold.h"
#include "dd/report.h"
#include "deploy/modes.h"
#include "deploy/report.h"

static constexpr char MODULE[] = "tav_deploy";

void tav_deploy_display_usage(FILE* stream, const char* program) {
  const char* name = program != nullptr ? program : "tav_deploy";
  std::fflush(stdout);
  std::fputs(deploy::finding("usage").row().text, stream);
  for (const deploy::mode_row& row : deploy::MODES) {
    dd_print(stream, "\t%s %s\n", name, row.usage);
  }
}

// Shows the usage and refuses the command line.
static int refuse(dd_site site, char** argv, deploy::finding why) {
  tav_deploy_display_usage(stderr, argv[0]);
  return deploy::report(site, why);
}

static uint32_t mode_of(const char* word) {
  for (const deploy::mode_row& row : deploy::MODES) {
    if (dd_equal(row.word, word)) return row.mode;
  }
  return 0;
}

static int32_t* switch_of(tav_deploy_ctx_t* ctx, char letter) {
  const struct {
    char letter;
    int32_t* flag;
  } switches[] = {
      {'c', &ctx->select_custom},    {'p', &ctx->select_predefined},  {'m', &ctx->export_impl},
      {'n', &ctx->export_interface}, {'s', &ctx->include_subclasses},
  };
  for (const auto& row : switches) {
    if (row.letter == letter) return row.flag;
  }
  return nullptr;
}

static int read_option(char letter, char** argv, tav_deploy_ctx_t* ctx) {
  if (int32_t* flag = switch_of(ctx, letter)) {
    *flag = 1;
  } else if (letter == 'd') {
    ctx->database = deploy::DATABASE_AWAITED;
  } else if (letter == 'e') {
    tav_err_set_level(3);
  } else if (letter == '?') {
    return refuse(HERE, argv, "usage-asked-for");
  } else {
    const char word[] = {letter, '\0'};
    deploy::report(HERE, "invalid-switch", {}, {.word = word});
    return refuse(HERE, argv, "switch-refused");
  }
  return 1;
}

static int read_database(const char* word, tav_deploy_ctx_t* ctx) {
  dd_log(HERE, "DB flag set");
  dd_log(HERE, word);
  unsigned a = 0, b = 0, c = 0, d = 0;
  if (std::sscanf(word, "%u.%u.%u.%u", &a, &b, &c, &d) < 4) {
    return deploy::report(HERE, "invalid-database", {}, {.word = word});
  }
  // A group above 65535 carries into the next; deliberately not refused.
  ctx->database = (static_cast<uint64_t>(a) << 48) + (static_cast<uint64_t>(b) << 32) +
                  (static_cast<uint64_t>(c) << 16) + d;
  return 1;
}

static int read_word(const char* word, char** argv, tav_deploy_ctx_t* ctx) {
  if (ctx->database == deploy::DATABASE_AWAITED && ctx->name_count == 0) {
    return read_database(word, ctx);
  }
  if (ctx->name_count == deploy::MAX_NAMES) return refuse(HERE, argv, "invalid-arguments");
  ctx->names[ctx->name_count++] = word;
  return 1;
}

static int read_argument(const char* argument, char** argv, tav_deploy_ctx_t* ctx) {
  if (argument[0] != '-') return read_word(argument, argv, ctx);
  for (const char* letter = argument + 1; *letter != '\0'; ++letter) {
    if (read_option(*letter, argv, ctx) < 1) return -1;
  }
  return 1;
}

int deploy::read_arguments(int argc, char** argv, tav_deploy_ctx_t* ctx) {
  if (argc < 2) return refuse(HERE, argv, "invalid-arguments");
  ctx->mode = mode_of(argv[1]);
  if (ctx->mode == 0) return refuse(HERE, argv, "unknown-mode");
  for (int i = 2; i < argc; ++i) {
    if (read_argument(argv[i], argv, ctx) < 1) return -1;
  }
  return 1;
}
