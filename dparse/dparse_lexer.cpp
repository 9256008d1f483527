// Characters and tokens. Characters are read without a lock, and looked up in a table of classes:
// no locale, byte 255 is a character like others.
#include "dparse/dparse_lexer.h"

#include <array>
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
  for (; taken < ahead.size() && is(static_cast<unsigned char>(ahead[taken]), SPACE); ++taken)
    dparse_lineno += ahead[taken] == '\n';
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

int single(int c) {
  switch (c) {
    case '{':
      return DPARSE_KEY_OPEN;
    case '}':
      return DPARSE_KEY_CLOSE;
    case '=':
      return DPARSE_KEY_EQUALS;
    case ';':
      return DPARSE_KEY_SEMICOLON;
    default:
      return 0;
  }
}

// Stores at most `room` characters, no terminator.
int read_token(FILE* stream, char* text, size_t room, size_t& length) {
  length = 0;
  const int c = skip(stream);
  if (c == EOF) return DPARSE_TOKEN_EOF;
  if (c == '"') return read_string(stream, text, room, length);
  const int number = single(c);
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

int dparse_next(FILE* stream, dparse_token& token) {
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

static int expect(FILE* stream, int number, dd_site site, const char* message) {
  dparse_token token;
  return dparse_take(stream, token, number) ? 1 : dparse_fail(site, "%s", message);
}

int dparse_expect_equals(FILE* stream) {
  return expect(stream, DPARSE_KEY_EQUALS, HERE, "= Expected");
}

int dparse_expect_semicolon(FILE* stream) {
  return expect(stream, DPARSE_KEY_SEMICOLON, HERE, "; Expected");
}

int dparse_no_open() {
  return dparse_fail(HERE, "{ Expected");
}

int dparse_expect_open(FILE* stream) {
  dparse_token token;
  return dparse_take(stream, token, DPARSE_KEY_OPEN) ? 1 : dparse_no_open();
}
