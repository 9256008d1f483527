// What the data manager would refuse of a deployment, all that it finds.
#ifndef DICT_LINT_REFUSALS_H
#define DICT_LINT_REFUSALS_H

#include <vector>

#include "lint/lint.h"

namespace dict {

// Asks its rules (dm/rules/) about fields and classes, in the order in which they would be sent, to
// a dictionary that holds these.
std::vector<lint::refusal> refusals_of(const tav_flist_t* held_fields,
                                       const tav_flist_t* held_classes,
                                       const lint::deployment& sent);

// Whether a replace of the class that is held by the other one would change nothing.
bool leaves_as_it_is(tav_flist_t* held, tav_flist_t* sent);

}  // namespace dict

#endif
