// The memory of the tests in this folder: counted, and made to fail.
#ifndef TESTS_DEPLOY_MEMORY_H
#define TESTS_DEPLOY_MEMORY_H

#include <cstddef>

extern long until_no_memory;  // allocations up to the one that fails; 0: none does
extern long allocations;
extern size_t allocated;  // bytes

#endif
