#include "dict/format/unified.h"

#include <algorithm>
#include <vector>

#include "dd/vantor.h"
#include "dm/problem.h"
#include "dparse/characters.h"

namespace dict {

namespace {

struct line {
  std::string_view text;  // with its end
  size_t size;            // of it, without blanks
};

// Lines from either text that are the same (then as many from both), or that differ.
struct run {
  size_t before, before_end;
  size_t after, after_end;
  bool is_same;
};

constexpr size_t AROUND = 3;  // lines shown before and behind a change

}  // namespace

static bool is_blank(char c) {
  return c == '\n' || dparse::is_any_of(c, dparse::BLANK);
}

static std::vector<line> lines_of(std::string_view text) {
  std::vector<line> lines;
  while (!text.empty()) {
    const std::string_view next = text.substr(0, std::min(text.find('\n'), text.size() - 1) + 1);
    const auto blanks = std::count_if(next.begin(), next.end(), is_blank);
    lines.push_back({next, next.size() - static_cast<size_t>(blanks)});
    text.remove_prefix(next.size());
  }
  return lines;
}

// Goes through both, side by side by what is no blank: the one that is behind goes on.
static std::vector<run> runs_of(const std::vector<line>& before, const std::vector<line>& after) {
  std::vector<run> runs;
  size_t i = 0, j = 0, size_before = 0, size_after = 0;
  while (i < before.size() || j < after.size()) {
    const bool has_both = i < before.size() && j < after.size();
    const bool is_same = has_both && size_before == size_after && before[i].text == after[j].text;
    if (runs.empty() || runs.back().is_same != is_same) runs.push_back({i, i, j, j, is_same});
    const bool goes_on_before =
        is_same || j == after.size() || (i < before.size() && size_before <= size_after);
    if (goes_on_before) size_before += before[i++].size;
    if (is_same || !goes_on_before) size_after += after[j++].size;
    runs.back().before_end = i;
    runs.back().after_end = j;
  }
  return runs;
}

static void put_lines(std::string& to, char mark, const std::vector<line>& lines, size_t first,
                      size_t end) {
  for (; first < end; ++first) {
    to += mark;
    to += lines[first].text;
    if (to.back() != '\n') to += "\n\\ No newline at end of file\n";
  }
}

// FIRST,COUNT; of none the line before.
static std::string range(size_t first, size_t end) {
  const std::string count = std::to_string(end - first);
  return dm::join({std::to_string(first + (end > first ? 1 : 0)), ",", count});
}

// A hunk: runs that differ, and those between them that are too short to part it.
static size_t put_hunk(std::string& to, const std::vector<run>& runs, size_t first,
                       const std::vector<line>& before, const std::vector<line>& after) {
  size_t end = first + 1;
  while (end + 1 < runs.size() && runs[end].before_end - runs[end].before <= 2 * AROUND) end += 2;
  const size_t lead =
      first == 0 ? 0 : std::min(AROUND, runs[first].before - runs[first - 1].before);
  const size_t trail =
      end == runs.size() ? 0 : std::min(AROUND, runs[end].before_end - runs[end].before);
  const run &head = runs[first], &tail = runs[end - 1];
  to += dm::join({"@@ -", range(head.before - lead, tail.before_end + trail), " +",
                  range(head.after - lead, tail.after_end + trail), " @@\n"});
  put_lines(to, ' ', before, head.before - lead, head.before);
  for (size_t i = first; i < end; ++i) {
    put_lines(to, runs[i].is_same ? ' ' : '-', before, runs[i].before, runs[i].before_end);
    if (!runs[i].is_same) put_lines(to, '+', after, runs[i].after, runs[i].after_end);
  }
  put_lines(to, ' ', before, tail.before_end, tail.before_end + trail);
  return end;
}

// As tools that read a diff want it: a name with a blank ends with a tab, one with a control
// character, a quote or a backslash stands in quotes.
static std::string in_header(std::string_view name) {
  const auto needs_escape = [](char c) {
    return c == '"' || c == '\\' || static_cast<unsigned char>(c) < ' ' || c == 0x7f;
  };
  const bool has_blank = name.find(' ') != name.npos;
  if (std::none_of(name.begin(), name.end(), needs_escape))
    return std::string(name) + (has_blank ? "\t" : "");
  std::string shown = "\"";
  for (const char c : name) {
    char code[8];
    tav_snprintf(code, sizeof code, needs_escape(c) ? "\\%03o" : "%c",
                 static_cast<unsigned char>(c));
    shown += code;
  }
  return shown + "\"";
}

std::string unified_diff(std::string_view name, std::string_view before, std::string_view after) {
  if (before == after) return "";
  const std::vector<line> lines = lines_of(before), others = lines_of(after);
  const std::vector<run> runs = runs_of(lines, others);
  const std::string shown = in_header(name);
  std::string to = dm::join({"--- ", shown, "\n+++ ", shown, "\n"});
  for (size_t i = runs.front().is_same ? 1 : 0; i < runs.size();)
    i = put_hunk(to, runs, i, lines, others) + 1;
  return to;
}

}  // namespace dict
