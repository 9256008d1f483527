// What the journal holds: a record for each committed transaction that changed something, and its
// changes.
//
// Records are numbered from 1 without a gap. Each has the hash of the one before, so that none can
// be altered, left out or put between without breaking the chain. Changes are packed into texts of
// about 64 KB (dm/journal/change.h), because a row for each would make a large deployment slow.
#ifndef DM_JOURNAL_RECORD_H
#define DM_JOURNAL_RECORD_H

#include <array>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

namespace dm {

struct journal_record {
  int64_t number = 0;
  int64_t deployment = 0;  // number of the first record of the same run: names the deployment
  int64_t changes = 0;     // how many things it changed
  std::string time{};      // UTC, as 2026-11-01T09:30:00.000Z; clocks go wrong, numbers do not
  std::string database{};  // N.N.N.N; "" where it is about the whole dictionary
  std::string kind{};      // one of JOURNAL_KINDS
  std::string run{};       // random, one for each session
  std::string os_user{};   // who, as the operating system knows it
  std::string os_host{};   // where
  std::string role{};      // on a server the session's, which it tells itself; in a file ""
  std::string login{};     // database number of the login identity; "" for none
  std::string program{};   // its name
  std::string version{};   // of the client library that the program is linked with
  std::string mode{};      // what the program was told to do: create, replace, ...; "" if nothing
  std::string called{};    // the arguments that it was called with, as a JSON array of texts
  std::string reason{};    // TAV_REASON of the environment
  std::string detail{};    // JSON object of what the kind adds: see JOURNAL_KINDS
  std::string previous{};  // hash of the record before; "" in the first
  std::string hash{};      // SHA-256 in hexadecimal: hash_of_record (dm/journal/hash.h)
};

// The texts of a record with their columns, in the order of the columns. The hash is over all but
// the last, in this order: part of the format, never reorder.
inline constexpr struct {
  const char* column;
  std::string journal_record::*text;
} JOURNAL_TEXTS[] = {
    {"time", &journal_record::time},         {"database", &journal_record::database},
    {"kind", &journal_record::kind},         {"run", &journal_record::run},
    {"os_user", &journal_record::os_user},   {"os_host", &journal_record::os_host},
    {"role", &journal_record::role},         {"login", &journal_record::login},
    {"program", &journal_record::program},   {"version", &journal_record::version},
    {"mode", &journal_record::mode},         {"called", &journal_record::called},
    {"reason", &journal_record::reason},     {"detail", &journal_record::detail},
    {"previous", &journal_record::previous}, {"hash", &journal_record::hash},
};

// The columns before them: number, deployment, changes.
inline constexpr int JOURNAL_NUMBERS = 3;

// Kinds of records. Stored: never rename.
namespace journal_kind {
inline constexpr char FIELDS[] = "fields";                // operation 576
inline constexpr char CLASSES[] = "classes";              // operation 578
inline constexpr char DELETE_FIELDS[] = "delete-fields";  // operation 585
inline constexpr char CHANGE[] = "change";    // dm/changes/; detail says what for: {"undo":17}
inline constexpr char APPLY[] = "apply";      // detail: {"plan": its digest}
inline constexpr char INIT[] = "init";        // detail: {"identity": new}
inline constexpr char RESTORE[] = "restore";  // detail: {"identity": new, "from": old}
inline constexpr char UPGRADE[] = "upgrade";  // detail: {"identity": new}
inline constexpr char ADD_DATABASE[] = "add-database";
inline constexpr char DROP_DATABASE[] = "drop-database";  // detail: {"counter": its last}
inline constexpr char PRUNE[] = "prune";  // detail: {"before": number, "hash": of the last removed}
inline constexpr char TAG[] = "tag";      // detail: {"number": tagged, "name": tag}
}  // namespace journal_kind

// Whether records of the kind are a deployment's: change what the definitions are.
inline bool is_deployment(std::string_view kind) {
  using namespace journal_kind;
  return kind == FIELDS || kind == CLASSES || kind == DELETE_FIELDS || kind == CHANGE ||
         kind == APPLY;
}

// A part of the packed changes of a record.
struct journal_part {
  int64_t record;
  int64_t part;  // counted from 0
  const char* content;
};

// The end of the journal, as the next record needs it.
struct journal_head {
  int64_t number = 0;  // of the last record; 0: there is none
  std::string hash{};
  std::string time{};  // of the last record
  std::string role{};  // of this session, on a server
};

// Which records to read, and from which end.
struct journal_range {
  int64_t from = 0;
  int64_t to = std::numeric_limits<int64_t>::max();
  bool newest_first = false;
};

}  // namespace dm

#endif
