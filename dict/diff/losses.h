// What of a deployment's differences is destructive: data that is there would have no place any
// more, or would not fit.
#ifndef DICT_DIFF_LOSSES_H
#define DICT_DIFF_LOSSES_H

#include "dict/diff/diff.h"

namespace dict {

// A LENGTH that becomes shorter.
bool is_loss(const value_change& value);
// An entry that is dropped.
bool is_loss(const difference& d);

// All of them, as "class /device, entry F_LIST/F_NAME, attribute LENGTH".
std::vector<std::string> losses_of(const std::vector<difference>& found);

}  // namespace dict

#endif
