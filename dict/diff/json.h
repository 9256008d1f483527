#ifndef DICT_DIFF_JSON_H
#define DICT_DIFF_JSON_H

#include "dict/diff/diff.h"
#include "dict/terminal/json.h"

namespace dict {

// The members "same", "new", "changed", "missing" and "differences", in the open object.
void put_differences(json_writer& out, const std::vector<difference>& found);
// The same of what is refused, which is never "same"; nullptr where nothing could be compared.
void put_refused_differences(json_writer& out, const std::vector<difference>* found);

}  // namespace dict

#endif
