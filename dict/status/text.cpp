// For people.
#include <iostream>

#include "dict/status/status.h"
#include "dict/terminal/visible.h"

namespace dict {

static const char* yes(bool is_so) {
  return is_so ? "yes" : "no";
}

void print_text(const dictionary_status& found) {
  std::cout << "dictionary: " << visible{found.name} << '\n'
            << "schema version: " << found.schema_version << '\n'
            << "writeable: " << yes(found.is_writeable) << '\n'
            << "accepts fields: " << yes(found.accepts_fields) << '\n'
            << "accepts classes: " << yes(found.accepts_classes) << '\n';
  for (const database_status& one : found.databases) {
    std::cout << "database " << one.number << ": " << one.fields << " fields, " << one.classes
              << " classes\n";
  }
  if (found.identity.empty()) return;
  std::cout << "identity: " << visible{found.identity} << '\n'
            << "journal: record " << found.head.number << ", hash " << visible{found.head.hash}
            << '\n';
}

}  // namespace dict
