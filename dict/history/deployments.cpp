#include <algorithm>

#include "dd/database_number.h"
#include "dd/fold.h"
#include "dict/history/history.h"
#include "dict/history/renames.h"
#include "dm/open.h"
#include "dm/session.h"

namespace dict {

// --- Opening ---------------------------------------------------------------------------------

bool must_have_journal(dm::store& store, dm::problem& why) {
  if (dm::has_journal(store)) return true;
  why.sentence =
      dm::join({"Dictionary ", dm::quoted(store.calls->name(&store)), " has schema version ",
                std::to_string(store.calls->schema_version(&store)),
                " and no journal; 'tav_dict upgrade' begins one."});
  return false;
}

bool begin_history(reading& from, dm::problem& why) {
  if (!dm::read_settings(from.settings, why)) return false;
  from.store = dm::open_dictionary(from.settings, {}, why);
  return from.store != nullptr && must_have_journal(*from.store, why) &&
         from.store->calls->begin(from.store.get(), false, why);
}

bool begin_history(const std::string& database, reading& from, dm::problem& why) {
  return begin_reading(database, from, why) && must_have_journal(*from.store, why);
}

bool find_past_database(dm::store& store, uint64_t number, dm::database_row& database,
                        dm::problem& why) {
  const std::string about = dd_database_text(number);
  bool is_told = false;
  const auto look = [&](const dm::journal_record& record) {
    is_told = record.kind == dm::journal_kind::DROP_DATABASE && record.database == about;
    return !is_told;
  };
  if (dm::find_database(store, number, 0, database, why)) return true;
  dm::problem unreadable;
  if (why.code != TAV_ERR_UNKNOWN_DATABASE || !dm::has_journal(store)) return false;
  if (!dm::walk_records(store, {}, look, unreadable)) return why = unreadable, false;
  if (is_told) database = {DELETED_DATABASE, number, 0}, why = {};
  return is_told;
}

bool begin_past(const std::string& database, reading& from, dm::problem& why) {
  uint64_t number = 0;
  if (begin_reading(database, from, why)) return must_have_journal(*from.store, why);
  return why.code == TAV_ERR_UNKNOWN_DATABASE &&
         choose_database(database, from.settings, number, why) &&
         find_past_database(*from.store, number, from.database, why);
}

// --- Deployments -----------------------------------------------------------------------------

bool deployment::has(const char* kind) const {
  return std::any_of(records.begin(), records.end(),
                     [&](const deployment_record& record) { return record.kind == kind; });
}

bool deployment::has_fields_only() const {
  return has(dm::journal_kind::FIELDS) && !has(dm::journal_kind::CLASSES);
}

namespace {

// A record with what it changed.
struct counted_record {
  dm::journal_record record{};
  change_counts fields{};
  change_counts classes{};
  bool is_asked_for = true;  // changes the field or class that was asked for, if any
};

// Deployments that are being put together, while records are read from the newest.
struct gathering {
  const deployment_choice& wanted;
  const deployment_visitor& visitor;
  past_names field_names{};  // of the field, or class, that was asked for
  past_names class_names{};
  std::vector<counted_record> batch{};   // used again for the next one, which spares memory
  size_t filled = 0;                     // how many of it are in use
  std::map<int64_t, deployment> open{};  // whose first record has not come yet
  std::set<std::string> tags{};          // that were met: the newest of a name counts
  std::map<int64_t, std::vector<std::string>> tags_of{};  // by record
  int64_t given = 0;
  bool goes_on = true;
};

}  // namespace

// --- Reading a batch -------------------------------------------------------------------------

// Records are read in batches, so that memory holds one of them only, and the first is small, so
// that a few deployments cost little. Each batch takes a server two queries.
static constexpr size_t FIRST_BATCH = 32, LARGEST_BATCH = 1024;
static constexpr size_t RECORDS_OF_A_RUN = 3;  // at most, as a rule

static size_t first_batch(int64_t limit) {
  if (limit == 0 || limit > static_cast<int64_t>(FIRST_BATCH)) return FIRST_BATCH;
  return std::min(FIRST_BATCH, RECORDS_OF_A_RUN * static_cast<size_t>(limit));
}

static bool asks_for_thing(const deployment_choice& wanted) {
  return !wanted.field.empty() || !wanted.class_name.empty();
}

static bool find_all_names(dm::store& store, gathering& all, dm::problem& why) {
  const deployment_choice& wanted = all.wanted;
  return (wanted.field.empty() ||
          find_names(store, dm::change_of::FIELD, wanted.field, all.field_names, why)) &&
         (wanted.class_name.empty() ||
          find_names(store, dm::change_of::CLASS, wanted.class_name, all.class_names, why));
}

static bool read_batch(dm::store& store, const dm::journal_range& range, size_t size,
                       gathering& all, dm::problem& why) {
  all.batch.resize(size);
  all.filled = 0;
  const auto take = [&](const dm::journal_record& record) {
    counted_record& place = all.batch[all.filled++];
    place.record = record;
    place.fields = place.classes = {};
    place.is_asked_for = !asks_for_thing(all.wanted);
    return all.filled < size;
  };
  return dm::walk_records(store, range, take, why);
}

// Who and how are the same in all records of a run.
static bool may_be_wanted(const gathering& all, const dm::journal_record& record) {
  const deployment_choice& wanted = all.wanted;
  const bool is_by =
      wanted.user.empty() || record.os_user == wanted.user || record.role == wanted.user;
  return is_by && (wanted.number == 0 || wanted.number == record.deployment);
}

static void count(change_counts& counts, dm::change_how how) {
  if (how == dm::change_how::ADDED) ++counts.added;
  if (how == dm::change_how::CHANGED) ++counts.changed;
  if (how == dm::change_how::DELETED) ++counts.deleted;
  if (how == dm::change_how::FOUND) ++counts.found;
}

static void note(const gathering& all, counted_record& at, const dm::journal_change& change) {
  const bool is_field = change.what == dm::change_of::FIELD;
  const auto& names = is_field ? all.field_names : all.class_names;
  count(is_field ? at.fields : at.classes, change.how);
  if (is_of(names, at.record.database, at.record.number, change.name)) at.is_asked_for = true;
}

// Reads the changes between the oldest and the newest record that may be wanted.
static bool count_changes(dm::store& store, gathering& all, dm::problem& why) {
  const auto begin = all.batch.rend() - static_cast<ptrdiff_t>(all.filled);
  const auto is_in = [&](const counted_record& one) { return may_be_wanted(all, one.record); };
  auto at = std::find_if(begin, all.batch.rend(), is_in);
  if (at == all.batch.rend()) return true;
  const auto newest = std::find_if(all.batch.begin(), all.batch.end(), is_in);
  const auto take = [&](int64_t record, const dm::journal_change& change) {
    while (at != all.batch.rend() && at->record.number < record) ++at;
    if (at != all.batch.rend() && at->record.number == record) note(all, *at, change);
    return true;
  };
  return dm::walk_changes(store, {at->record.number, newest->record.number}, take, why);
}

// --- Putting deployments together ------------------------------------------------------------

// What is about no database is about all.
static bool is_about(const deployment& one, const std::string& database) {
  const auto is_it = [&](const deployment_record& r) { return r.database == database; };
  const auto is_none = [](const deployment_record& r) { return r.database.empty(); };
  return database.empty() || std::any_of(one.records.begin(), one.records.end(), is_it) ||
         std::all_of(one.records.begin(), one.records.end(), is_none);
}

// Whether one of its records is what was asked for.
static bool is_wanted(const deployment_choice& wanted, const deployment& one) {
  const auto is_it = [&](const deployment_record& record) {
    return record.is_asked_for && record.time >= wanted.since;
  };
  return is_about(one, wanted.database) &&
         std::any_of(one.records.begin(), one.records.end(), is_it);
}

static void add_tags(const gathering& all, deployment& one) {
  for (const deployment_record& record : one.records) {
    const auto found = all.tags_of.find(record.number);
    if (found == all.tags_of.end()) continue;
    one.tags.insert(one.tags.end(), found->second.begin(), found->second.end());
  }
  std::sort(one.tags.begin(), one.tags.end());
}

static void finish(gathering& all, deployment& one) {
  if (!is_wanted(all.wanted, one)) return;
  std::reverse(one.records.begin(), one.records.end());
  add_tags(all, one);
  const int64_t limit = all.wanted.number != 0 ? 1 : all.wanted.limit;
  all.goes_on = all.visitor(one) && ++all.given != limit;
}

static void note_tag(gathering& all, const dm::journal_record& record) {
  if (record.kind != dm::journal_kind::TAG) return;
  const tag_detail tag = read_tag(record.detail);
  if (all.tags.insert(tag.name).second) all.tags_of[tag.number].push_back(tag.name);
}

static void add(change_counts& sum, const change_counts& counts) {
  sum.added += counts.added;
  sum.changed += counts.changed;
  sum.deleted += counts.deleted;
  sum.found += counts.found;
}

static void add_record(gathering& all, const counted_record& found) {
  const dm::journal_record& record = found.record;
  note_tag(all, record);
  if (!may_be_wanted(all, record)) return;
  const auto [at, is_new] = all.open.try_emplace(record.deployment);
  deployment& one = at->second;
  if (is_new) one.first = record;
  one.number = record.deployment;
  one.first.number = record.number;
  one.first.time = record.time;
  one.records.push_back({record.number, record.time, record.database, record.kind, record.detail,
                         found.is_asked_for});
  add(one.fields, found.fields);
  add(one.classes, found.classes);
  if (record.number != record.deployment) return;
  finish(all, one);
  all.open.erase(at);
}

// The first record of what is left was forgotten.
static void finish_rest(gathering& all) {
  for (auto it = all.open.rbegin(); it != all.open.rend() && all.goes_on; ++it) {
    finish(all, it->second);
  }
}

bool walk_deployments(dm::store& store, const deployment_choice& wanted,
                      const deployment_visitor& visitor, dm::problem& why) {
  gathering all{wanted, visitor};
  if (!find_all_names(store, all, why)) return false;
  dm::journal_range range;
  range.newest_first = true;
  for (size_t size = first_batch(wanted.limit); all.goes_on;
       size = std::min(2 * size, LARGEST_BATCH)) {
    if (!read_batch(store, range, size, all, why) || !count_changes(store, all, why)) return false;
    for (size_t i = 0; i < all.filled && all.goes_on; ++i) add_record(all, all.batch[i]);
    if (all.filled < size) break;
    range.to = all.batch[size - 1].record.number - 1;
  }
  finish_rest(all);
  return true;
}

bool find_deployments(dm::store& store, const deployment_choice& wanted,
                      std::vector<deployment>& found, dm::problem& why) {
  const auto keep = [&](const deployment& one) { return found.push_back(one), true; };
  return walk_deployments(store, wanted, keep, why);
}

}  // namespace dict
