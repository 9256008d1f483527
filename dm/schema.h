// The version of the tables, and sentences that all engines use.
#ifndef DM_SCHEMA_H
#define DM_SCHEMA_H

#include <string>

#include "dm/problem.h"

namespace dm {

// Raised with every change of the tables of any engine.
inline constexpr int SCHEMA_VERSION = 2;

// The first version with a journal. Dictionaries without can be read only.
inline constexpr int JOURNAL_VERSION = 2;

// Parts of sentences for the administrator.
inline constexpr char ANOTHER_WRITES[] =
    "another process is writing to it; try again when it has ended";
inline constexpr char BREAKS_RULES[] =
    "it holds what breaks its own rules; find it with 'tav_dict check'";
inline constexpr char IS_INCOMPLETE[] =
    "it does not hold what a dictionary holds; restore it from a backup";
inline constexpr char ROWS_SWALLOWED[] =
    "it did not take all changes (a trigger, a rule or row security keeps some away), and nothing "
    "is stored; find what does with 'tav_dict check'";

// The problem of a commit that may or may not have been carried out: `event` is what happened
// meanwhile, `advice` what to do, `words` the cause as the engine tells it. Gives false.
inline bool outcome_unknown(std::string_view dictionary, std::string_view event,
                            std::string_view advice, std::string_view words, problem& why) {
  why.is_unreachable = true;
  why.code = TAV_ERR_NOT_CONNECTED;
  why.sentence = join({"Dictionary ", quoted(dictionary), ": ", event,
                       ": whether they are stored is UNKNOWN; ", advice, " (", words, ")."});
  return false;
}

inline std::string orphan(std::string_view table, std::string_view parent) {
  return join({"A row of ", table, " names a row of ", parent, " that is not there."});
}

inline std::string other_version(int version) {
  return join({" has schema version ", std::to_string(version),
               ", this program reads versions 1 to ", std::to_string(SCHEMA_VERSION),
               "; use the program that it was made with, or export and deploy it anew."});
}

inline bool is_known_version(int version) {
  return version >= 1 && version <= SCHEMA_VERSION;
}

// The problem of writing into a dictionary of an older version. Gives false.
inline bool needs_upgrade(std::string_view dictionary, int version, problem& why) {
  why.code = TAV_ERR_WRITE_REFUSED;
  why.sentence =
      join({"Dictionary ", quoted(dictionary), " has schema version ", std::to_string(version),
            " and takes no changes; 'tav_dict upgrade' makes it version ",
            std::to_string(SCHEMA_VERSION), "."});
  return false;
}

}  // namespace dm

#endif
