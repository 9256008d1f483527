// Where the things stand that the import's findings are about.
#ifndef LINT_SUBJECTS_H
#define LINT_SUBJECTS_H

#include <optional>

#include "dd/list.h"
#include "deploy/report.h"
#include "lint/entries.h"

namespace lint {

struct subject_finder {
  const index& all;
  entry_finder interfaces;
  entry_finder implementations;
  // Of the dictionary: the node whose entries were asked for last.
  tav_flist_t* held_node = nullptr;
  dd_list held_entries{DD_ENTRIES};

  explicit subject_finder(const index& in) : all(in), interfaces(in), implementations(in) {}
};

// The field definition, class or entry; none where it is not in the sources. On the subject's side
// of the class, or on the other where that has none; of entries that have the same name the n-th
// behind the first.
std::optional<node_place> find(subject_finder& in, const deploy::subject& about, size_t n = 0);
// The same on one side only.
std::optional<node_place> find_on(subject_finder& in, const deploy::subject& about,
                                  deploy::definition_side side, size_t n = 0);

// The names down to the entry; none where they are too many: entries may be nested ten thousand
// levels deep, each a finding, and then the entry's own name has to do.
std::vector<std::string_view> path_to(const deploy::subject& about);

// In words that stay when lines move.
std::string words_of(const deploy::subject& about);

}  // namespace lint

#endif
