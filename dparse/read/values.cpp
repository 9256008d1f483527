#include "dparse/read/values.h"

#include <cstdlib>
#include <cstring>

#include "dd/fold.h"
#include "dparse/read/forms.h"
#include "dparse/read/state.h"

static constexpr char MODULE[] = "dparse";

namespace dparse {

static int too_long(const char* value) {
  return fail(HERE, message::STRING_TOO_LONG, value);
}

namespace {

// A value as it is put together from its pieces.
struct gathered {
  char* text;
  size_t size;  // of the room, terminator included
  size_t length = 0;
};

}  // namespace

// Appends the strings that stand next to it to the value; gives the number of the token after them.
static int gather(FILE* stream, gathered& value) {
  token_text next;
  int number;
  while ((number = next_string(stream, next)) == DPARSE_TOKEN_STRING) {
    if (value.size <= value.length + next.length) return too_long(value.text);
    std::memcpy(value.text + value.length, next.text, next.length + 1);
    value.length += next.length;
  }
  return number;
}

// Makes \n and \t real, in place; a backslash before anything else stays with what follows it.
static void unescape(gathered& value) {
  const void* first = std::memchr(value.text, '\\', value.length);
  if (first == nullptr) return;
  const char* from = static_cast<const char*>(first);
  char* to = value.text + (from - value.text);
  while (*from != '\0') {
    if (from[0] != '\\' || from[1] == '\0') {
      *to++ = *from++;
    } else if (from[1] == 'n' || from[1] == 't') {
      *to++ = from[1] == 'n' ? '\n' : '\t';
      from += 2;
    } else {
      *to++ = *from++;
      *to++ = *from++;
    }
  }
  *to = '\0';
  value.length = static_cast<size_t>(to - value.text);
}

// string := "=" '"text"' { '"text"' } ";" ; the first piece may be the value itself.
static int read_pieces(FILE* stream, token_text& first, gathered& value) {
  if (expect_equals(stream) < 1) return -1;
  if (next_string(stream, first) != DPARSE_TOKEN_STRING)
    return fail(HERE, message::QUOTED_STRING_EXPECTED, first.text);
  if (value.size <= first.length) return too_long("");
  value.length = first.length;
  if (value.text != first.text) std::memcpy(value.text, first.text, first.length + 1);
  const bool ended = take_semicolon_ahead(stream);
  const int next = ended ? DPARSE_KEY_SEMICOLON : gather(stream, value);
  if (next < 0) return -1;
  unescape(value);
  if (next == DPARSE_KEY_SEMICOLON) return 1;
  return fail(HERE, message::SEMICOLON_EXPECTED_AFTER_STRING, value.text);
}

int read_string(FILE* stream, token_text& token) {
  gathered value{token.text, sizeof token.text};
  const int result = read_pieces(stream, token, value);
  token.length = value.length;
  return result;
}

// Whether the text is a few digits and nothing else, as nearly all numbers are.
static bool is_plain(const char* text, int32_t& number) {
  constexpr int FEW = 9;
  const char* at = text;
  number = 0;
  for (; *at >= '0' && *at <= '9' && at - text < FEW; ++at) number = number * 10 + (*at - '0');
  return at > text && *at == '\0';
}

bool to_number(const char* text, int32_t& number) {
  if (is_plain(text, number)) return true;
  char* end;
  number = static_cast<int32_t>(static_cast<uint32_t>(std::strtol(text, &end, 10)));
  return end != text;
}

// number := "=" word ";"
int read_bare_number(FILE* stream, uint32_t limit, message expected, message refused,
                     int32_t& number) {
  token_text token;
  if (expect_equals(stream) < 1) return -1;
  if (!take(stream, token, DPARSE_TOKEN_WORD)) return fail_with(HERE, expected, {token.text});
  to_number(token.text, number);
  if (static_cast<uint32_t>(number) > limit) return fail_with(HERE, refused, {token.text});
  return expect_semicolon(stream);
}

// A quoted level is told by its first letter; ANY stands for those that are refused but leave a
// text.
static const struct {
  char first;
  int token;
} INITIALS[] = {{'S', DPARSE_KEY_SELF},   {'L', DPARSE_KEY_BRANDLINEAGE},
                {'B', DPARSE_KEY_BRAND},  {'A', DPARSE_KEY_ANCESTRALLINEAGE},
                {'G', DPARSE_KEY_GLOBAL}, {'N', DPARSE_KEY_ANY},
                {'O', DPARSE_KEY_ANY},    {'R', DPARSE_KEY_ANY}};

static int quoted_level(const char* text) {
  const value_word* lineage = word_of_token(ACCESS_LEVELS, DPARSE_KEY_BRANDLINEAGE);
  if (dd_equal(text, lineage->text)) return lineage->token;
  for (const auto& initial : INITIALS)
    if (text[0] == initial.first) return initial.token;
  return DPARSE_TOKEN_WORD;
}

}  // namespace dparse

int dparseString(FILE* stream, char* output, size_t size) {
  dparse::token_text first;
  if (output == nullptr) return dparse::read_string(stream, first);
  dparse::gathered value{output, size};
  const int result = dparse::read_pieces(stream, first, value);
  if (result < 1 && size > 0) *output = '\0';
  return result;
}

int dparseMultivalued(FILE* stream) {
  int32_t number;
  const int read = dparse::read_bare_number(stream, 1, dparse::message::ZERO_OR_ONE_EXPECTED,
                                            dparse::message::INVALID_ZERO_OR_ONE, number);
  return read < 1 ? -1 : number;
}

// level := "=" ( keyword | '"text"' ) ";"
int dparseReadWriteAccessLevel(FILE* stream, char* output, size_t) {
  dparse::token_text token;
  output[0] = '\0';
  if (dparse::expect_equals(stream) < 1) return -1;
  const int number = dparse::next_token(stream, token);
  const bool quoted = number == DPARSE_TOKEN_STRING;
  const int level = quoted ? dparse::quoted_level(token.text) : number;
  const dparse::value_word* word = dparse::word_of_token(dparse::ACCESS_LEVELS, level);
  if (word == nullptr) {
    if (quoted && level == DPARSE_KEY_ANY)
      std::strcpy(output, dparse::word_of_token(dparse::CREATE_LEVELS, level)->text);
    return dparse::fail(HERE, dparse::message::INVALID_ACCESS_LEVEL, token.text);
  }
  std::strcpy(output, word->text);
  return dparse::expect_semicolon(stream) < 1 ? -1 : level;
}
