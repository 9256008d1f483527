// Characters and tokens. Characters are read without a lock, and looked up in a table of classes:
// no locale, byte 255 is a character like others.
#include "dparse/dparse_lexer.h"

#include <array>
#include <cstring>
#include <string_view>

#include "dd/fold.h"
#include "dparse/dparse_state.h"
#include "dparse/dparse_stream.h"

static constexpr char MODULE[] = "dparse";

namespace {

enum : unsigned char { SPACE = 1, ENDS_WORD = 2, ENDS_STRING = 4 };

// By character plus one, so that end of file (-1) has a place too. A NUL byte belongs to no word
// and no string: texts could not carry it, and what follows it would be lost in silence.
constexpr auto CLASSES = [] {
  std::array<unsigned char, 257> classes{};
  const auto mark = [&classes](int c, int bits) {
    auto& entry = classes[static_cast<size_t>(c + 1)];
    entry = static_cast<unsigned char>(entry | bits);
  };
  for (const char c : std::string_view(" \t\n\v\f\r")) mark(c, SPACE | ENDS_WORD);
  for (const char c : std::string_view(";={}")) mark(c, ENDS_WORD);
  for (const int c : {EOF, 0}) mark(c, ENDS_WORD | ENDS_STRING);
  for (const char c : std::string_view("\"\n")) mark(c, ENDS_STRING);
  return classes;
}();

bool is(int c, unsigned char bits) {
  return (CLASSES[static_cast<size_t>(c + 1)] & bits) != 0;
}

int get(FILE* stream) {
  const int c = getc_unlocked(stream);
  if (c == '\n') ++dparse_lineno;
  return c;
}

// Takes white space that the stream has read ahead.
void skip_ahead(FILE* stream) {
  const std::string_view ahead = dparse_read_ahead(stream);
  size_t taken = 0;
  int lines = 0;
  for (; taken < ahead.size() && is(static_cast<unsigned char>(ahead[taken]), SPACE); ++taken)
    lines += ahead[taken] == '\n';
  dparse_lineno += lines;
  dparse_take_ahead(stream, taken);
}

// The first character that is neither white space nor in a comment, consumed.
int skip(FILE* stream) {
  skip_ahead(stream);
  int c = get(stream);
  while (is(c, SPACE) || c == '#') {
    if (c == '#')
      while (c != '\n' && c != EOF) c = get(stream);
    else
      c = get(stream);
  }
  return c;
}

// Stores characters up to one that ends the run, which stays unread, or to the room's end; gives
// the end of what is stored.
char* read_run(FILE* stream, unsigned char ends, char* to, const char* room_end) {
  for (;;) {
    const std::string_view ahead =
        dparse_read_ahead(stream).substr(0, static_cast<size_t>(room_end - to));
    size_t taken = 0;
    for (; taken < ahead.size() && !is(static_cast<unsigned char>(ahead[taken]), ends); ++taken)
      to[taken] = ahead[taken];
    dparse_take_ahead(stream, taken);
    to += taken;
    if (to == room_end || taken < ahead.size()) return to;
    const int c = getc_unlocked(stream);
    if (is(c, ends)) {
      std::ungetc(c, stream);
      return to;
    }
    *to++ = static_cast<char>(c);
  }
}

// string := '"' { character } '"'; the opening quote has been read.
int read_string(FILE* stream, char* text, size_t room, size_t& length) {
  length = static_cast<size_t>(read_run(stream, ENDS_STRING, text, text + room) - text);
  const int c = get(stream);
  if (c == '"') return DPARSE_TOKEN_STRING;
  dparse_note("Expecting \"");
  return DPARSE_TOKEN_BAD_STRING;
}

// word := character { character }; the first has been read, what ends it stays unread.
int read_word(FILE* stream, int c, char* text, size_t room, size_t& length) {
  if (c == '\0') return DPARSE_TOKEN_EMPTY;
  if (room == 0) {
    std::ungetc(c, stream);
  } else {
    text[0] = static_cast<char>(c);
    length = static_cast<size_t>(read_run(stream, ENDS_WORD, text + 1, text + room) - text);
  }
  // Also when the word ends right there: deliberate.
  if (length == room) dparse_note("Buffer overflow, tokens are limited to 2048 characters");
  return length == 0 ? DPARSE_TOKEN_EMPTY : dparse_keyword(text, length);
}

// The tokens of one character, 0 for any other.
constexpr auto SINGLES = [] {
  std::array<unsigned char, 256> numbers{};
  numbers['{'] = DPARSE_KEY_OPEN;
  numbers['}'] = DPARSE_KEY_CLOSE;
  numbers['='] = DPARSE_KEY_EQUALS;
  numbers[';'] = DPARSE_KEY_SEMICOLON;
  return numbers;
}();

// Stores at most `room` characters, no terminator.
int read_token(FILE* stream, char* text, size_t room, size_t& length) {
  length = 0;
  const int c = skip(stream);
  if (c == EOF) return DPARSE_TOKEN_EOF;
  if (c == '"') return read_string(stream, text, room, length);
  const int number = SINGLES[static_cast<size_t>(c)];
  if (number == 0) return read_word(stream, c, text, room, length);
  if (room > 0) text[length++] = static_cast<char>(c);
  return number;
}

}  // namespace

