// The fields that the classes of a dictionary use.
#ifndef DICT_LINT_USED_H
#define DICT_LINT_USED_H

#include <set>
#include <string>

#include "dd/vantor.h"

namespace dict {

// Their names, folded (dm/folded.h).
std::set<std::string> used_fields(tav_flist_t* classes);

}  // namespace dict

#endif
