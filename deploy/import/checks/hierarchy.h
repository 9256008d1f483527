// The working classes along their hierarchy, and the check that finds names of arrays and
// substructs used twice along it.
#ifndef DEPLOY_IMPORT_CHECKS_HIERARCHY_H
#define DEPLOY_IMPORT_CHECKS_HIERARCHY_H

#include <deque>
#include <string>
#include <vector>

#include "deploy/import/entries.h"

namespace deploy {

struct placed_class {
  std::string key;  // the name with '\0' for '/', so that all below a class stand behind it
  size_t position;  // in the working list
  size_t above;     // the place of the class right above it, or of one of the same name; or none
};

// Borrows the classes. Built at the first class that has an array or substruct.
struct class_hierarchy {
  dd_list& working_classes;
  std::deque<dd_list> entries;        // each class's, in the working list's order
  std::vector<placed_class> classes;  // ascending, byte by byte
};

}  // namespace deploy

#endif
