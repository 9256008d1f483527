// The page of messages (docs/messages.md), and the entry that a printed line is about.
//
// An entry of the page is one heading or more, each a text in backquotes and, for tav_deploy's, its
// ids in brackets; then the cause, then a paragraph that begins with "To do: ". In a text %s, %d
// and %c stand for anything.
#ifndef DICT_MESSAGES_MESSAGES_H
#define DICT_MESSAGES_MESSAGES_H

#include <string>
#include <string_view>
#include <vector>

namespace dict {

extern const char MESSAGES_PAGE[];
extern const char LINT_PAGE[];  // docs/lint.md: the same, where a text is the id of a rule

struct message {
  std::string_view text;
  std::string_view ids;  // "a, b", or empty
  size_t entry;          // the same for texts with the same cause
};

struct message_entry {
  std::string cause;  // in one line each
  std::string remedy;
};

struct message_page {
  std::vector<message> messages;
  std::vector<message_entry> entries;
};

// Borrows the page's text.
message_page read_messages(std::string_view page);

// The message that has the id, as one of its ids or as its text; null where none has.
const message* find_id(const message_page& page, std::string_view id);

// The message whose id the line is, or the one that matches the line, or what follows a ": " in
// it, with the largest share of its own words; null where none does.
const message* find_message(const message_page& page, std::string_view line);

}  // namespace dict

#endif
