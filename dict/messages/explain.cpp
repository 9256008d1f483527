// The command explain: what a printed line means and what to do about it.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <iostream>
#include <memory>
#include <set>

#include "dict/commands.h"
#include "dict/messages/messages.h"
#include "dict/terminal/visible.h"

namespace dict {

namespace {

struct pages {
  message_page messages = read_messages(MESSAGES_PAGE);
  message_page rules = read_messages(LINT_PAGE);
};

struct explanation {
  const message* found = nullptr;  // null: nothing explains the line
  const message_entry* entry = nullptr;
};

}  // namespace

// Lint tells the id of the rule at the end of each finding.
static std::string_view id_in(std::string_view line) {
  if (!line.ends_with(']')) return line;
  line.remove_suffix(1);
  return line.substr(line.rfind('[') + 1);
}

static explanation look_up(const pages& in, const std::string& line) {
  const std::string_view id = id_in(line);
  for (const message_page* page : {&in.rules, &in.messages}) {
    const message* found = find_id(*page, id);
    if (found != nullptr) return {found, &page->entries[found->entry]};
  }
  const message* found = find_message(in.messages, line);
  if (found == nullptr) return {};
  return {found, &in.messages.entries[found->entry]};
}

static void print(const explanation& told) {
  if (!told.found->ids.empty()) std::cout << "    Id: " << told.found->ids << '\n';
  std::cout << "    Cause: " << told.entry->cause << "\n    To do: " << told.entry->remedy << '\n';
}

static int explain_text(const pages& in, const std::string& line) {
  const explanation told = look_up(in, line);
  if (told.found == nullptr) {
    std::cerr << "tav_dict: "
              << visible{dm::join({"No message of tav_deploy or tav_dict: ", dm::quoted(line)})}
              << '\n';
    return FOUND;
  }
  std::cout << told.found->text << '\n';
  print(told);
  return DONE;
}

// Prints each line of standard input, and below it what it means, each explanation only once.
static int explain_input(const pages& in) {
  int result = DONE;
  std::set<const message_entry*> told;
  for (std::string line; std::getline(std::cin, line);) {
    std::cout << visible{line} << '\n';
    if (line.find_first_not_of(" \t\r") == line.npos) continue;
    const explanation what = look_up(in, line);
    if (what.found == nullptr) {
      std::cout << "    No message of tav_deploy or tav_dict.\n";
      result = FOUND;
    } else if (told.insert(what.entry).second) {
      print(what);
    }
  }
  if (!std::cin.bad() && std::ferror(stdin) == 0) return result;
  dm::problem why;
  why.sentence = "Standard input cannot be read to its end.";
  return fail(why);
}

void add_explain(CLI::App& app, int& result) {
  const auto line = std::make_shared<std::string>();
  auto* command = app.add_subcommand(
      "explain",
      "Tell what a printed message means and what to do: the text or id, or standard input's");
  command->add_option("text", *line,
                      "A line as it was printed, or the id of a message or of a rule of lint");
  command->callback([line, command, &result] {
    const pages in;
    result = command->count("text") != 0 ? explain_text(in, *line) : explain_input(in);
  });
}

}  // namespace dict
