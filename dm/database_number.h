// Database numbers as people write them: four 16-bit groups, N.N.N.N.
#ifndef DM_DATABASE_NUMBER_H
#define DM_DATABASE_NUMBER_H

#include <cstdint>
#include <string>

#include "dm/problem.h"

namespace dm {

std::string database_text(uint64_t number);

// Reads such a text whole; false when it is none.
bool database_of_text(const char* text, uint64_t& number);

// Why a database whose counter cannot be raised is not used.
problem damaged_counter(uint64_t number);

}  // namespace dm

#endif
