#include "dm/keywords.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "dd/fold.h"
#include "dd/keywords.h"

namespace dm {

static constexpr bool is_word(const dd_keyword_row& row) {
  return row.text != "{" && row.text != "}" && row.text != "=" && row.text != ";";
}

// Sorted, for the search. The texts are literals, so that each ends with a NUL byte.
static constexpr auto KEYWORDS = [] {
  std::array<const char*, dd_count_keywords(is_word)> words{};
  auto end = words.begin();
  for (const dd_keyword_row& row : DD_KEYWORD_TABLE) {
    if (is_word(row)) *end++ = row.text.data();
  }
  std::ranges::sort(words, [](std::string_view a, std::string_view b) {
    return std::ranges::lexicographical_compare(a, b, {}, dd_fold, dd_fold);
  });
  return words;
}();

// For each first letter the lengths of its keywords, as a set of bits. For most names this shows
// already that they are no keywords.
static constexpr auto LENGTHS = [] {
  std::array<uint32_t, 256> lengths{};
  for (const std::string_view keyword : KEYWORDS) {
    lengths[static_cast<unsigned char>(keyword[0])] |= 1u << keyword.size();
  }
  return lengths;
}();

static bool may_be_keyword(const char* word) {
  const unsigned char first = dd_fold(*word);
  const size_t length = std::strlen(word);
  const bool is_small = first >= 'a' && first <= 'z';
  return is_small && length < 32 && (LENGTHS[first - 'a' + 'A'] >> length & 1) != 0;
}

bool is_keyword(const char* word) {
  if (!may_be_keyword(word)) return false;
  const auto* at =
      std::lower_bound(KEYWORDS.begin(), KEYWORDS.end(), word,
                       [](const char* a, const char* b) { return dd_compare(a, b) < 0; });
  return at != KEYWORDS.end() && dd_equal(*at, word);
}

}  // namespace dm
