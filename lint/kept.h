// What a replace keeps: what the dictionary has, what the files say, and what to do.
#ifndef LINT_KEPT_H
#define LINT_KEPT_H

#include "deploy/import/import.h"
#include "lint/lint.h"
#include "lint/subjects.h"

namespace lint {

// Of the finding with that id about a class or an entry: the names or the clause, as SQL_TABLE and
// the like write them, or "none".
std::string held_storage(subject_finder& in, deploy::import_state& state,
                         const deploy::subject& about, std::string_view id);
std::string own_storage(subject_finder& in, const deploy::subject& about, std::string_view id);

// `held` and `own` as these two give them.
std::string storage_remedy(const deploy::subject& about, const std::string& held,
                           const std::string& own);

// Whether nothing comes of the finding, which the import tells of each field and class that is
// there: the field's description is none, or the dictionary's own; the class stays as it is.
bool changes_nothing(deploy::import_state& state, const world& against,
                     const deploy::subject& about, std::string_view id);

}  // namespace lint

#endif