int dparse_fgetc(FILE* stream) {
  return get(stream);
}

int dparse_ungetc(int c, FILE* stream) {
  if (c == '\n') --dparse_lineno;
  return std::ungetc(c, stream);
}

int dparseSkipSpaceComs(FILE* stream) {
  dparse_ungetc(skip(stream), stream);
  return 1;
}

static void keep_text(dparse_token& token, std::string_view text) {
  std::memcpy(token.text, text.data(), text.size());
  token.text[text.size()] = '\0';
  token.length = text.size();
}

static int string_ahead(FILE* stream, std::string_view ahead, dparse_token& token) {
  const size_t end = ahead.find('"');
  const std::string_view text = ahead.substr(0, end);
  if (end == ahead.npos || text.find('\n') != text.npos || text.find('\0') != text.npos) return 0;
  keep_text(token, text);
  dparse_take_ahead(stream, end + 2);
  return DPARSE_TOKEN_STRING;
}

// A token that the stream has read ahead whole, and that needs no message; else 0, and nothing is
// taken. Nearly all tokens are read here, the others by read_token.
static int next_ahead(FILE* stream, dparse_token& token) {
  constexpr size_t ROOM = sizeof token.text - 1;
  const std::string_view ahead = dparse_read_ahead(stream).substr(0, ROOM);
  if (ahead.empty() || ahead.front() == '#') return 0;
  if (const int number = SINGLES[static_cast<unsigned char>(ahead.front())]) {
    keep_text(token, ahead.substr(0, 1));
    dparse_take_ahead(stream, 1);
    return number;
  }
  if (ahead.front() == '"') return string_ahead(stream, ahead.substr(1), token);
  size_t end = 0;
  while (end < ahead.size() && !is(static_cast<unsigned char>(ahead[end]), ENDS_WORD)) ++end;
  if (end == ahead.size() || end == 0) return 0;
  keep_text(token, ahead.substr(0, end));
  dparse_take_ahead(stream, end);
  return dparse_keyword(token.text, token.length);
}

int dparse_next(FILE* stream, dparse_token& token) {
  skip_ahead(stream);
  token.number = next_ahead(stream, token);
  if (token.number != 0) return token.number;
  token.number = read_token(stream, token.text, sizeof token.text - 1, token.length);
  token.text[token.length] = '\0';
  return token.number;
}

int dparseGetToken(FILE* stream, char* text, size_t size) {
  dparse_token dropped;
  if (text == nullptr) return dparse_next(stream, dropped);
  size_t length;
  const int number = read_token(stream, text, size > 0 ? size - 1 : 0, length);
  if (size > 0) text[length] = '\0';
  return number;
}

int dparseIsEqual(const char* a, const char* b) {
  return dd_compare(a, b);
}

// Takes the next token, which must be that character.
static bool take_single(FILE* stream, char wanted) {
  skip_ahead(stream);
  const std::string_view ahead = dparse_read_ahead(stream);
  if (!ahead.empty() && ahead.front() == wanted) {
    dparse_take_ahead(stream, 1);
    return true;
  }
  dparse_token token;
  return dparse_take(stream, token, SINGLES[static_cast<unsigned char>(wanted)]);
}

int dparse_expect_equals(FILE* stream) {
  return take_single(stream, '=') ? 1 : dparse_fail(HERE, "= Expected");
}

int dparse_expect_semicolon(FILE* stream) {
  return take_single(stream, ';') ? 1 : dparse_fail(HERE, "; Expected");
}

int dparse_no_open() {
  return dparse_fail(HERE, "{ Expected");
}

int dparse_expect_open(FILE* stream) {
  return take_single(stream, '{') ? 1 : dparse_no_open();
}
