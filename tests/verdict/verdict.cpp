#include "tests/verdict/verdict.h"

#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <set>

#include "deploy/import/import.h"
#include "deploy/modes.h"
#include "dict/lint/against.h"
#include "dparse/read/reader.h"
#include "lint/lint.h"
#include "lint/rules.h"

// The modes' entry point, in deploy/import/import.cpp.
int tav_deploy_import(tav_deploy_ctx_t* ctx);

namespace {

struct said {
  bool has_error = false;
  bool is_unwriteable = false;
  std::set<std::string> rules{};  // ids
  std::string syntax{};           // "LINE ID" of the first syntax error
};

}  // namespace

static std::vector<lint::source> read_sources(int count, char** names) {
  std::vector<lint::source> sources;
  for (int i = 0; i < count; ++i) sources.push_back({names[i], syntax::read(slurp(names[i]))});
  if (count == 0) sources.push_back({"-", syntax::read(slurp("/dev/stdin"))});
  return sources;
}

static said lint_says(const std::vector<lint::source>& sources) {
  dict::against held;
  dm::problem why;
  if (!dict::read_against(".", "", held, why)) throw std::runtime_error(why.sentence);
  const lint::result found = lint::lint(sources, dict::world_of(held));
  said all;
  all.has_error = found.untold[static_cast<size_t>(lint::level::ERROR)] > 0;
  for (const lint::finding& each : found.told) {
    all.has_error = all.has_error || each.told == lint::level::ERROR;
    all.rules.emplace(each.rule);
    for (const lint::alias& other : each.aliases) all.rules.emplace(other.rule);
    const bool is_syntax = lint::find_rule(each.rule)->from == lint::origin::SYNTAX;
    if (is_syntax && all.syntax.empty())
      all.syntax = std::to_string(each.reader_line) + " " + std::string(each.rule);
    const lint::source& from = sources[each.where.source];
    if (each.where.start + each.where.length > from.tree.text.size())
      throw std::runtime_error("a finding outside its file: " + each.sentence);
  }
  return all;
}

static void take(void* context, const deploy::finding_record& record) {
  said& all = *static_cast<said*>(context);
  const std::string id = record.row.id;
  if (id == "fields-not-writeable" || id == "classes-not-writeable") all.is_unwriteable = true;
  if (record.row.kind != deploy::finding_kind::FINDING) return;
  if (id != "syntax-error") {
    all.rules.insert(id);
    return;
  }
  const dparse::message told = dparse::standing_message();
  all.syntax = std::to_string(record.arguments.line) + " ";
  if (told != dparse::message::NONE) all.syntax += dparse::row_of(told).id;
}

static said tool_says(int count, char** names) {
  static tav_deploy_ctx_t ctx;
  said all;
  ctx.mode = TAV_DEPLOY_MODE_REPLACE;
  for (int i = 0; i < count; ++i) ctx.names[ctx.name_count++] = names[i];
  deploy::set_sink(take, &all);
  all.has_error = tav_deploy_import(&ctx) < 1;
  return all;
}

// The tool's message of an empty word has no text, and so no id.
static bool is_same_syntax(const std::string& lint, const std::string& tool) {
  return lint == tool || (!tool.empty() && tool.back() == ' ' && lint.starts_with(tool));
}

static std::string difference_of(const said& lint, const said& tool) {
  if (tool.is_unwriteable) return "";
  std::string text;
  if (lint.has_error != tool.has_error)
    text += tool.has_error ? "the tool alone has an error; " : "lint alone has an error; ";
  if (!is_same_syntax(lint.syntax, tool.syntax) && !tool.syntax.empty())
    text += "syntax: lint '" + lint.syntax + "', tool '" + tool.syntax + "'; ";
  if (tool.syntax.empty() && !lint.syntax.empty()) text += "lint alone: " + lint.syntax + "; ";
  for (const std::string& id : tool.rules)
    if (lint.rules.count(id) == 0) text += "lint lacks " + id + "; ";
  if (text.empty()) return "";
  for (const std::string& id : lint.rules) text += " lint:" + id;
  for (const std::string& id : tool.rules) text += " tool:" + id;
  return text;
}

// The first word is the program's.
static int compare_here(int argc, char** argv) try {
  const int count = argc - 1;
  char** names = argv + 1;
  const auto sources = read_sources(count, names);
  const said lint = lint_says(sources);
  if (count == 0) lseek(STDIN_FILENO, 0, SEEK_SET);
  const said tool = tool_says(count, names);
  const std::string difference = difference_of(lint, tool);
  std::cerr << "\n@" << difference << '\n';
  return !difference.empty() ? 1 : tool.has_error ? 0 : 2;
} catch (const std::exception& error) {
  std::cerr << "\n@" << error.what() << '\n';
  return 1;
}

agreement compare(const workshop& in, const std::vector<std::string>& files,
                  const std::string& input, std::string& difference) {
  run_options options;
  options.input = input;
  options.inside = compare_here;
  const run_result result = in.run(files, options);
  const size_t at = result.err.rfind("\n@");
  difference = at != result.err.npos ? result.err.substr(at + 2) : result.err;
  if (result.exit_status == 0) return agreement::SAME;
  return result.exit_status == 2 ? agreement::COMMITTED : agreement::DIFFERENT;
}
