// format: definition files in the style of the exports.
#include "syntax/format.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <memory>

#include "dict/commands.h"
#include "dict/files.h"
#include "dict/format/unified.h"
#include "dict/terminal/visible.h"

namespace dict {

namespace {

struct request {
  std::vector<std::string> named;
  std::string input_name;
  bool checks = false;
  bool shows_diff = false;
  bool writes = false;
};

constexpr size_t MOST_TOLD = 100;  // broken places of a file

}  // namespace

static bool is_possible(request& asked, dm::problem& why) {
  if (asked.named.empty()) asked.named = {STANDARD_INPUT};
  const auto inputs = std::count(asked.named.begin(), asked.named.end(), STANDARD_INPUT);
  if (inputs > 1) {
    why.sentence = "Standard input (-) can be formatted once only.";
  } else if (asked.writes && asked.checks) {
    why.sentence = "Either -w writes files or --check leaves them as they are, not both.";
  } else if (asked.writes && inputs > 0) {
    why.sentence = "Standard input cannot be written back: give files with -w.";
  } else if (inputs == 0 && !asked.input_name.empty()) {
    why.sentence = "--stdin-filename names standard input (-), which is not among the files.";
  }
  return why.sentence.empty();
}

static const char* sentence_of(syntax::node_kind meant) {
  switch (meant) {
    case syntax::node_kind::ATTRIBUTE:
      return "This is no whole attribute (KEYWORD = VALUE;), and stays as it is.";
    case syntax::node_kind::ENTRY:
      return "This is no whole field entry (TYPE NAME { ... }), and stays as it is.";
    case syntax::node_kind::FIELD:
      return "This is no whole field definition (TYPE NAME { ... }), and stays as it is.";
    case syntax::node_kind::INTERFACE:
      return "This is no whole class (STORABLE CLASS NAME { ... }), and stays as it is.";
    case syntax::node_kind::IMPLEMENTATION:
      return "This is no whole implementation (STORABLE CLASS NAME IMPLEMENTATION WORD { ... }), "
             "and stays as it is.";
    default:
      return "This is no definition, entry or attribute, and stays as it is.";
  }
}

// FILE:LINE:COLUMN of each, the column in characters from 1.
static void tell_broken(const std::string& name, std::string_view text,
                        const std::vector<syntax::broken_place>& broken) {
  syntax::place place{1, 0, 0};
  const size_t told = std::min(broken.size(), MOST_TOLD);
  for (size_t i = 0; i < told; ++i) {
    syntax::move_to(place, text, broken[i].byte);
    std::cerr << visible{name} << ':' << place.line << ':'
              << syntax::columns_at(text, place).characters + 1 << ": "
              << sentence_of(broken[i].meant) << '\n';
  }
  if (told < broken.size())
    std::cerr << visible{name} << ": " << broken.size() - told << " more places are broken.\n";
}

static bool put(const request& asked, const std::string& name, const std::string& shown,
                const file_content& content, const std::string& text, dm::problem& why) {
  if (asked.checks && content.text != text) std::cout << visible{shown} << '\n';
  if (asked.shows_diff) std::cout << visible_file{unified_diff(shown, content.text, text)};
  if (!asked.checks && !asked.shows_diff && !asked.writes) std::cout << visible_file{text};
  return !asked.writes || content.text == text || replace_file(name, content, text, why);
}

static int format_file(const request& asked, const std::string& name) {
  dm::problem why;
  file_content content;
  const bool is_input = name == STANDARD_INPUT;
  const std::string shown = !is_input                  ? name
                            : asked.input_name.empty() ? "<standard input>"
                                                       : asked.input_name;
  if (!read_file(name, shown, content, why)) return fail(why);
  const syntax::formatted result = syntax::format(content.text);
  if (!syntax::same_words(content.text, result.text)) {
    why.sentence = dm::join({"File ", dm::quoted(shown),
                             " is left as it is: formatting would have changed more than blanks."});
    return fail(why);
  }
  if (!put(asked, name, shown, content, result.text, why)) return fail(why);
  if (asked.writes && !result.broken.empty()) {  // places in the file as it is now
    tell_broken(shown, result.text, syntax::format(result.text).broken);
  } else {
    tell_broken(shown, content.text, result.broken);
  }
  if (!result.broken.empty()) return FAILED;
  const bool only_looks = asked.checks || (asked.shows_diff && !asked.writes);
  return only_looks && content.text != result.text ? FOUND : DONE;
}

// What one file meets keeps no other from its turn.
static int format(request asked) {
  dm::problem why;
  if (!is_possible(asked, why)) return fail(why);
  int status = DONE;
  std::vector<std::string> files;
  std::vector<dm::problem> problems;
  for (const std::string& named : asked.named) find_files(named, files, problems);
  for (const dm::problem& problem : problems) status = fail(problem);
  for (const std::string& name : files) status = std::max(status, format_file(asked, name));
  return status;
}

void add_format(CLI::App& app, int& result) {
  const auto asked = std::make_shared<request>();
  auto* command = app.add_subcommand(
      "format", "Lay definition files out in the style of the exports; comments and order stay");
  command->add_option("files", asked->named,
                      "Definition files, or folders for all *.def below; none or - for standard "
                      "input");
  auto* check = command->add_flag(
      "--check", asked->checks, "Write only the names of files that would change, and end with 1");
  command->add_flag("--diff", asked->shows_diff, "Write what would change, as a unified diff")
      ->excludes(check);
  command->add_flag("-w,--write", asked->writes,
                    "Write the files, those that change, in place of standard output");
  command->add_option("--stdin-filename", asked->input_name,
                      "The name by which messages call standard input");
  command->callback([asked, &result] { result = format(*asked); });
}

}  // namespace dict
