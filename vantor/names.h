// The names of fields as records show them.
#ifndef VANTOR_NAMES_H
#define VANTOR_NAMES_H

#include <cstddef>
#include <cstdint>

namespace vantor {

// The symbolic name of a known field identifier, or null.
const char* known_field(uint32_t field);

// Writes the type keyword and the number of any identifier ("INT 12").
void write_field(uint32_t field, char* buffer, size_t size);

}  // namespace vantor

#endif
