// Characters, and tokens character by character. Characters are read without a lock.
#include "dparse/read/lexer.h"

#include "dd/fold.h"
#include "dparse/characters.h"
#include "dparse/read/state.h"

using dparse::message;

namespace {

int get(FILE* stream) {
  const int c = getc_unlocked(stream);
  if (c == '\n') ++dparse_lineno;
  return c;
}

// The first character that is neither white space nor in a comment, consumed.
int skip(FILE* stream) {
  int c = get(stream);
  while (dparse_is(c, DPARSE_BLANK) || c == '\n' || c == '#') {
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
    if (dparse_is(c, ends)) {
      std::ungetc(c, stream);
      break;
    }
    *to++ = static_cast<char>(c);
  }
  return to;
}

// string := '"' { character } '"'; the opening quote has been read.
int read_string(FILE* stream, char* text, size_t room, size_t& length) {
  length = static_cast<size_t>(read_run(stream, DPARSE_ENDS_STRING, text, text + room) - text);
  const int c = get(stream);
  if (c == '"') return DPARSE_TOKEN_STRING;
  dparse::note(message::STRING_NOT_CLOSED);
  return DPARSE_TOKEN_BAD_STRING;
}

// word := character { character }; the first has been read, what ends it stays unread.
int read_word(FILE* stream, int c, char* text, size_t room, size_t& length) {
  if (room == 0) {
    std::ungetc(c, stream);
  } else {
    text[0] = static_cast<char>(c);
    length = static_cast<size_t>(read_run(stream, DPARSE_ENDS_WORD, text + 1, text + room) - text);
  }
  // Deliberate: this also counts a word that fits exactly.
  if (length == room) dparse::note(message::WORD_TOO_LONG);
  return length == 0 ? DPARSE_TOKEN_EMPTY : dparse_keyword(text, length);
}

// Stores at most `room` characters, no terminator.
int read_token(FILE* stream, char* text, size_t room, size_t& length) {
  length = 0;
  const int c = skip(stream);
  if (c == EOF) return DPARSE_TOKEN_EOF;
  const int start = dparse_start(static_cast<char>(c));
  if (start == DPARSE_TOKEN_STRING) return read_string(stream, text, room, length);
  if (start == DPARSE_TOKEN_WORD) return read_word(stream, c, text, room, length);
  if (start != DPARSE_TOKEN_EMPTY && room > 0) text[length++] = static_cast<char>(c);
  return start;
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

int dparse_next_by_character(FILE* stream, dparse_token& token) {
  const int number = read_token(stream, token.text, sizeof token.text - 1, token.length);
  token.text[token.length] = '\0';
  return number;
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
