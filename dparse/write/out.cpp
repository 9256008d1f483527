#include "dparse/write/out.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <cstring>

#include "dd/report.h"
#include "dparse/failures.h"
#include "dparse/tokens.h"
#include "dparse/write/writer.h"

namespace dparse {

static constexpr size_t PIECE = 1 << 16;  // bytes of the buffer at first
static constexpr size_t BLOCK = 1 << 12;  // bytes; a stream writes whole blocks without copying

// Writes the first `size` bytes to the stream and moves the others to the front.
static void hand_over(output& out, size_t size) {
  if (size == 0) return;
  if (out.stream != nullptr) std::fwrite(out.bytes.get(), 1, size, out.stream);
  out.next = std::copy(out.bytes.get() + size, out.next, out.bytes.get());
}

void flush(output& out) {
  hand_over(out, gathered_text(out).size());
}

output::~output() {
  flush(*this);
}

static void grow(output& out, size_t size) {
  const std::string_view gathered = gathered_text(out);
  const size_t room = std::max(gathered.size() * 2 + size, PIECE);
  auto larger = std::make_unique_for_overwrite<char[]>(room);
  out.next = larger.get() + gathered.copy(larger.get(), gathered.size());
  out.end = larger.get() + room;
  out.bytes = std::move(larger);
}

void make_room(output& out, size_t size) {
  if (out.stream != nullptr) hand_over(out, gathered_text(out).size() / BLOCK * BLOCK);
  if (static_cast<size_t>(out.end - out.next) < size) grow(out, size);
}

static void put_repeated(output& out, char c, int count) {
  const size_t size = count > 0 ? static_cast<size_t>(count) : 0;
  out.next = std::fill_n(room_for(out, size), size, c);
}

// Tabs and line starts are copied with a fixed size, which takes a few stores instead of a loop or
// a call. `next` advances by the real size, so the surplus bytes are overwritten afterwards.

void put_tabs(output& out, int count) {
  static constexpr char FEW[] = {'\t', '\t', '\t', '\t', '\t', '\t', '\t', '\t'};
  if (count < 0 || count > static_cast<int>(sizeof FEW)) return put_repeated(out, '\t', count);
  std::memcpy(room_for(out, sizeof FEW), FEW, sizeof FEW);
  out.next += count;
}

namespace {
struct line_start {
  char text[24];
  size_t size;
};
}  // namespace

// "KEYWORD = " for each keyword, by token number.
static constexpr auto LINE_STARTS = [] {
  std::array<line_start, TOKEN_NUMBERS> starts{};
#define DPARSE_START_ROW(name, keyword, number) \
  starts[number].size =                         \
      std::string_view(keyword " = ").copy(starts[number].text, std::string_view::npos);
  DD_KEYWORDS(DPARSE_START_ROW)
#undef DPARSE_START_ROW
  return starts;
}();

void put_number(output& out, int32_t number) {
  static constexpr size_t DIGITS = 16;  // more than the 10 digits and the sign of an int32_t
  char* at = room_for(out, DIGITS);
  out.next = std::to_chars(at, at + DIGITS, number).ptr;
}

// Puts the text with tabs and newlines as \t and \n, two characters each.
static void put_escaped(output& out, const char* text) {
  for (;;) {
    const std::string_view plain(text, std::strcspn(text, "\t\n"));
    put(out, plain);
    text += plain.size();
    if (*text == '\0') return;
    put(out, *text++ == '\t' ? "\\t" : "\\n");
  }
}

static void put_rule(output& out, int width, int indent) {
  const size_t marks = width > 1 ? static_cast<size_t>(width - 1) : 0;
  put_tabs(out, indent);
  char* at = room_for(out, marks + 2);
  *at++ = '#';
  at = std::fill_n(at, marks, '=');
  *at++ = '\n';
  out.next = at;
}

// The blank before an absent second text is part of the format.
void put_banner(output& out, int width, int indent, const char* text1, const char* text2) {
  put_rule(out, width, indent);
  put_tabs(out, indent);
  put(out, "#  ");
  put(out, text1 != nullptr ? text1 : "");
  put(out, " ");
  put(out, text2 != nullptr ? text2 : "");
  put(out, "\n");
  put_rule(out, width, indent);
}

void put_quoted(output& out, const char* text) {
  put(out, "\"");
  put_escaped(out, text);
  put(out, "\"");
}

void begin_line(output& out, int keyword, int indent) {
  const line_start& start = LINE_STARTS[static_cast<size_t>(keyword)];
  put_tabs(out, indent);
  std::memcpy(room_for(out, sizeof start.text), start.text, sizeof start.text);
  out.next += start.size;
}

int export_fail_as(output& out, dd_site site, const char* text, const char* record) {
  flush(out);
  dd_print_error_text(text);
  dd_log(site, record);
  return -1;
}

int export_fail(output& out, dd_site site, const char* text) {
  return export_fail_as(out, site, text, text + std::strlen("Error: "));
}

int export_list_failed(output& out, dd_site site, const tav_ebuf& ebuf) {
  flush(out);
  dd_print_error_text(INTERNAL_ERROR_TEXT);
  dd_log(site, "flist error", ebuf);
  return -1;
}

int export_no_buffer() {
  dd_print_error("\n*** Error buffer not initialized ***\n");
  return -1;
}

}  // namespace dparse

int dparseEncodeTabsNewlines(char** text) {
  if (text == nullptr || *text == nullptr) return -1;
  dparse::output escaped(nullptr);
  dparse::put_escaped(escaped, *text);
  const std::string_view gathered = dparse::gathered_text(escaped);
  char* grown = static_cast<char*>(std::realloc(*text, gathered.size() + 10));
  if (grown == nullptr) return -1;
  grown[gathered.copy(grown, gathered.size())] = '\0';
  *text = grown;
  return 1;
}

int dparseExportComment(FILE* stream, int width, int indent, const char* text1, const char* text2) {
  dparse::output out(stream);
  dparse::put_banner(out, width, indent, text1, text2);
  return 1;
}

int dparseExportString(FILE* stream, const char* keyword, const char* value, int indent) {
  if (value == nullptr || value[0] == '\0') return 1;
  dparse::output out(stream);
  dparse::put_tabs(out, indent);
  dparse::put(out, keyword != nullptr ? keyword : "");
  dparse::put(out, " = ");
  dparse::put_quoted(out, value);
  dparse::end_line(out);
  return 1;
}
