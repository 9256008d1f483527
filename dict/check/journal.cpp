// The journal: its chain of hashes, and whether going back from what the dictionary holds each
// change fits.
#include <map>
#include <optional>
#include <set>
#include <vector>

#include "dd/database_number.h"
#include "dict/check/check.h"
#include "dm/journal/hash.h"
#include "dm/journal/read.h"

namespace dict {

namespace {

// A thing, on the way back.
struct met_thing {
  std::string name{};
  std::optional<std::string> state{};
  bool is_known = false;  // a change of it was met
  bool is_told = false;   // so that one fault is told once
};

struct journal_check {
  checker& check;
  std::map<int64_t, std::string> contents{};   // hash of the changes, by record
  std::map<int64_t, std::string> databases{};  // N.N.N.N, by record
  std::set<std::string> present{}, missing{};  // databases, N.N.N.N
  std::set<std::string> dropped{};             // those that are gone and were deleted last
  std::map<std::string, met_thing> things{};   // by database and thing
  dm::journal_record last{};
  std::string pruned{};    // hash of the last record that was pruned
  std::string identity{};  // that a record gave last
  bool is_whole = false;   // the first record is there, and all after it
  bool has_head = false;   // the hash that was asked for was met
};

}  // namespace

static void tell_record(journal_check& run, int64_t number, std::string_view fault) {
  tell(run.check, dm::join({"Record ", std::to_string(number), fault}));
}

static bool hash_contents(journal_check& run) {
  dm::sha256 hash;
  int64_t record = 0;
  int64_t next = 0;
  const auto finish = [&] {
    if (record != 0) run.contents[record] = hash.hex();
  };
  auto add = [&](const dm::journal_part& part) {
    if (part.record != record) {
      finish();
      record = part.record;
      next = 0;
    }
    if (part.part != next++)
      tell_record(run, record, " of the journal lacks a part of its changes.");
    hash.add(part.content);
    return true;
  };
  dm::store& store = run.check.store;
  if (!store.calls->journal_parts(&store, {}, dm::visit<dm::journal_part>(add), run.check.why)) {
    return false;
  }
  finish();
  return true;
}

// The value of a key of a record's detail, a JSON object that the data manager wrote.
static std::string value_of(const dm::journal_record& record, const std::string& key) {
  const std::string start = "\"" + key + "\":\"";
  const size_t at = record.detail.find(start);
  if (at == std::string::npos) return "";
  const size_t value = at + start.size();
  return record.detail.substr(value, record.detail.find('"', value) - value);
}

static void check_link(journal_check& run, const dm::journal_record& record) {
  const int64_t expected = run.last.number + 1;
  if (run.last.number == 0) {
    run.is_whole = record.number == 1 && record.previous.empty();
    if (!run.is_whole) run.pruned = record.previous;
  } else if (record.number != expected) {
    run.is_whole = false;
    tell(run.check, dm::join({"The journal lacks the records from ", std::to_string(expected),
                              " to ", std::to_string(record.number - 1), "."}));
  } else if (record.previous != run.last.hash) {
    tell_record(run, record.number, " of the journal does not follow the one before.");
  }
}

static void note_database(journal_check& run, const dm::journal_record& record) {
  run.databases[record.number] = record.database;
  if (record.kind == dm::journal_kind::DROP_DATABASE) run.dropped.insert(record.database);
  if (record.kind == dm::journal_kind::ADD_DATABASE) run.dropped.erase(record.database);
}

static void check_record(journal_check& run, const dm::journal_record& record) {
  static const std::string NO_CHANGES = dm::hash_of("");
  const auto content = run.contents.find(record.number);
  const std::string& hash = content != run.contents.end() ? content->second : NO_CHANGES;
  check_link(run, record);
  if (dm::hash_of_record(record, hash) != record.hash) {
    tell_record(run, record.number, " of the journal was altered.");
  }
  const std::string identity = value_of(record, "identity");
  if (!identity.empty()) run.identity = identity;
  const std::string pruned = record.kind == dm::journal_kind::PRUNE ? value_of(record, "hash") : "";
  if (!pruned.empty() && pruned == run.pruned) run.pruned.clear();
  run.has_head = run.has_head || record.hash == run.check.head || pruned == run.check.head;
  note_database(run, record);
  if (content != run.contents.end()) run.contents.erase(content);
  run.last = record;
}

static bool check_chain(journal_check& run) {
  const auto look = [&](const dm::journal_record& record) {
    step(run.check.shown);
    return check_record(run, record), true;
  };
  if (!dm::walk_records(run.check.store, {}, look, run.check.why)) return false;
  for (const auto& [record, hash] : run.contents)
    tell_record(run, record, " of the journal is missing.");
  if (run.last.number == 0) tell(run.check, "The journal is empty.");
  if (!run.pruned.empty()) {
    tell(run.check, "The journal lacks its first records, and none tells that they were pruned.");
  }
  if (!run.check.head.empty() && !run.has_head) {
    tell(run.check, dm::join({"No record of the journal has the hash ", run.check.head,
                              ": it was cut, or written anew."}));
  }
  return true;
}

static bool check_identity(journal_check& run) {
  std::string identity;
  dm::store& store = run.check.store;
  if (!store.calls->identity(&store, identity, run.check.why)) return false;
  if (identity.empty() || (!run.identity.empty() && run.identity != identity)) {
    tell(run.check, "The dictionary has not the identity that its journal tells.");
  }
  return true;
}

static std::string key_of(const std::string& database, dm::change_of what, std::string_view name) {
  return dm::join({database, " ", dm::thing_key(what, name)});
}

static bool read_present(journal_check& run, const dm::database_row& row) {
  const std::string database = dd_database_text(row.number);
  run.present.insert(database);
  const auto keep = [&](dm::change_of what, const char* name, std::string state) {
    run.things[key_of(database, what, name)] = {name, std::move(state)};
    return true;
  };
  auto field = [&](const dm::field_row& each) {
    return keep(dm::change_of::FIELD, each.name, dm::field_state(each));
  };
  auto storable = [&](const dm::class_row& each) {
    return keep(dm::change_of::CLASS, each.name, each.definition);
  };
  dm::store& store = run.check.store;
  return store.calls->fields(&store, row.id, {}, dm::visit<dm::field_row>(field), run.check.why) &&
         store.calls->classes(&store, row.id, {}, dm::visit<dm::class_row>(storable),
                              run.check.why);
}

static std::string named(char what, const std::string& name) {
  return dm::join(
      {what == static_cast<char>(dm::change_of::FIELD) ? "Field " : "Class ", dm::quoted(name)});
}

static void check_change(journal_check& run, int64_t record, const dm::journal_change& change) {
  const std::string key = key_of(run.databases[record], change.what, change.name);
  met_thing& thing = run.things[key];
  const bool is_first = !thing.is_known;
  thing.is_known = true;
  if (thing.is_told) return;
  std::string before;
  const bool is_left = dm::has_left(change, thing.state ? &*thing.state : nullptr);
  const bool fits = is_left && (!dm::was_there(change) ||
                                dm::state_before(change, thing.state.value_or(""), before));
  if (!fits) {
    thing.is_told = true;
    const std::string who = named(static_cast<char>(change.what), std::string(change.name));
    const std::string left = dm::join({" is not as record ", std::to_string(record), " left it."});
    tell(run.check, is_first
                        ? dm::join({"database ", run.databases[record], ": ", who, left})
                        : dm::join({"database ", run.databases[record], ": The state of ", who,
                                    " after record ", std::to_string(record), " cannot be told."}));
    return;
  }
  if (dm::was_there(change)) {
    thing.state = std::move(before);
  } else {
    thing.state.reset();
  }
}

// Whether the record is there, and its database or the record of its end. A missing database is
// told once.
static bool is_of_present(journal_check& run, int64_t record) {
  const auto at = run.databases.find(record);
  if (at == run.databases.end() || run.missing.count(at->second) != 0) return false;
  if (run.present.count(at->second) != 0 || run.dropped.count(at->second) != 0) return true;
  run.missing.insert(at->second);
  tell(run.check, dm::join({"database ", at->second, ": The database of record ",
                            std::to_string(record), " is missing."}));
  return false;
}

// Tells what no record knows; of a database that none knows no single things.
static void tell_unknown(journal_check& run) {
  std::set<std::string> databases;
  std::set<std::string> unknown;
  for (const auto& [record, database] : run.databases) databases.insert(database);
  for (const auto& [key, thing] : run.things) {
    const size_t blank = key.find(' ');
    const std::string database = key.substr(0, blank);
    if (databases.insert(database).second) {
      tell(run.check, dm::join({"database ", database, ": The database is not in the journal."}));
      unknown.insert(database);
    }
    if (thing.is_known || unknown.count(database) != 0) continue;
    tell(run.check, dm::join({"database ", database, ": ", named(key[blank + 1], thing.name),
                              " is not in the journal."}));
  }
}

static bool check_things(journal_check& run) {
  dm::store& store = run.check.store;
  std::vector<dm::database_row> rows;
  auto note = [&](const dm::database_row& row) { return rows.push_back(row), true; };
  if (!store.calls->databases(&store, dm::visit<dm::database_row>(note), run.check.why)) {
    return false;
  }
  for (const dm::database_row& row : rows) {
    if (!read_present(run, row)) return false;
  }
  const auto back = [&](int64_t record, const dm::journal_change& change) {
    step(run.check.shown);
    if (is_of_present(run, record)) check_change(run, record, change);
    return true;
  };
  dm::journal_range all;
  all.newest_first = true;
  if (!dm::walk_changes(store, all, back, run.check.why)) return false;
  if (run.is_whole) tell_unknown(run);
  return true;
}

bool check_journal(checker& check) {
  if (!dm::has_journal(check.store)) return true;
  next(check.shown, "checking the journal");
  journal_check run{check};
  return hash_contents(run) && check_chain(run) && check_identity(run) && check_things(run);
}

}  // namespace dict
