#include "dparse/read/values.h"

#include <cstdlib>
#include <cstring>

#include "dd/fold.h"
#include "dparse/read/forms.h"
#include "dparse/read/state.h"

static constexpr char MODULE[] = "dparse";

using dparse::message;

static int too_long(const char* value) {
  return dparse::fail(HERE, message::STRING_TOO_LONG, value);
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
  dparse_token next;
  int number;
  while ((number = dparse_next_string(stream, next)) == DPARSE_TOKEN_STRING) {
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
static int read_string(FILE* stream, dparse_token& first, gathered& value) {
  if (dparse_expect_equals(stream) < 1) return -1;
  if (dparse_next_string(stream, first) != DPARSE_TOKEN_STRING)
    return dparse::fail(HERE, message::QUOTED_STRING_EXPECTED, first.text);
  if (value.size <= first.length) return too_long("");
  value.length = first.length;
  if (value.text != first.text) std::memcpy(value.text, first.text, first.length + 1);
  const bool ended = dparse_take_semicolon_ahead(stream);
  const int next = ended ? DPARSE_KEY_SEMICOLON : gather(stream, value);
  if (next < 0) return -1;
  unescape(value);
  if (next == DPARSE_KEY_SEMICOLON) return 1;
  return dparse::fail(HERE, message::SEMICOLON_EXPECTED_AFTER_STRING, value.text);
}

int dparse_read_string(FILE* stream, dparse_token& token) {
  gathered value{token.text, sizeof token.text};
  const int result = read_string(stream, token, value);
  token.length = value.length;
  return result;
}

int dparseString(FILE* stream, char* output, size_t size) {
  dparse_token first;
  if (output == nullptr) return dparse_read_string(stream, first);
  gathered value{output, size};
  const int result = read_string(stream, first, value);
  if (result < 1 && size > 0) *output = '\0';
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

bool dparse_to_number(const char* text, int32_t& number) {
  if (is_plain(text, number)) return true;
  char* end;
  number = static_cast<int32_t>(static_cast<uint32_t>(std::strtol(text, &end, 10)));
  return end != text;
}

// number := "=" word ";"
int dparse_bare_number(FILE* stream, uint32_t limit, message expected, message refused,
                       int32_t& number) {
  dparse_token token;
  if (dparse_expect_equals(stream) < 1) return -1;
  if (!dparse_take(stream, token, DPARSE_TOKEN_WORD))
    return dparse::fail_with(HERE, expected, {token.text});
  dparse_to_number(token.text, number);
  if (static_cast<uint32_t>(number) > limit) return dparse::fail_with(HERE, refused, {token.text});
  return dparse_expect_semicolon(stream);
}

int dparseMultivalued(FILE* stream) {
  int32_t number;
  const int read = dparse_bare_number(stream, 1, message::ZERO_OR_ONE_EXPECTED,
                                      message::INVALID_ZERO_OR_ONE, number);
  return read < 1 ? -1 : number;
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
  const dparse_word* lineage = dparse_word_of_token(DPARSE_ACCESS_LEVELS, DPARSE_KEY_BRANDLINEAGE);
  if (dd_equal(text, lineage->text)) return lineage->token;
  for (const auto& initial : INITIALS)
    if (text[0] == initial.first) return initial.token;
  return DPARSE_TOKEN_WORD;
}

// level := "=" ( keyword | '"text"' ) ";"
int dparseReadWriteAccessLevel(FILE* stream, char* output, size_t) {
  dparse_token token;
  output[0] = '\0';
  if (dparse_expect_equals(stream) < 1) return -1;
  const int number = dparse_next(stream, token);
  const bool quoted = number == DPARSE_TOKEN_STRING;
  const int level = quoted ? quoted_level(token.text) : number;
  const dparse_word* word = dparse_word_of_token(DPARSE_ACCESS_LEVELS, level);
  if (word == nullptr) {
    if (quoted && level == DPARSE_KEY_ANY)
      std::strcpy(output, dparse_word_of_token(DPARSE_CREATE_LEVELS, level)->text);
    return dparse::fail(HERE, message::INVALID_ACCESS_LEVEL, token.text);
  }
  std::strcpy(output, word->text);
  return dparse_expect_semicolon(stream) < 1 ? -1 : level;
}
