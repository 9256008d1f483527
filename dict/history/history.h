// What the journal tells of the past: deployments, and the dictionary as it was after one.
//
// A deployment is a run of a program: its records, one to three as a rule. It is named by the
// number of the first; any other of its records names it, too.
#ifndef DICT_HISTORY_HISTORY_H
#define DICT_HISTORY_HISTORY_H

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "dict/definitions.h"
#include "dict/reading.h"
#include "dm/journal/read.h"

namespace dict {

// --- Opening ---------------------------------------------------------------------------------

// Refuses a dictionary that has no journal: of an older schema version.
bool must_have_journal(dm::store& store, dm::problem& why);
// Begins a snapshot of a dictionary that has a journal; false with the reason.
bool begin_history(reading& from, dm::problem& why);
// The same with a database chosen, as begin_reading does.
bool begin_history(const std::string& database, reading& from, dm::problem& why);

// The row id of a database that is told of by the journal alone, because it was deleted: the store
// holds nothing of it.
inline constexpr int64_t DELETED_DATABASE = -1;
// The same for looking back: the database may be a deleted one. Refuses one that there never was.
bool begin_past(const std::string& database, reading& from, dm::problem& why);
// Finds a database that the journal tells of, deleted or not; false with the reason.
bool find_past_database(dm::store& store, uint64_t number, dm::database_row& database,
                        dm::problem& why);

// --- Deployments -----------------------------------------------------------------------------

struct change_counts {
  int64_t added = 0;
  int64_t changed = 0;
  int64_t deleted = 0;
  int64_t found = 0;  // were there when the journal began
};

// What its records do not have in common.
struct deployment_record {
  int64_t number;
  std::string time;
  std::string database;  // "" for the whole dictionary
  std::string kind;
  std::string detail;
  bool is_asked_for;  // it changes the field or class of a choice; without one all do
};

struct deployment {
  int64_t number = 0;
  dm::journal_record first{};  // who, when, how; the first that is still there
  std::vector<deployment_record> records{};
  change_counts fields{};
  change_counts classes{};
  std::vector<std::string> tags{};

  bool has(const char* kind) const;
  // Its fields came, and no classes.
  bool has_fields_only() const;
};

// Which deployments to tell of; an empty text or 0 asks for all.
struct deployment_choice {
  std::string field{};
  std::string class_name{};
  std::string since{};     // a moment as the journal keeps it
  std::string user{};      // of the operating system, or a server's role
  std::string database{};  // as records have it
  int64_t limit = 0;
  int64_t number = 0;  // a deployment's
};

// Gives them, the newest first. A visitor's false ends that.
using deployment_visitor = std::function<bool(const deployment&)>;
bool walk_deployments(dm::store& store, const deployment_choice& wanted,
                      const deployment_visitor& visitor, dm::problem& why);
// Appends them all.
bool find_deployments(dm::store& store, const deployment_choice& wanted,
                      std::vector<deployment>& found, dm::problem& why);

// --- Points ----------------------------------------------------------------------------------

// What a tag's record says.
struct tag_detail {
  int64_t number = 0;
  std::string name{};
};
tag_detail read_tag(const std::string& detail);

// The number of the deployment that a text names, by one of its records' numbers, by a tag, or by a
// moment (with "@" before it) that it was the last before. False with the reason.
bool find_deployment(dm::store& store, const std::string& text, int64_t& number, dm::problem& why);

// The last record of the deployment that a text names, or the last before a moment; 0 for the state
// before the first. False with the reason.
bool find_point(dm::store& store, const std::string& text, int64_t& record, dm::problem& why);
// The same for the database that was chosen, which must not have been a deleted one then.
bool find_point_of(reading& from, const std::string& text, int64_t& record, dm::problem& why);

// --- States ----------------------------------------------------------------------------------

// What of the database was different after the record.
bool look_back_to(reading& from, int64_t record, dm::past& found, dm::problem& why);

// The definitions as they were at a point; an empty text: as they are.
bool fetch_at(reading& from, const std::string& point, definitions& result, dm::problem& why);

// Adds what a state says to the definitions; false with the reason.
class definitions_maker {
 public:
  explicit definitions_maker(definitions& result);
  ~definitions_maker();
  bool add(const dm::field_row& row, dm::problem& why);
  bool add(const dm::class_row& row, dm::problem& why);
  // Of a thing: a field's state or a class's definition.
  bool add(dm::change_of what, const std::string& name, std::string state, dm::problem& why);
  // Hands the definitions over.
  bool finish(dm::problem& why);

 private:
  struct parts;
  std::unique_ptr<parts> parts_;
};

}  // namespace dict

#endif
