// What definition files are checked against: a dictionary, or an export of one.
#ifndef DICT_LINT_AGAINST_H
#define DICT_LINT_AGAINST_H

#include <string>

#include "dict/definitions.h"
#include "lint/lint.h"

namespace dict {

struct against {
  definitions held{};
};

// Reads what the text names: "." the dictionary of tav.conf, a file of definitions, or another
// dictionary as tav.conf would name it. The database is the chosen one, or the login's. One
// snapshot, no lock, no write. False with the reason.
bool read_against(const std::string& named, const std::string& database, against& to,
                  dm::problem& why);

// Borrows what it is checked against, and asks the data manager's rules.
lint::world world_of(against& held);

}  // namespace dict

#endif
