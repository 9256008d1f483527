// What the containers of this program hold, in bytes. (The operators stand in a source of their
// own, because compilers that see into them take malloc and delete for a mismatch.)
#ifndef TESTS_LINT_MEMORY_H
#define TESTS_LINT_MEMORY_H

#include <cstddef>

extern size_t live;
extern size_t most_live;  // at most since it was last set
extern size_t failing;    // the one of the next allocations that fails; 0: none

#endif
