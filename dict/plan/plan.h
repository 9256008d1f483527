// Plans: what deploying definition files would do, made in one snapshot, kept in a file, and
// carried out later exactly or not at all.
//
// A plan holds the definitions of the fields and classes that change, and digests (SHA-256) of the
// states, as the journal has them, of everything that they touch or depend on. docs/planning.md
// describes the file.
#ifndef DICT_PLAN_PLAN_H
#define DICT_PLAN_PLAN_H

#include <map>
#include <string>
#include <vector>

#include "dict/definitions.h"
#include "dict/diff/diff.h"
#include "dict/terminal/json.h"
#include "dm/ops/deployment.h"
#include "lint/outcome.h"

namespace dict {

// --- One snapshot --------------------------------------------------------------------------------

// A database of the dictionary, and where its journal stands.
struct snapshot {
  dm::session session{};
  dm::database_row database{};
  std::string identity{};  // "" where the dictionary has no journal, as `head`
  dm::journal_head head{};
  definitions held{};
};

// Opens the dictionary and begins to read the database; the definitions are not fetched yet. False
// with the reason.
bool open_snapshot(snapshot& on, dm::problem& why);
// The same where the session has its settings and its store already.
bool begin_snapshot(snapshot& on, dm::problem& why);
bool choose_database(uint64_t number, snapshot& on, dm::problem& why);
bool fetch_held(snapshot& on, dm::problem& why);

// --- What files would do -------------------------------------------------------------------------

struct judged {
  std::vector<lint::outcome> errors{};  // lint's, sorted by place
  uint64_t untold = 0;                  // further ones
  bool is_readable = true;              // there is none of syntax
  dm::problem refusal{};                // the data manager's, where no error tells it
  definitions sent{};                   // what `replace` would send, in that order
  dm::deployment_result result{};       // what becomes of it, where nothing is refused
};

bool is_refused(const judged& files);
dm::deployment_lists lists_of(const judged& files, uint64_t database);

// Lets lint and the data manager judge the sources in the snapshot. Locks and writes nothing.
void judge(snapshot& on, const std::vector<lint::source>& sources, judged& result);

// Asks the data manager alone what becomes of the lists. False with its refusal.
bool try_lists(snapshot& on, judged& files, dm::problem& why);

// --- Plans ---------------------------------------------------------------------------------------

using digests = std::map<std::string, std::string>;  // by name; ABSENT: it must not be there
inline constexpr char ABSENT[] = "absent";

// The fields and classes of a plan, by their names.
struct digests_of_things {
  digests fields{};
  digests classes{};
};

struct plan {
  // The dictionary.
  std::string name{};
  std::string identity{};
  uint64_t database = 0;
  int64_t record = 0;  // the last of the journal, and its hash
  std::string hash{};
  // For its readers.
  std::string time{};
  std::string user{};
  std::vector<std::string> changes{};
  std::vector<std::string> losses{};
  // What is to be deployed.
  std::string definitions{};
  digests_of_things results{};
  // What was looked at.
  digests_of_things known{};
  digests numbers{};
  digests tables{};
  std::vector<std::string> complete{};  // classes that may have no other subclasses than known
  std::string digest{};                 // of the file
};

// The definitions of what changes, as exports lay them out.
std::string changed_definitions(const std::vector<lint::source>& sources, const judged& files);

// Reads them again, in the order in which those of the files are sent. False where they cannot be.
bool read_again(const std::string& text, const judged& files, definitions& result);

// Makes the plan; false with the reason.
bool make_plan(snapshot& on, const std::vector<lint::source>& sources, const judged& files,
               plan& made, dm::problem& why);

digests_of_things results_of(const dm::deployment_result& result);

// --- Files ---------------------------------------------------------------------------------------

std::string file_of(const plan& made);
// False with the reason, which calls the file what it is named.
bool read_plan(const std::string& file, plan& result, dm::problem& why);
// Whether a plan may be written there: to a new file, or over a plan that nobody has changed. False
// with the reason.
bool takes_plan(const std::string& file, dm::problem& why);

// --- Telling -------------------------------------------------------------------------------------

struct told_plan {
  const std::vector<lint::source>& sources;
  const judged& files;
  // The differences, as `diff` finds them; of definitions that cannot be read, none.
  std::vector<difference> found{};
  // What is stored anew though `diff` finds no difference: the order of entries, the case of
  // letters, or what exports do not show. Of refused files nobody knows.
  std::vector<std::string> rewritten{};
  std::vector<std::string> losses{};
  std::string database{};  // where it is not the login's
};

// Judges the sources, and finds out what there is to tell. False with the reason.
bool judge_and_tell(snapshot& on, judged& files, told_plan& told, dm::problem& why);

// All that changes, a line each.
std::string lines_of(const told_plan& told, bool coloured);
// "1 field to add, 2 classes to change, 1 destructive."; "" where there is nothing to do.
std::string sum_of(const told_plan& told);
std::string as_text(const told_plan& told, bool coloured);
std::string as_json(const told_plan& told);
// Its members but the first, in the open object.
void put_told(json_writer& out, const told_plan& told);

}  // namespace dict

#endif
