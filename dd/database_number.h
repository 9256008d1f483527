// Database numbers as people write them: four 16-bit groups, N.N.N.N.
#ifndef DD_DATABASE_NUMBER_H
#define DD_DATABASE_NUMBER_H

#include <cstdint>
#include <string>
#include <string_view>

std::string dd_database_text(uint64_t number);

// Reads such a text whole: digits only, each group up to 65535. False when it is none, and the
// number is as it was. (The tool's option -d takes more than that.)
bool dd_read_database(std::string_view text, uint64_t& number);

#endif
