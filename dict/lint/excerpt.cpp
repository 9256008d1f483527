#include "dict/lint/excerpt.h"

#include <algorithm>
#include <cstdio>

#include "dd/utf8.h"
#include "dd/visible.h"

namespace dict {

namespace {

constexpr size_t TAB = 4;
constexpr size_t MOST_BEFORE = 60;   // bytes shown before what is marked, where the line is long
constexpr size_t MOST_LENGTH = 120;  // bytes shown of a line
constexpr char CUT[] = "...";

struct drawn {
  std::string text{};
  size_t width = 0;  // columns of a terminal
};

struct range {
  uint32_t first, last;
};

constexpr range TURNING[] = {
    {0x061c, 0x061c}, {0x200e, 0x200f}, {0x202a, 0x202e}, {0x2066, 0x2069}};
constexpr range CONTROLS[] = {{0x7f, 0x9f}};  // rapidjson writes the others out itself
constexpr range WITHOUT_WIDTH[] = {
    {0x0300, 0x036f}, {0x200b, 0x200d}, {0x20d0, 0x20ff}, {0xfe00, 0xfe0f}, {0xfeff, 0xfeff}};
constexpr range OF_TWO_COLUMNS[] = {
    {0x1100, 0x115f}, {0x2e80, 0xa4cf}, {0xac00, 0xd7a3},   {0xf900, 0xfaff},   {0xfe30, 0xfe6f},
    {0xff00, 0xff60}, {0xffe0, 0xffe6}, {0x1f300, 0x1f64f}, {0x1f900, 0x1f9ff}, {0x20000, 0x3fffd}};

}  // namespace

template <size_t N>
static bool is_in(const range (&ranges)[N], uint32_t code) {
  return std::any_of(ranges, ranges + N,
                     [code](const range& r) { return code >= r.first && code <= r.last; });
}

// Of a whole character; 0 for a byte that is none.
static uint32_t code_of(std::string_view character) {
  const auto first = static_cast<unsigned char>(character[0]);
  if (character.size() == 1) return first < 0x80 ? first : 0;
  uint32_t code = first & (0xffu >> (character.size() + 1));
  for (const char c : character.substr(1))
    code = code << 6 | (static_cast<unsigned char>(c) & 0x3f);
  return code;
}

static std::string_view take_character(std::string_view& text) {
  const size_t size = std::max<size_t>(dd_utf8_length(text.data(), text.size()), 1);
  const std::string_view character = text.substr(0, size);
  text.remove_prefix(size);
  return character;
}

static std::string code_written_out(uint32_t code) {
  char text[8];
  std::snprintf(text, sizeof text, "\\u%04x", code);
  return text;
}

static void draw(drawn& to, std::string_view text) {
  while (!text.empty()) {
    const std::string_view character = take_character(text);
    const uint32_t code = code_of(character);
    std::string shown = character == "\t"      ? std::string(TAB - to.width % TAB, ' ')
                        : is_in(TURNING, code) ? code_written_out(code)
                                               : dd_visible(character);
    const bool is_itself = shown == character;
    to.width += !is_itself                    ? shown.size()
                : is_in(WITHOUT_WIDTH, code)  ? 0
                : is_in(OF_TWO_COLUMNS, code) ? 2
                                              : 1;
    to.text += shown;
  }
}

// Looks no farther than a line is shown: one of many megabytes may have many findings.
excerpt excerpt_of(std::string_view text, size_t start, size_t length) {
  start = std::min(start, text.size());
  const size_t seen = start - std::min(start, MOST_LENGTH);
  const size_t newline = text.substr(seen, start - seen).rfind('\n');
  const bool has_start = newline != text.npos || seen == 0;
  const size_t line_start = newline == text.npos ? seen : seen + newline + 1;
  const std::string_view rest = text.substr(start, MOST_LENGTH + 1);
  size_t line_end = start + std::min(rest.find('\n'), rest.size());
  if (line_end > start && text[line_end - 1] == '\r') --line_end;
  const bool is_long = !has_start || line_end - line_start > MOST_LENGTH;
  const size_t first = is_long && start - line_start > MOST_BEFORE
                           ? dd_utf8_cut(text, start - MOST_BEFORE).size()
                           : line_start;
  const size_t end =
      line_end - first > MOST_LENGTH ? dd_utf8_cut(text, first + MOST_LENGTH).size() : line_end;
  const size_t marked_end = std::min(start + std::min(length, end - start), end);
  drawn line;
  if (first > line_start || !has_start) draw(line, CUT);
  draw(line, text.substr(first, start - first));
  const size_t caret = line.width;
  draw(line, text.substr(start, marked_end - start));
  const size_t marked = std::max<size_t>(line.width - caret, 1);
  draw(line, text.substr(marked_end, end - marked_end));
  if (end < line_end) draw(line, CUT);
  return {line.text, std::string(caret, ' ') + "^" + std::string(marked - 1, '~')};
}

std::string written_out(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const std::string_view character = take_character(text);
    const uint32_t code = code_of(character);
    result += is_in(TURNING, code) ? code_written_out(code) : dd_visible(character);
  }
  return result;
}

std::string written_out_in_json(std::string_view page) {
  std::string result;
  while (!page.empty()) {
    const std::string_view character = take_character(page);
    const uint32_t code = code_of(character);
    if (is_in(TURNING, code) || is_in(CONTROLS, code)) {
      result += code_written_out(code);
    } else {
      result += character;
    }
  }
  return result;
}

}  // namespace dict
