#include "dm/ops/dropped.h"

#include <algorithm>
#include <set>

#include "dd/database_number.h"

namespace dm {

// How often the counter was raised since the fetch; 0 where only this session raised it.
static int64_t writes_since(const session& session, const database_row& database,
                            int64_t seen_database::*fetched) {
  const auto found = session.seen.find(database.number);
  if (found == session.seen.end() || found->second.*fetched == seen_database::NEVER) return 0;
  const seen_database& seen = found->second;
  const int64_t since = database.counter - seen.*fetched;
  const auto own = std::count_if(seen.own.begin(), seen.own.end(),
                                 [&](int64_t stamp) { return stamp > seen.*fetched; });
  return since == own ? 0 : since;
}

// The records of other sessions among the last `writes` deployments of the database: each write
// makes one record, or none, and then one too many is looked at.
static bool find_records(session& session, uint64_t database, int64_t writes,
                         std::set<int64_t>& records, problem& why) {
  const std::string about = dd_database_text(database);
  const auto look = [&](const journal_record& record) {
    const bool is_write = is_deployment(record.kind) || record.kind == journal_kind::DROP_DATABASE;
    if (record.database != about || !is_write) return true;
    if (record.run != session.run.id) records.insert(record.number);
    return --writes > 0;
  };
  journal_range range;
  range.newest_first = true;
  return walk_records(*session.store, range, look, why);
}

bool find_dropped(session& session, const database_row& database, int64_t seen_database::*fetched,
                  key_set& dropped, problem& why) {
  std::set<int64_t> records;
  const int64_t writes = writes_since(session, database, fetched);
  if (writes == 0 || !has_journal(*session.store)) return true;
  if (!find_records(session, database.number, writes, records, why)) return false;
  const auto note = [&](int64_t record, const journal_change& change) {
    if (change.how == change_how::DELETED && records.count(record) != 0) {
      dropped.insert(thing_key(change.what, change.name));
    }
    return true;
  };
  return records.empty() || walk_changes(*session.store, {*records.begin()}, note, why);
}

}  // namespace dm
