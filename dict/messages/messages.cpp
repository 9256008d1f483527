#include "dict/messages/messages.h"

#include <algorithm>

namespace dict {

static constexpr std::string_view HEADING = "### `";
static constexpr std::string_view REMEDY = "To do: ";
// Separates the words that a program or a log puts first from the message.
static constexpr std::string_view BETWEEN = ": ";

static std::string_view take_line(std::string_view& text) {
  const std::string_view line = text.substr(0, text.find('\n'));
  text.remove_prefix(line.size() == text.size() ? line.size() : line.size() + 1);
  return line;
}

static bool begins(std::string_view text, std::string_view start) {
  return text.substr(0, start.size()) == start;
}

static void append_line(std::string& paragraph, std::string_view line) {
  if (line.empty()) return;
  if (!paragraph.empty()) paragraph += ' ';
  paragraph += line;
}

// Behind the text in backquotes; empty where there are none.
static std::string_view ids_in(std::string_view heading) {
  if (heading.empty() || heading.back() != ']') return {};
  heading.remove_suffix(1);
  return heading.substr(heading.rfind('[') + 1);
}

static message read_heading(std::string_view heading, size_t entry) {
  const size_t end = heading.rfind('`');
  return {heading.substr(0, end), ids_in(heading.substr(end + 1)), entry};
}

message_page read_messages(std::string_view page) {
  message_page result;
  bool in_entry = false;  // not in the text of a section
  bool in_heading = false;
  bool in_remedy = false;
  while (!page.empty()) {
    std::string_view line = take_line(page);
    if (begins(line, HEADING)) {
      if (!in_heading) result.entries.emplace_back();
      in_entry = in_heading = true;
      in_remedy = false;
      line.remove_prefix(HEADING.size());
      result.messages.push_back(read_heading(line, result.entries.size() - 1));
    } else if (begins(line, "#")) {
      in_entry = in_remedy = false;
    } else if (in_entry) {
      if (begins(line, REMEDY)) in_remedy = true, line.remove_prefix(REMEDY.size());
      message_entry& entry = result.entries.back();
      append_line(in_remedy ? entry.remedy : entry.cause, line);
      if (!line.empty()) in_heading = false;
    }
  }
  return result;
}

// Gives the words before the next placeholder, and removes both from the text.
static std::string_view take_words(std::string_view& text, bool& is_last) {
  size_t at = text.find('%');
  while (at != text.npos && (at + 1 == text.size() || std::string_view("sdc").find(text[at + 1]) ==
                                                          std::string_view::npos)) {
    at = text.find('%', at + 1);
  }
  const std::string_view words = text.substr(0, at);
  is_last = at == text.npos;
  text.remove_prefix(is_last ? text.size() : at + 2);
  return words;
}

// How many characters of the line are the text's own, not values of its placeholders; 0 where the
// line does not match the text.
static size_t said(std::string_view text, std::string_view line) {
  bool is_last = false;
  std::string_view words = take_words(text, is_last);
  size_t sum = words.size();
  if (!begins(line, words) || (is_last && line != words)) return 0;
  line.remove_prefix(words.size());
  while (!is_last) {
    words = take_words(text, is_last);
    const size_t at =
        is_last ? line.size() - std::min(words.size(), line.size()) : line.find(words);
    if (at == line.npos || line.substr(at, words.size()) != words) return 0;
    line.remove_prefix(at + words.size());
    sum += words.size();
  }
  return sum;
}

static std::string_view trimmed(std::string_view line) {
  static constexpr char BLANK[] = " \t\r\n";
  const size_t first = line.find_first_not_of(BLANK);
  if (first == line.npos) return {};
  return line.substr(first, line.find_last_not_of(BLANK) - first + 1);
}

static bool has_id(std::string_view ids, std::string_view wanted) {
  while (!ids.empty()) {
    const std::string_view id = ids.substr(0, ids.find(", "));
    if (id == wanted) return true;
    ids.remove_prefix(std::min(id.size() + 2, ids.size()));
  }
  return false;
}

const message* find_id(const message_page& page, std::string_view id) {
  for (const message& each : page.messages) {
    if (each.text == id || has_id(each.ids, id)) return &each;
  }
  return nullptr;
}

const message* find_message(const message_page& page, std::string_view line) {
  line = trimmed(line);
  if (const message* found = find_id(page, line)) return found;
  const message* best = nullptr;
  size_t best_said = 0;
  size_t best_length = 1;
  // At how many places of the line a message may begin: a program or a log puts only a few words,
  // each followed by ": ", before it.
  size_t starts = 32;
  for (; !line.empty() && starts > 0; --starts) {
    for (const message& each : page.messages) {
      const size_t words = said(each.text, line);
      // Compares shares of the line, not lengths: a match that leaves little to placeholders is
      // best.
      if (words * best_length <= best_said * line.size()) continue;
      best = &each;
      best_said = words;
      best_length = line.size();
    }
    const size_t next = line.find(BETWEEN);
    line.remove_prefix(next == line.npos ? line.size() : next + BETWEEN.size());
  }
  return best;
}

}  // namespace dict
