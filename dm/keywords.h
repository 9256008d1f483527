// The words that the definition language keeps for itself: no field can have such a name.
#ifndef DM_KEYWORDS_H
#define DM_KEYWORDS_H

namespace dm {

// Compared without regard to ASCII case.
bool is_keyword(const char* word);

}  // namespace dm

#endif
