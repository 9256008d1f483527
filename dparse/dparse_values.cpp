#include "dparse/dparse_values.h"

#include <cstdlib>
#include <cstring>

#include "dd/fold.h"
#include "dparse/dparse_forms.h"
#include "dparse/dparse_state.h"

static constexpr char MODULE[] = "dparse";

// Appends the strings that stand next to each other; the token after them is left in `token`.
static int gather(FILE* stream, dparse_token& token, char* output, size_t size) {
  size_t length = 0;
  for (; token.number == DPARSE_TOKEN_STRING; dparse_next(stream, token)) {
    if (size <= length + token.length)
      return dparse_fail(HERE, "Buffer overflow, tokens cannot exceed 2048 characters, parsing %s",
                         output);
    std::memcpy(output + length, token.text, token.length + 1);
    length += token.length;
  }
  return 1;
}

// Makes \n and \t real, in place; a backslash before anything else stays with what follows it.
static void unescape(char* text) {
  const char* from = std::strchr(text, '\\');
  if (from == nullptr) return;
  char* to = text + (from - text);
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
}

// string := "=" '"text"' { '"text"' } ";"
int dparseString(FILE* stream, char* output, size_t size) {
  char internal[DPARSE_TEXT_SIZE];
  if (output == nullptr) size = sizeof internal;
  if (output == nullptr || size == 0) output = internal;
  output[0] = '\0';
  dparse_token token;
  if (dparse_expect_equals(stream) < 1) return -1;
  if (!dparse_take(stream, token, DPARSE_TOKEN_STRING))
    return dparse_fail(HERE, "Quoted string (ie, \"abc\") expected instead of '%s'", token.text);
  if (gather(stream, token, output, size) < 1) return -1;
  unescape(output);
  if (token.number != DPARSE_KEY_SEMICOLON)
    return dparse_fail(HERE, "; expected after parsing string %s,", output);
  return 1;
}

bool dparse_to_number(const char* text, int32_t& number) {
  char* end;
  number = static_cast<int32_t>(static_cast<uint32_t>(std::strtol(text, &end, 10)));
  return end != text;
}

// number := "=" word ";"
int dparse_bare_number(FILE* stream, uint32_t limit, const char* expected, const char* refused,
                       int32_t& number) {
  dparse_token token;
  if (dparse_expect_equals(stream) < 1) return -1;
  if (!dparse_take(stream, token, DPARSE_TOKEN_WORD))
    return dparse_fail(HERE, expected, token.text);
  dparse_to_number(token.text, number);
  if (static_cast<uint32_t>(number) > limit) return dparse_fail(HERE, refused, token.text);
  return dparse_expect_semicolon(stream);
}

int dparseMultivalued(FILE* stream) {
  int32_t number;
  const int read = dparse_bare_number(stream, 1, DPARSE_ZERO_OR_ONE_EXPECTED,
                                      "Invalid value for multivalued '%s'", number);
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
  const bool quoted = dparse_next(stream, token) == DPARSE_TOKEN_STRING;
  const int level = quoted ? quoted_level(token.text) : token.number;
  const dparse_word* word = dparse_word_of_token(DPARSE_ACCESS_LEVELS, level);
  if (word == nullptr) {
    if (quoted && level == DPARSE_KEY_ANY)
      std::strcpy(output, dparse_word_of_token(DPARSE_CREATE_LEVELS, level)->text);
    return dparse_fail(HERE, "Invalid Read/Write Access Level '%s'", token.text);
  }
  std::strcpy(output, word->text);
  return dparse_expect_semicolon(stream) < 1 ? -1 : level;
}
