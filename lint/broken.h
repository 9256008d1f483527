// Definitions that the reader refuses: every mistake in them, and what is sound.
#ifndef LINT_BROKEN_H
#define LINT_BROKEN_H

#include <span>

#include "lint/finding.h"
#include "lint/judge.h"
#include "lint/left_out.h"

namespace lint {

// A mistake where the reader takes a part of a definition by itself.
struct mistake {
  verdict told;
  span where;
};

struct mended {
  std::vector<mistake> mistakes{};  // in their order
  uint64_t untold = 0;              // further ones
  // The definition without what is broken; empty where nothing can be said of it.
  std::string text{};
};

// Has the reader judge each member by itself, so that the work is that of reading once. Of more
// mistakes than can be told all but the number is dropped, and the text.
mended judge_parts(std::span<const source> sources, uint32_t source, uint32_t definition,
                   size_t most, left_out& missing);

}  // namespace lint

#endif
