// lint: where definition files are wrong.
#include "lint/lint.h"

#include <CLI/CLI.hpp>
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>

#include "dict/commands.h"
#include "dict/lint/against.h"

namespace dict {

static bool read(const std::string& name, std::vector<lint::source>& sources) {
  std::ostringstream text;
  std::ifstream file(name, std::ios::binary);
  name == "-" ? text << std::cin.rdbuf() : text << file.rdbuf();
  if (name != "-" && !file) return false;
  sources.push_back({name, syntax::read(std::move(text).str())});
  return true;
}

static const char* const LEVELS[] = {"off", "note", "warning", "error"};

static void print(const std::vector<lint::source>& sources, const lint::finding& one) {
  const lint::source& from = sources[one.where.source];
  const syntax::place at = syntax::place_at(from.tree, one.where.start);
  std::cout << from.name << ':' << at.line << ':' << at.column + 1 << ": "
            << LEVELS[static_cast<size_t>(one.told)] << ": " << one.sentence << " [" << one.rule
            << "]\n";
}

static int run(const std::vector<std::string>& names, const std::string& with) {
  against held;
  dm::problem why;
  if (!with.empty() && !read_against(with, "", held, why)) return fail(why);
  std::vector<lint::source> sources;
  for (const std::string& name : names)
    if (!read(name, sources)) return FAILED;
  const lint::result found = lint::lint(sources, with.empty() ? lint::world() : world_of(held));
  bool has_error = found.untold[static_cast<size_t>(lint::level::ERROR)] > 0;
  for (const lint::finding& each : found.told) {
    print(sources, each);
    has_error = has_error || each.told == lint::level::ERROR;
  }
  return has_error ? FOUND : DONE;
}

void add_lint(CLI::App& app, int& result) {
  const auto names = std::make_shared<std::vector<std::string>>();
  auto* command = app.add_subcommand("lint", "Show where definition files are wrong");
  command->add_option("file", *names, "The files; - for standard input")->required();
  const auto with = std::make_shared<std::string>();
  command->add_option("--against", *with, "A dictionary, or an export of one");
  command->callback([names, with, &result] { result = run(*names, *with); });
}

}  // namespace dict
