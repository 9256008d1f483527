// What formatting changes, as a unified diff.
#ifndef DICT_FORMAT_UNIFIED_H
#define DICT_FORMAT_UNIFIED_H

#include <string>
#include <string_view>

namespace dict {

// Both texts are the same but for blanks and line ends, which tells at once what belongs together.
// Empty where they are the same.
std::string unified_diff(std::string_view name, std::string_view before, std::string_view after);

}  // namespace dict

#endif
