// Whether lint and the tool say the same of definition files.
#ifndef TESTS_VERDICT_VERDICT_H
#define TESTS_VERDICT_VERDICT_H

#include <string>
#include <vector>

#include "tests/tool/workshop.h"

enum class agreement { SAME, DIFFERENT, COMMITTED };

// In a process of its own, lints the files of the workshop (none: the file `input` as standard
// input) against its dictionary and has the tool replace them; `difference` says where they do not
// agree. COMMITTED: they do, and the dictionary holds the files now.
agreement compare(const workshop& in, const std::vector<std::string>& files,
                  const std::string& input, std::string& difference);

// In what plan, diff and replace of the files do not agree, and apply with replace; "" for nothing.
// The dictionary must be saved; it is as it was afterwards, unless they disagree.
std::string compare_plan(const workshop& in, const std::vector<std::string>& files,
                         const std::string& input);

#endif
