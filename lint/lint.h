// Everything that is wrong with definition files, and where, in one run.
//
// A run prints and logs nothing and leaves nothing behind: there may be any number of them in one
// process, one at a time. The reader's and the import's process-wide states are reset.
#ifndef LINT_LINT_H
#define LINT_LINT_H

#include <functional>
#include <string>
#include <vector>

#include "dd/vantor.h"
#include "lint/finding.h"
#include "lint/index.h"

namespace lint {

// What a dictionary refuses. Without a class it is about a field.
struct refusal {
  std::string class_name{};
  std::string field{};                // a field definition, or the innermost entry of the class
  std::vector<std::string> around{};  // the entries that the entry stands in, from the outermost
  std::string attribute{};            // its keyword, where the value is to blame
  std::string sentence{};
  // The import has a check for it: it is not told where that told an error of the same thing.
  bool is_checked_before = false;
};

// What a replace would send, in that order; borrowed.
struct deployment {
  tav_flist_t* fields;
  std::vector<tav_flist_t*> classes;
};

// What the files are checked against, besides themselves.
struct world {
  // What a dictionary holds, as the data manager hands it out; borrowed. Without fields it is a
  // new one: the predefined fields and no class.
  tav_flist_t* fields = nullptr;
  tav_flist_t* classes = nullptr;
  // Asks the data manager what it would refuse. May be empty.
  std::function<std::vector<refusal>(const deployment& sent)> refuse{};
  // Whether a replace of the dictionary's class by the other one would change nothing. May be
  // empty.
  std::function<bool(tav_flist_t* held, tav_flist_t* sent)> stays{};
  // The process ends soon: lists are left to its end, which frees them faster.
  bool ends_soon = false;
  // Whether a rule is switched off. May be empty.
  std::function<bool(std::string_view rule)> is_off{};
  // Lint's own rules, of which at most so many findings can be told. May be empty.
  std::function<std::vector<finding>(const index& all, size_t most)> own{};
};

// So many findings are told; others are counted. Of those that are switched off as many are kept,
// because others are not told beside them.
inline constexpr size_t MOST_TOLD = 20'000;

struct result {
  std::vector<finding> told;                            // in the order of sources and places
  uint64_t untold[4] = {};                              // for each level
  size_t off = 0;                                       // so many of the told ones are switched off
  std::function<bool(std::string_view rule)> is_off{};  // as in `world`, during the run
};

result lint(const std::vector<source>& sources, const world& against);

}  // namespace lint

#endif
