// Word lists: the keywords that an attribute's value may be, and the text that each is stored as.
#ifndef DPARSE_WORDS_H
#define DPARSE_WORDS_H

#include "dd/system_permission.h"
#include "dparse/tokens.h"

namespace dparse {

struct value_word {
  int token;
  const char* text;
};

// Each list ends with a row {0, null}.
inline constexpr value_word ACCESS_LEVELS[] = {
    {DPARSE_KEY_SELF, "Self"},     {DPARSE_KEY_BRANDLINEAGE, "BrandLineage"},
    {DPARSE_KEY_BRAND, "Brand"},   {DPARSE_KEY_ANCESTRALLINEAGE, "AncestralLineage"},
    {DPARSE_KEY_GLOBAL, "Global"}, {0, nullptr}};

inline constexpr value_word CREATE_LEVELS[] = {{DPARSE_KEY_ROOT, "Root"},
                                               {DPARSE_KEY_ANY, "Any"},
                                               {DPARSE_KEY_BRANDOWNER, "BrandOwner"},
                                               {0, nullptr}};

inline constexpr value_word PARTITION_MODES[] = {
    {DPARSE_KEY_FINITE, "Finite"}, {DPARSE_KEY_HISTORIC, "Historic"}, {0, nullptr}};

inline constexpr value_word AUDIT_SCHEMES[] = {
    {DPARSE_KEY_COMPACTED, "COMPACTED"}, {DPARSE_KEY_EXPANDED, "EXPANDED"}, {0, nullptr}};

inline constexpr value_word CREATE_PERMISSIONS[] = {{DPARSE_KEY_REQUIRED, "Required"},
                                                    {DPARSE_KEY_OPTIONAL, "Optional"},
                                                    {DPARSE_KEY_PROHIBITED, "Prohibited"},
                                                    {DPARSE_KEY_SYSTEM, DD_SYSTEM},
                                                    {0, nullptr}};

inline constexpr value_word MODIFY_PERMISSIONS[] = {{DPARSE_KEY_SYSTEM, DD_SYSTEM},
                                                    {DPARSE_KEY_WRITEABLE, "Writeable"},
                                                    {DPARSE_KEY_WRITABLE, "Writeable"},
                                                    {DPARSE_KEY_NOT_WRITEABLE, "Not_Writeable"},
                                                    {DPARSE_KEY_NOT_WRITABLE, "Not_Writeable"},
                                                    {0, nullptr}};

inline constexpr value_word YES_OR_NO[] = {
    {DPARSE_KEY_YES, "YES"}, {DPARSE_KEY_NO, "NO"}, {0, nullptr}};

// The first row of the list that fits, or null.
template <class Fits>
const value_word* find_word(const value_word* words, Fits fits) {
  for (; words->text != nullptr; ++words)
    if (fits(*words)) return words;
  return nullptr;
}

inline const value_word* word_of_token(const value_word* words, int token) {
  return find_word(words, [token](const value_word& word) { return word.token == token; });
}

}  // namespace dparse

#endif
