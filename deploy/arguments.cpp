// The command line: a mode word, option groups and words in any order.
#include <cstdio>

#include "dd/fold.h"
#include "dd/report.h"
#include "deploy/modes.h"
#include "deploy/report.h"

static constexpr char MODULE[] = "tav_deploy";
static constexpr char INVALID_ARGUMENTS[] = "Invalid command line args";

void tav_deploy_display_usage(FILE* stream, const char* program) {
  static const char* const forms[] = {
      "class [-smncp] <class1 class2..>",          "field [-cp] <field1 field2..>",
      "verify [-d <target_db> ] <file1 file2..>",  "create [-d <target_db> ] <file1 file2..>",
      "replace [-d <target_db> ] <file1 file2..>",
  };
  const char* name = program != nullptr ? program : "tav_deploy";
  std::fflush(stdout);
  std::fputs("Usage: \n", stream);
  for (const char* form : forms) dd_print(stream, "\t%s %s\n", name, form);
}

// Shows the usage and refuses the command line.
static int refuse(dd_site site, char** argv, const char* log_text) {
  tav_deploy_display_usage(stderr, argv[0]);
  dd_log(site, log_text);
  return -1;
}

static uint32_t mode_of(const char* word) {
  static const struct {
    const char* word;
    uint32_t mode;
  } modes[] = {
      {"CLASS", TAV_DEPLOY_MODE_CLASS},     {"FIELD", TAV_DEPLOY_MODE_FIELD},
      {"VERIFY", TAV_DEPLOY_MODE_VERIFY},   {"CREATE", TAV_DEPLOY_MODE_CREATE},
      {"REPLACE", TAV_DEPLOY_MODE_REPLACE},
  };
  for (const auto& row : modes) {
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
    ctx->database = TAV_DEPLOY_DATABASE_AWAITED;
  } else if (letter == 'e') {
    tav_err_set_level(3);
  } else if (letter == '?') {
    return refuse(HERE, argv, "Invalid cmd line args");
  } else {
    dd_print_error("Invalid command line switch '%c'\n", letter);
    return refuse(HERE, argv, "Invalid commandline switch");
  }
  return 1;
}

static int read_database(const char* word, tav_deploy_ctx_t* ctx) {
  dd_log(HERE, "DB flag set");
  dd_log(HERE, word);
  unsigned a = 0, b = 0, c = 0, d = 0;
  if (std::sscanf(word, "%u.%u.%u.%u", &a, &b, &c, &d) < 4) {
    dd_print_error("Error: invalid db format: \"%s\" \n", word);
    return -1;
  }
  // A group above 65535 carries into the next; deliberately not refused.
  ctx->database = (static_cast<uint64_t>(a) << 48) + (static_cast<uint64_t>(b) << 32) +
                  (static_cast<uint64_t>(c) << 16) + d;
  return 1;
}

static int read_word(const char* word, char** argv, tav_deploy_ctx_t* ctx) {
  if (ctx->database == TAV_DEPLOY_DATABASE_AWAITED && ctx->name_count == 0) {
    return read_database(word, ctx);
  }
  if (ctx->name_count == TAV_DEPLOY_MAX_NAMES) return refuse(HERE, argv, INVALID_ARGUMENTS);
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

int tav_deploy_read_arguments(int argc, char** argv, tav_deploy_ctx_t* ctx) {
  if (argc < 2) return refuse(HERE, argv, INVALID_ARGUMENTS);
  ctx->mode = mode_of(argv[1]);
  if (ctx->mode == 0) return refuse(HERE, argv, "Invalid Command line args");
  for (int i = 2; i < argc; ++i) {
    if (read_argument(argv[i], argv, ctx) < 1) return -1;
  }
  return 1;
}
