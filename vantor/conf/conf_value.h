// The values of tav.conf's entries.
#ifndef VANTOR_CONF_CONF_VALUE_H
#define VANTOR_CONF_CONF_VALUE_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "dd/vantor.h"

namespace vantor {

// A copy of the bytes from malloc. Throws std::bad_alloc.
void* heap_copy(const void* bytes, size_t size);

// A whole number and nothing else; false for any other text.
bool number_from(const std::string& text, int32_t& number);

// The object id written as "DATABASE TYPE ID", the database as four numbers up to 65535 with dots
// between them; owned, null for any other text. Throws std::bad_alloc.
tav_poid_t* poid_from(const std::string& text);

}  // namespace vantor

#endif
