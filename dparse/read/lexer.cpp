// Characters, and tokens character by character. Characters are read without a lock.
#include "dparse/read/lexer.h"

#include "dd/fold.h"
#include "dparse/characters.h"
#include "dparse/read/state.h"

namespace dparse {

namespace {

int get(FILE* stream) {
  const int c = getc_unlocked(stream);
  if (c == '\n') ++dparse_lineno;
  return c;
}

// The first character that is neither white space nor in a comment, consumed.
int skip(FILE* stream) {
  int c = get(stream);
  while (is_any_of(c, BLANK) || c == '\n' || c == '#') {
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
  while (to != room_end) {
    const int c = getc_unlocked(stream);
    if (is_any_of(c, ends)) {
      std::ungetc(c, stream);
      break;
    }
    *to++ = static_cast<char>(c);
  }
  return to;
}

// string := '"' { character } '"'; the opening quote has been read.
int read_string_token(FILE* stream, char* text, size_t room, size_t& length) {
  length = static_cast<size_t>(read_run(stream, ENDS_STRING, text, text + room) - text);
  const int c = get(stream);
  if (c == '"') return DPARSE_TOKEN_STRING;
  note(message::STRING_NOT_CLOSED);
  return DPARSE_TOKEN_BAD_STRING;
}

// word := character { character }; the first has been read, what ends it stays unread.
int read_word_token(FILE* stream, int c, char* text, size_t room, size_t& length) {
  if (room == 0) {
    std::ungetc(c, stream);
  } else {
    text[0] = static_cast<char>(c);
    length = static_cast<size_t>(read_run(stream, ENDS_WORD, text + 1, text + room) - text);
  }
  // Deliberate: this also counts a word that fits exactly.
  if (length == room) note(message::WORD_TOO_LONG);
  return length == 0 ? DPARSE_TOKEN_EMPTY : keyword_number(text, length);
}

// Stores at most `room` characters, no terminator.
int read_token(FILE* stream, char* text, size_t room, size_t& length) {
  length = 0;
  const int c = skip(stream);
  if (c == EOF) return DPARSE_TOKEN_EOF;
  const int start = token_started_by(static_cast<char>(c));
  if (start == DPARSE_TOKEN_STRING) return read_string_token(stream, text, room, length);
  if (start == DPARSE_TOKEN_WORD) return read_word_token(stream, c, text, room, length);
  if (start != DPARSE_TOKEN_EMPTY && room > 0) text[length++] = static_cast<char>(c);
  return start;
}

}  // namespace

int next_by_character(FILE* stream, token_text& token) {
  const int number = read_token(stream, token.text, sizeof token.text - 1, token.length);
  token.text[token.length] = '\0';
  return number;
}

}  // namespace dparse

int dparse_fgetc(FILE* stream) {
  return dparse::get(stream);
}

int dparse_ungetc(int c, FILE* stream) {
  if (c == '\n') --dparse_lineno;
  return std::ungetc(c, stream);
}

int dparseSkipSpaceComs(FILE* stream) {
  dparse_ungetc(dparse::skip(stream), stream);
  return 1;
}

int dparseGetToken(FILE* stream, char* text, size_t size) {
  dparse::token_text dropped;
  if (text == nullptr) return dparse::next_token(stream, dropped);
  size_t length;
  const int number = dparse::read_token(stream, text, size > 0 ? size - 1 : 0, length);
  if (size > 0) text[length] = '\0';
  return number;
}

int dparseIsEqual(const char* a, const char* b) {
  return dd_compare(a, b);
}
