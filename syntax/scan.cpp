#include "syntax/scan.h"

#include <algorithm>

#include "dparse/characters.h"

namespace syntax {

static size_t line_end(std::string_view text, size_t at) {
  return std::min(text.find('\n', at), text.size());
}

// The first byte that is in no gap.
static size_t behind_gap(std::string_view text, size_t at) {
  if (at == 0) at = mark_size(text);
  for (; at < text.size(); ++at) {
    if (text[at] == '#') at = line_end(text, at);
    if (at == text.size() || (text[at] != '\n' && !dparse::is_any_of(text[at], dparse::BLANK)))
      break;
  }
  return at;
}

static size_t run_end(std::string_view text, size_t at, unsigned char ends) {
  while (at < text.size() && !dparse::is_any_of(text[at], ends)) ++at;
  return at;
}

static scanned scan_string(std::string_view text, size_t start) {
  const size_t end = run_end(text, start + 1, dparse::ENDS_STRING);
  if (end == text.size() || text[end] == '\n') return {start, end, DPARSE_TOKEN_BAD_STRING};
  return {start, end + 1, text[end] == '"' ? DPARSE_TOKEN_STRING : DPARSE_TOKEN_BAD_STRING};
}

scanned scan(std::string_view text, size_t at) {
  const size_t start = behind_gap(text, at);
  if (start == text.size()) return {start, start, DPARSE_TOKEN_EOF};
  const int kind = dparse::token_started_by(text[start]);
  if (kind == DPARSE_TOKEN_STRING) return scan_string(text, start);
  if (kind != DPARSE_TOKEN_WORD) return {start, start + 1, kind};
  const size_t end = run_end(text, start, dparse::ENDS_WORD);
  return {start, end, dparse::keyword_number(text.data() + start, end - start)};
}

// A carriage return before the line end belongs to that, and further ones are blanks.
static size_t comment_end(std::string_view text, size_t at) {
  size_t end = line_end(text, at);
  while (text[end - 1] == '\r') --end;
  return end;
}

gap_piece next_in_gap(std::string_view text, size_t at) {
  if (at == 0 && mark_size(text) > 0) return {gap_kind::MARK, mark_size(text)};
  const std::string_view rest = text.substr(at, 2);
  if (rest.starts_with('#')) return {gap_kind::COMMENT, comment_end(text, at)};
  if (rest.starts_with('\n')) return {gap_kind::LINE_END, at + 1};
  if (rest == "\r\n") return {gap_kind::LINE_END, at + 2};
  size_t end = at;
  while (end < text.size() && dparse::is_any_of(text[end], dparse::BLANK)) {
    if (end > at && text.substr(end, 2) == "\r\n") break;
    ++end;
  }
  return {end > at ? gap_kind::BLANKS : gap_kind::NONE, end};
}

size_t mark_size(std::string_view text) {
  constexpr std::string_view MARK = "\xEF\xBB\xBF";
  return text.starts_with(MARK) ? MARK.size() : 0;
}

}  // namespace syntax
