#include <algorithm>

#include "dd/fold.h"
#include "dict/history/history.h"
#include "dict/history/renames.h"
#include "dm/folded.h"
#include "dm/open.h"

namespace dict {

// --- Opening ---------------------------------------------------------------------------------

static bool refuse_without_journal(reading& from, dm::problem& why) {
  if (dm::has_journal(*from.store)) return true;
  const auto* calls = from.store->calls;
  why.sentence =
      dm::join({"Dictionary ", dm::quoted(calls->name(from.store.get())), " has schema version ",
                std::to_string(calls->schema_version(from.store.get())),
                " and no journal; 'tav_dict upgrade' begins one."});
  return false;
}

bool begin_history(reading& from, dm::problem& why) {
  if (!dm::read_settings(from.settings, why)) return false;
  from.store = dm::open_dictionary(from.settings, {}, why);
  return from.store != nullptr && refuse_without_journal(from, why) &&
         from.store->calls->begin(from.store.get(), false, why);
}

bool begin_history(const std::string& database, reading& from, dm::problem& why) {
  return begin_reading(database, from, why) && refuse_without_journal(from, why);
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

// Deployments that are being put together, while records are read from the newest.
struct gathering {
  const deployment_choice& wanted;
  std::vector<deployment>& found;
  std::set<int64_t> touching{};             // records that change the field or class asked for
  std::map<int64_t, deployment> open{};     // whose first record has not come yet
  std::map<std::string, int64_t> tagged{};  // record number by tag
};

}  // namespace

static bool find_touching(dm::store& store, gathering& all, dm::problem& why) {
  std::vector<past_name> fields, classes;
  const bool has_field = !all.wanted.field.empty();
  const bool has_class = !all.wanted.class_name.empty();
  const auto note = [&](int64_t record, const dm::journal_change& change) {
    const bool is_field = change.what == dm::change_of::FIELD;
    if (is_of(is_field ? fields : classes, record, change.name)) all.touching.insert(record);
    return true;
  };
  if (has_field && !find_names(store, dm::change_of::FIELD, all.wanted.field, fields, why)) {
    return false;
  }
  if (has_class && !find_names(store, dm::change_of::CLASS, all.wanted.class_name, classes, why)) {
    return false;
  }
  return (!has_field && !has_class) || dm::walk_changes(store, {}, note, why);
}

static bool is_by(const dm::journal_record& record, const std::string& user) {
  return user.empty() || record.os_user == user || record.role == user;
}

// What is about no database is about all.
static bool is_about(const deployment& one, const std::string& database) {
  const auto is_it = [&](const deployment_record& r) { return r.database == database; };
  const auto is_none = [](const deployment_record& r) { return r.database.empty(); };
  return database.empty() || std::any_of(one.records.begin(), one.records.end(), is_it) ||
         std::all_of(one.records.begin(), one.records.end(), is_none);
}

// Whether one of its records is what was asked for.
static bool is_wanted(const gathering& all, const deployment& one) {
  const deployment_choice& wanted = all.wanted;
  if (!is_by(one.first, wanted.user) || !is_about(one, wanted.database)) return false;
  if (wanted.number != 0 && wanted.number != one.number) return false;
  const bool any_thing = wanted.field.empty() && wanted.class_name.empty();
  return std::any_of(one.records.begin(), one.records.end(), [&](const deployment_record& record) {
    return record.time >= wanted.since && (any_thing || all.touching.count(record.number) != 0);
  });
}

static void note_tags(gathering& all, deployment& one) {
  for (const auto& [name, number] : all.tagged) {
    const auto is_it = [at = number](const deployment_record& r) { return r.number == at; };
    if (std::any_of(one.records.begin(), one.records.end(), is_it)) one.tags.push_back(name);
  }
}

static void finish(gathering& all, deployment one) {
  std::reverse(one.records.begin(), one.records.end());
  note_tags(all, one);
  if (is_wanted(all, one)) all.found.push_back(std::move(one));
}

static bool is_full(const gathering& all) {
  const int64_t limit = all.wanted.number != 0 ? 1 : all.wanted.limit;
  return limit != 0 && all.found.size() >= static_cast<size_t>(limit);
}

static void add_record(gathering& all, const dm::journal_record& record) {
  deployment& one = all.open[record.deployment];
  if (one.number == 0) one.first = record;  // who and how are the same in all of a run
  one.number = record.deployment;
  one.first.number = record.number;
  one.first.time = record.time;
  one.records.push_back({record.number, record.time, record.database, record.kind, record.detail});
  if (record.kind == dm::journal_kind::TAG) {
    const tag_detail tag = read_tag(record.detail);
    all.tagged.emplace(tag.name, tag.number);  // the newest stays
  }
  if (record.number != record.deployment) return;
  finish(all, std::move(one));
  all.open.erase(record.deployment);
}

// The first record of what is left was forgotten.
static void finish_rest(gathering& all) {
  for (auto it = all.open.rbegin(); it != all.open.rend() && !is_full(all); ++it) {
    finish(all, std::move(it->second));
  }
}

static void count(change_counts& counts, dm::change_how how) {
  if (how == dm::change_how::ADDED) ++counts.added;
  if (how == dm::change_how::CHANGED) ++counts.changed;
  if (how == dm::change_how::DELETED) ++counts.deleted;
  if (how == dm::change_how::FOUND) ++counts.found;
}

// Counts the changes of all of them, which read the journal once.
static bool count_changes(dm::store& store, std::vector<deployment>& found, dm::problem& why) {
  std::map<int64_t, deployment*> owners;
  for (deployment& one : found) {
    for (const deployment_record& record : one.records) owners[record.number] = &one;
  }
  if (owners.empty()) return true;
  auto at = owners.begin();
  const auto note = [&](int64_t record, const dm::journal_change& change) {
    while (at != owners.end() && at->first < record) ++at;
    if (at == owners.end() || at->first != record) return at != owners.end();
    count(change.what == dm::change_of::FIELD ? at->second->fields : at->second->classes,
          change.how);
    return true;
  };
  const dm::journal_range range{owners.begin()->first, owners.rbegin()->first};
  return dm::walk_changes(store, range, note, why);
}

bool find_deployments(dm::store& store, const deployment_choice& wanted,
                      std::vector<deployment>& found, dm::problem& why) {
  gathering all{wanted, found};
  if (!find_touching(store, all, why)) return false;
  const auto take = [&](const dm::journal_record& record) {
    add_record(all, record);
    return !is_full(all);
  };
  dm::journal_range range;
  range.newest_first = true;
  if (!dm::walk_records(store, range, take, why)) return false;
  finish_rest(all);
  return count_changes(store, found, why);
}

}  // namespace dict
