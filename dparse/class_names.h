// Names of classes, as reader and writer tell base classes from others.
#ifndef DPARSE_CLASS_NAMES_H
#define DPARSE_CLASS_NAMES_H

#include "dd/class_names.h"

// Whether the name holds no "/" after its first character; a null or empty one is no class.
inline bool dparseIsTopLevelClass(const char* class_name) {
  return class_name != nullptr && *class_name != '\0' && !dd_is_subclass(class_name);
}

#endif
