// Static pages of a dictionary: what they tell, and the folder that they are written to.
#ifndef DICT_SITE_SITE_H
#define DICT_SITE_SITE_H

#include <string>
#include <unordered_map>
#include <vector>

#include "dict/diff/diff.h"
#include "dict/history/history.h"

namespace dict {

// --- What is told --------------------------------------------------------------------------------

// What the journal tells of a field or class. A deployment is told by its number.
struct thing_past {
  std::vector<int64_t> deployments{};  // that changed it, the newest first
  // Of each part (dict/history/blame.h) the deployment that made it so: 0 where the journal no
  // longer tells, negative where it was there when the journal began. One number: of all parts.
  std::vector<int64_t> blame{};
};

// A name that a thing has no more.
struct left_name {
  std::string key;     // dm::thing_key
  std::string now;     // how it is called, folded
  int64_t deployment;  // that called it so
};

// It may have changed definitions; others tell of the journal or the dictionary itself.
bool changes_definitions(const deployment& one);

struct site_past {
  std::vector<left_name> left{};
  std::vector<deployment> deployments{};                 // the newest first
  int64_t begin = 0;                                     // where the journal was pruned: its first
  std::map<int64_t, std::vector<difference>> changes{};  // of the newest
  std::unordered_map<std::string, thing_past> things{};  // by dm::thing_key
};

// One database, or what definition files say.
struct site_source {
  std::string dictionary{};  // its name, without folders; of files theirs
  std::string database{};    // its number; empty for files
  std::string at{};          // as it was asked for; empty: now
  definitions all{};
  bool has_past = false;  // there is a journal
  site_past past{};
};

// What of the database has a past, up to a record, and the definitions as they were then. False
// with the reason.
bool read_past(reading& from, int64_t record, site_source& result, dm::problem& why);

// --- Files ---------------------------------------------------------------------------------------

// The name is seen from the site's folder.
struct site_file {
  std::string name, text;
};

// Appends all files of the site; false with the reason.
bool make_site(const std::string& title, std::vector<site_source>& sources,
               std::vector<site_file>& files, dm::problem& why);

// Replaces the folder, which is new, empty, or one that an earlier call has written, by one with
// these files alone: whoever looks sees either the one or the other. False with the reason; then
// the folder is as it was.
bool replace_folder(const std::string& folder, const std::vector<site_file>& files,
                    dm::problem& why);

}  // namespace dict

#endif
