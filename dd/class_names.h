// Names of classes: paths that begin with a slash and name the superclasses on the way.
#ifndef DD_CLASS_NAMES_H
#define DD_CLASS_NAMES_H

#include <cstring>
#include <string_view>

// Whether the name has a slash behind its first character; an empty one names no class.
inline bool dd_is_subclass(const char* class_name) {
  return *class_name != '\0' && std::strchr(class_name + 1, '/') != nullptr;
}

// Behind a name in a request: the class and all below it.
inline constexpr std::string_view DD_AND_BELOW = "/*";

inline bool dd_asks_for_below(std::string_view name) {
  return name.ends_with(DD_AND_BELOW);
}

#endif
