// The keywords of the definition language: no field can have such a name.
#ifndef DM_KEYWORDS_H
#define DM_KEYWORDS_H

namespace dm {

// Whether the word is a keyword, without regard to ASCII case.
bool is_keyword(const char* word);

}  // namespace dm

#endif
