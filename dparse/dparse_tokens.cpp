#include "dparse/dparse_tokens.h"

#include <array>
#include <cstring>

#include "dd/fold.h"
#include "dd/types.h"

#define DPARSE_TABLE_ROW(name, text, number) {number, text},
constexpr dparse_token_row token_table[] = {DPARSE_KEYWORDS(DPARSE_TABLE_ROW){0, nullptr}};
#undef DPARSE_TABLE_ROW

namespace {

constexpr size_t KEYWORDS = sizeof token_table / sizeof token_table[0] - 1;
static_assert(KEYWORDS == 79);

// The texts by token number.
struct keyword_texts {
  std::string_view of[DPARSE_TOKEN_NUMBERS];

  constexpr keyword_texts() {
    for (size_t i = 0; i < KEYWORDS; ++i)
      of[static_cast<size_t>(token_table[i].number)] = token_table[i].text;
  }
};
constexpr keyword_texts TEXTS;

// The type codes by token number.
constexpr auto TYPE_CODES = [] {
  std::array<int32_t, DPARSE_TOKEN_NUMBERS> codes{};
  for (size_t i = 0; i < codes.size(); ++i) {
#define DPARSE_TYPE_ROW(name, code, keyword) \
  if (TEXTS.of[i] == (keyword)) codes[i] = code;
    DD_TYPES(DPARSE_TYPE_ROW)
#undef DPARSE_TYPE_ROW
  }
  return codes;
}();

// A letter in either case gives the same number; what else coincides the comparison tells apart.
constexpr size_t letter(char c) {
  return static_cast<unsigned char>(c) | 0x20u;
}

constexpr size_t LONGEST = [] {
  size_t longest = 0;
  for (const std::string_view text : TEXTS.of)
    longest = text.size() > longest ? text.size() : longest;
  return longest;
}();

constexpr size_t SLOTS = 256;

constexpr size_t first_slot(const char* word, size_t length) {
  return (letter(word[0]) * 7 + letter(word[length / 2]) * 31 + letter(word[length - 1]) * 3 +
          length * 11) %
         SLOTS;
}

// Open addressing: row of token_table plus one, 0 for free. Filled in stored order and searched
// from the same first slot, so the first of equal texts is found.
constexpr auto SLOT_ROWS = [] {
  std::array<unsigned char, SLOTS> rows{};
  for (size_t i = 0; i < KEYWORDS; ++i) {
    const std::string_view text = token_table[i].text;
    size_t slot = first_slot(text.data(), text.size());
    while (rows[slot] != 0) slot = (slot + 1) % SLOTS;
    rows[slot] = static_cast<unsigned char>(i + 1);
  }
  return rows;
}();

bool equals(std::string_view keyword, const char* word, size_t length) {
  if (keyword.size() != length) return false;
  if (std::memcmp(keyword.data(), word, length) == 0) return true;  // mostly written so
  for (size_t i = 0; i < length; ++i)
    if (keyword[i] != word[i] && dd_fold(keyword[i]) != dd_fold(word[i])) return false;
  return true;
}

}  // namespace

int dparse_keyword(const char* word, size_t length) {
  if (length == 0 || length > LONGEST) return DPARSE_TOKEN_WORD;
  for (size_t slot = first_slot(word, length); SLOT_ROWS[slot] != 0; slot = (slot + 1) % SLOTS) {
    const int number = token_table[SLOT_ROWS[slot] - 1u].number;
    if (equals(TEXTS.of[static_cast<size_t>(number)], word, length)) return number;
  }
  return DPARSE_TOKEN_WORD;
}

std::string_view dparse_keyword_text(int token) {
  return token >= 0 && token < DPARSE_TOKEN_NUMBERS ? TEXTS.of[static_cast<size_t>(token)] : "";
}

int32_t dparse_type_code(int token) {
  return token >= 0 && token < DPARSE_TOKEN_NUMBERS ? TYPE_CODES[static_cast<size_t>(token)]
                                                    : TAV_FLDT_UNUSED;
}
