// Database numbers as people write them: four 16-bit groups, N.N.N.N.
#ifndef DD_DATABASE_NUMBER_H
#define DD_DATABASE_NUMBER_H

#include <cstdint>
#include <string>
#include <string_view>

std::string dd_database_text(uint64_t number);

// Reads such a text: nothing but digits and points, each group at most 65535. False for any other
// text; the number is then unchanged. (The tool's option -d takes more than that, and is read in
// deploy/arguments.cpp.)
bool dd_read_database(std::string_view text, uint64_t& number);

#endif
