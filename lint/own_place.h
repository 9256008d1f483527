// Where a mistake is that the reader tells, which mostly notices it a token later.
#ifndef LINT_OWN_PLACE_H
#define LINT_OWN_PLACE_H

#include <span>

#include "dparse/read/messages.h"
#include "lint/finding.h"

namespace lint {

// `taken`: the end of the last token that the reader took; `ended`: what it missed is behind that.
span own_place(std::span<const source> sources, uint32_t source, dparse::message told,
               uint64_t taken, bool ended);

}  // namespace lint

#endif
