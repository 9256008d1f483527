// Which numbers fields of administrators have.
#ifndef DICT_NEXT_ID_H
#define DICT_NEXT_ID_H

#include <cstdint>

namespace dict {

// Below it numbers are left to predefined fields; those of today end at 1908.
inline constexpr int32_t FIRST_OF_ADMINISTRATORS = 10000;

}  // namespace dict

#endif
