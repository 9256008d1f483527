// Entries that a brace too many put behind the class that they were meant for.
#ifndef LINT_STRAYS_H
#define LINT_STRAYS_H

#include <vector>

#include "lint/index.h"

namespace lint {

// The definition of a field without a number, between a class and a brace that closes nothing; such
// ones alone stand between them.
struct stray_entry {
  uint32_t definition;
  uint32_t meant_for;  // the definition of the class
};

// Of a source, in their order. Of the index only the sources are asked.
std::vector<stray_entry> strays_in(const index& in, uint32_t source);
// The one that the definition is, or null.
const stray_entry* find_stray(const std::vector<stray_entry>& strays, uint32_t definition);

}  // namespace lint

#endif
