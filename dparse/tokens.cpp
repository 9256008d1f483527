#include "dparse/tokens.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#include "dd/types.h"

#define DPARSE_TABLE_ROW(name, text, number) {number, text},
constexpr dparse::token_row token_table[] = {DD_KEYWORDS(DPARSE_TABLE_ROW){0, nullptr}};
#undef DPARSE_TABLE_ROW

namespace dparse {

namespace {

constexpr size_t KEYWORDS = sizeof token_table / sizeof token_table[0] - 1;

constexpr int TOKENS_WITHOUT_KEYWORD[] = {DPARSE_TOKEN_EMPTY, DPARSE_TOKEN_WORD, DPARSE_TOKEN_EOF,
                                          DPARSE_TOKEN_BAD_STRING, DPARSE_TOKEN_STRING};

// The texts by token number.
struct texts_by_number {
  std::string_view by_token[TOKEN_NUMBERS];

  constexpr texts_by_number() {
    for (size_t i = 0; i < KEYWORDS; ++i)
      by_token[static_cast<size_t>(token_table[i].number)] = token_table[i].text;
  }
};
constexpr texts_by_number TEXTS;
static_assert(std::ranges::none_of(TOKENS_WITHOUT_KEYWORD,
                                   [](int token) {
                                     return !TEXTS.by_token[static_cast<size_t>(token)].empty();
                                   }),
              "a keyword has the number of a token that has none");
static_assert(TOKEN_NUMBERS <= 256, "a token's number no longer fits a byte");

// The type codes by token number.
constexpr auto TYPE_CODES = [] {
  std::array<int32_t, TOKEN_NUMBERS> codes{};
  for (size_t i = 0; i < codes.size(); ++i) {
#define DPARSE_TYPE_ROW(name, code, keyword) \
  if (TEXTS.by_token[i] == (keyword)) codes[i] = code;
    DD_TYPES(DPARSE_TYPE_ROW)
#undef DPARSE_TYPE_ROW
  }
  return codes;
}();

constexpr size_t LONGEST = [] {
  size_t longest = 0;
  for (const std::string_view text : TEXTS.by_token)
    longest = text.size() > longest ? text.size() : longest;
  return longest;
}();
static_assert(LONGEST < KEYWORD_SIZE);

// What tells keywords apart: the length and three letters, each the same number in either case.
constexpr uint32_t marks(const char* word, size_t length) {
  const auto byte = [word](size_t i) { return uint32_t{static_cast<unsigned char>(word[i])}; };
  return (byte(0) | byte((length - 1) / 2) << 8 | byte(length - 1) << 16 |
          static_cast<uint32_t>(length) << 24) |
         0x202020u;
}

constexpr unsigned SLOT_BITS = 10;
constexpr size_t SLOTS = 1 << SLOT_BITS;

constexpr size_t slot_of(uint32_t marks, uint32_t multiplier) {
  return marks * multiplier >> (32 - SLOT_BITS);
}

constexpr bool separates(uint32_t multiplier) {
  std::array<bool, SLOTS> taken{};
  for (size_t i = 0; i < KEYWORDS; ++i) {
    const std::string_view text = token_table[i].text;
    bool& slot = taken[slot_of(marks(text.data(), text.size()), multiplier)];
    if (slot) return false;
    slot = true;
  }
  return true;
}

// Under this one no two keywords share a slot: a word is compared with one keyword at most.
constexpr uint32_t MULTIPLIER = [] {
  uint32_t multiplier = 1;
  for (int tries = 0; tries < 1000 && !separates(multiplier); ++tries) multiplier += 0x9e3779b2u;
  return multiplier;
}();
static_assert(separates(MULTIPLIER), "two keywords have the same marks: take in another letter");

// Token numbers, 0 (which has no text) for free.
constexpr auto NUMBERS = [] {
  std::array<unsigned char, SLOTS> numbers{};
  for (size_t i = 0; i < KEYWORDS; ++i) {
    const std::string_view text = token_table[i].text;
    numbers[slot_of(marks(text.data(), text.size()), MULTIPLIER)] =
        static_cast<unsigned char>(token_table[i].number);
  }
  return numbers;
}();

// The bytes of a keyword and its terminator as words, and the bits of them that count: of a letter
// all but its case, of what follows the terminator none.
struct pattern {
  static constexpr size_t WORDS = KEYWORD_SIZE / sizeof(uint64_t);
  std::array<uint64_t, WORDS> text{};
  std::array<uint64_t, WORDS> counts{};
};

constexpr pattern pattern_of(std::string_view keyword) {
  std::array<char, KEYWORD_SIZE> text{};
  std::array<unsigned char, KEYWORD_SIZE> counts{};
  for (size_t i = 0; i < keyword.size(); ++i) {
    text[i] = keyword[i];
    counts[i] = keyword[i] >= 'A' && keyword[i] <= 'Z' ? 0xdf : 0xff;
  }
  counts[keyword.size()] = 0xff;
  return {std::bit_cast<decltype(pattern::text)>(text),
          std::bit_cast<decltype(pattern::counts)>(counts)};
}

// By token number.
constexpr auto PATTERNS = [] {
  std::array<pattern, TOKEN_NUMBERS> patterns{};
  for (size_t i = 0; i < patterns.size(); ++i) patterns[i] = pattern_of(TEXTS.by_token[i]);
  return patterns;
}();

bool fits(const pattern& keyword, const char* padded) {
  for (size_t i = 0; i < pattern::WORDS; ++i) {
    uint64_t text;
    std::memcpy(&text, padded + i * sizeof text, sizeof text);
    if (((text ^ keyword.text[i]) & keyword.counts[i]) != 0) return false;
  }
  return true;
}

}  // namespace

int padded_keyword_number(const char* word, size_t length) {
  const size_t number = NUMBERS[slot_of(marks(word, length), MULTIPLIER)];
  return fits(PATTERNS[number], word) ? static_cast<int>(number) : DPARSE_TOKEN_WORD;
}

int keyword_number(const char* word, size_t length) {
  char padded[KEYWORD_SIZE] = "";
  if (length == 0 || length > LONGEST) return DPARSE_TOKEN_WORD;
  std::memcpy(padded, word, length);
  return padded_keyword_number(padded, length);
}

std::string_view keyword_text(int token) {
  return token >= 0 && token < TOKEN_NUMBERS ? TEXTS.by_token[static_cast<size_t>(token)] : "";
}

int32_t type_code_of(int token) {
  return token >= 0 && token < TOKEN_NUMBERS ? TYPE_CODES[static_cast<size_t>(token)]
                                             : TAV_FLDT_UNUSED;
}

}  // namespace dparse
