// A finding of the import as lint tells it.
#ifndef LINT_SENTENCE_H
#define LINT_SENTENCE_H

#include "deploy/import/import.h"
#include "lint/sentences.h"
#include "lint/subjects.h"

namespace lint {

// Of no level where nothing comes of it. `repeat`: of entries that have the same name the n-th
// behind the first.
finding finding_of(subject_finder& in, deploy::import_state& state, const sentence_row& row,
                   const deploy::subject& about, size_t repeat);

}  // namespace lint

#endif
