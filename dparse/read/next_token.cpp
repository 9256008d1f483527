// The next token, taken whole from what the stream has read ahead. A token that reaches beyond
// that, or needs a message, is read by next_by_character, from its first character on.
#include <cstring>

#include "dparse/characters.h"
#include "dparse/read/lexer.h"
#include "dparse/read/state.h"
#include "dparse/read/stream.h"

static constexpr char MODULE[] = "dparse";

namespace dparse {

namespace {

// Most words are shorter. Copying a fixed number of bytes is faster than copying just the word.
constexpr size_t AT_ONCE = 32;
static_assert(AT_ONCE >= KEYWORD_SIZE);

// Takes white space that the stream has read ahead; gives what it has then.
std::string_view skip_ahead(FILE* stream) {
  const std::string_view ahead = read_ahead(stream);
  const char* at = ahead.data();
  const char* const end = at + ahead.size();
  for (; at != end; ++at) {
    if (is_any_of(*at, BLANK)) continue;
    if (*at != '\n') break;
    ++dparse_lineno;
  }
  take_ahead(stream, static_cast<size_t>(at - ahead.data()));
  return {at, static_cast<size_t>(end - at)};
}

void end_text(token_text& token, size_t length) {
  token.text[length] = '\0';
  token.length = length;
}

int take_word(FILE* stream, const char* ahead, token_text& token) {
  std::memcpy(token.text, ahead, AT_ONCE);
  token.text[AT_ONCE] = '\0';  // ends every word
  size_t length = 1;
  while (!is_any_of(token.text[length], ENDS_WORD)) ++length;
  if (length == AT_ONCE) return next_by_character(stream, token);
  end_text(token, length);
  take_ahead(stream, length);
  return padded_keyword_number(token.text, length);
}

// Takes the token of one character where it is next; says whether it did.
bool take_if_ahead(FILE* stream, char single) {
  const std::string_view ahead = skip_ahead(stream);
  if (ahead.empty() || ahead.front() != single) return false;
  take_ahead(stream, 1);
  return true;
}

int take_single(FILE* stream, char c, int number, token_text& token) {
  token.text[0] = c;
  end_text(token, 1);
  take_ahead(stream, 1);
  return number;
}

}  // namespace

int next_token(FILE* stream, token_text& token) {
  const std::string_view ahead = skip_ahead(stream);
  if (ahead.size() < AT_ONCE) return next_by_character(stream, token);
  const int start = token_started_by(ahead.front());
  if (start == DPARSE_TOKEN_WORD) return take_word(stream, ahead.data(), token);
  if (start == DPARSE_TOKEN_STRING || start == DPARSE_TOKEN_EMPTY)
    return next_by_character(stream, token);
  return take_single(stream, ahead.front(), start, token);
}

int next_string(FILE* stream, token_text& token) {
  const std::string_view ahead = skip_ahead(stream).substr(0, sizeof token.text);
  if (ahead.empty() || ahead.front() != '"') return next_token(stream, token);
  const size_t end = ahead.find('"', 1);
  const std::string_view text = ahead.substr(1, end - 1);
  if (end == ahead.npos || text.find('\n') != text.npos || text.find('\0') != text.npos)
    return next_by_character(stream, token);
  std::memcpy(token.text, text.data(), text.size());
  end_text(token, text.size());
  take_ahead(stream, end + 1);
  return DPARSE_TOKEN_STRING;
}

bool take_semicolon_ahead(FILE* stream) {
  return take_if_ahead(stream, ';');
}

// A function of its own, so that `expect` needs no 2 KB of stack for a token in the usual case.
static bool take_any(FILE* stream, int number) {
  token_text token;
  return take(stream, token, number);
}

// Takes the next token, which must be that character.
static bool expect(FILE* stream, char single) {
  return take_if_ahead(stream, single) || take_any(stream, token_started_by(single));
}

int expect_equals(FILE* stream) {
  return expect(stream, '=') ? 1 : fail(HERE, message::EQUALS_EXPECTED);
}

int expect_semicolon(FILE* stream) {
  return expect(stream, ';') ? 1 : fail(HERE, message::SEMICOLON_EXPECTED);
}

int no_opening_brace() {
  return fail(HERE, message::OPENING_BRACE_EXPECTED);
}

int expect_open(FILE* stream) {
  return expect(stream, '{') ? 1 : no_opening_brace();
}

}  // namespace dparse
