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

static void print(const message& found, const message_entry& entry) {
  if (!found.ids.empty()) std::cout << "    Id: " << found.ids << '\n';
  std::cout << "    Cause: " << entry.cause << "\n    To do: " << entry.remedy << '\n';
}

static int explain_text(const message_page& page, const std::string& line) {
  const message* found = find_message(page, line);
  if (found == nullptr) {
    std::cerr << "tav_dict: "
              << visible{dm::join({"No message of tav_deploy or tav_dict: ", dm::quoted(line)})}
              << '\n';
    return FOUND;
  }
  std::cout << found->text << '\n';
  print(*found, page.entries[found->entry]);
  return DONE;
}

// Prints each line of standard input, and below it what it means, each explanation only once.
static int explain_input(const message_page& page) {
  int result = DONE;
  std::set<size_t> told;
  for (std::string line; std::getline(std::cin, line);) {
    std::cout << visible{line} << '\n';
    if (line.find_first_not_of(" \t\r") == line.npos) continue;
    const message* found = find_message(page, line);
    if (found == nullptr) {
      std::cout << "    No message of tav_deploy or tav_dict.\n";
      result = FOUND;
    } else if (told.insert(found->entry).second) {
      print(*found, page.entries[found->entry]);
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
  command->add_option("text", *line, "A line as it was printed, or a message's id");
  command->callback([line, command, &result] {
    const message_page page = read_messages(MESSAGES_PAGE);
    result = command->count("text") != 0 ? explain_text(page, *line) : explain_input(page);
  });
}

}  // namespace dict
