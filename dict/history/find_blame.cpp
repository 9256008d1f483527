#include <algorithm>

#include "dd/database_number.h"
#include "dd/values.h"
#include "dd/walk.h"
#include "dict/diff/values.h"
#include "dict/history/blame.h"
#include "dict/history/renames.h"
#include "dm/folded.h"

namespace dict {

static constexpr char MODULE[] = "tav_dict";

namespace {

// A change of the thing, kept.
struct kept_change {
  int64_t record;
  dm::change_how how;
  size_t head, tail;
  std::string middle, digest;

  dm::journal_change borrowed(dm::change_of what, std::string_view name) const {
    return {what, how, name, head, tail, middle, digest};
  }
};

}  // namespace

// --- Parts of a state ------------------------------------------------------------------------

static void note_part(taken_apart& all, blamed_part part) {
  part_key key;
  for (const std::string& name : part.path) key.push_back(dm::folded(name));
  key.push_back(part.attribute);
  while (all.values.count(key) != 0) key.back() += '#';
  all.values[key] = part.value;
  all.keys.push_back(std::move(key));
  all.parts.push_back(std::move(part));
}

static void note_element(taken_apart& all, const element_kind& kind, tav_flist_t* element,
                         std::vector<std::string>& path, tav_ebuf* ebuf) {
  note_part(all, {path, "", type_of(kind, element, at(ebuf, HERE))});
  for (value_change& value : values_of(kind, element, at(ebuf, HERE))) {
    note_part(all, {path, std::string(value.attribute), std::move(value.after)});
  }
  if (&kind == &FIELD) return;
  dd_walk entries(element, TAV_FLD_OBJ_ELEM);
  while (tav_flist_t* entry = entries.next(at(ebuf, HERE))) {
    path.push_back(dd_text(entry, TAV_FLD_FIELD_NAME, at(ebuf, HERE)));
    note_element(all, ENTRY, entry, path, ebuf);
    path.pop_back();
  }
}

bool take_apart(dm::change_of what, const std::string& name, const std::string& state,
                taken_apart& result, dm::problem& why) {
  definitions one;
  definitions_maker maker(one);
  if (!maker.add(what, name, state, why) || !maker.finish(why)) return false;
  tav_ebuf ebuf{};
  std::vector<std::string> path;
  const bool is_class = what == dm::change_of::CLASS;
  dd_walk elements(is_class ? one.classes.get() : one.fields.get(),
                   is_class ? TAV_FLD_OBJ_DESC : TAV_FLD_FIELD);
  while (tav_flist_t* element = elements.next(at(&ebuf, HERE))) {
    note_element(result, is_class ? CLASS : FIELD, element, path, &ebuf);
  }
  if (is_whole(ebuf)) return true;
  why.sentence = "The list of definitions cannot be built.";
  return false;
}

// --- The way back ----------------------------------------------------------------------------

// A rename is two changes of a record: the new name's comes first.
static void put_new_names_first(std::vector<kept_change>& found) {
  std::ranges::stable_sort(found, [](const kept_change& a, const kept_change& b) {
    const bool is_added = a.how == dm::change_how::ADDED && b.how != dm::change_how::ADDED;
    return a.record != b.record ? a.record > b.record : is_added;
  });
}

static bool find_changes_of(reading& from, const blamed_thing& thing,
                            std::vector<kept_change>& found, dm::problem& why) {
  past_names names;
  const std::string database = dd_database_text(from.database.number);
  if (!find_names(*from.store, thing.what, thing.name, names, why)) return false;
  const auto note = [&](int64_t record, const dm::journal_change& change) {
    if (change.what == thing.what && is_of(names, database, record, change.name)) {
      found.push_back({record, change.how, change.head, change.tail, std::string(change.middle),
                       std::string(change.digest)});
    }
    return true;
  };
  dm::journal_range range;
  range.newest_first = true;
  if (!dm::walk_changes(*from.store, range, note, why)) return false;
  put_new_names_first(found);
  return true;
}

// Those records of the database that changed the thing.
static bool find_records(reading& from, const std::vector<kept_change>& changes,
                         std::map<int64_t, dm::journal_record>& records, dm::problem& why) {
  const std::string database = dd_database_text(from.database.number);
  for (const kept_change& change : changes) {
    const auto note = [&](const dm::journal_record& record) {
      if (record.database == database) records[record.number] = record;
      return true;
    };
    if (!dm::walk_records(*from.store, {change.record, change.record}, note, why)) return false;
  }
  return true;
}

void settle(taken_apart& present, const part_values& before, const dm::journal_record& record,
            bool is_found) {
  for (size_t i = 0; i < present.keys.size(); ++i) {
    blamed_part& part = present.parts[i];
    const auto old = before.find(present.keys[i]);
    const bool is_same = old != before.end() && old->second == part.value;
    if (part.by.number != 0 || is_same) continue;
    part.by = record;
    part.is_found = is_found;
  }
}

// The entries of older states are called as they are called now. `passed` are the renames on the
// way back, the newest first, with folded names.
static void rename_entries(const std::vector<told_rename>& passed, part_values& values) {
  part_values renamed;
  for (auto& [key, value] : values) {
    part_key now = key;
    for (size_t i = 0; i + 1 < now.size(); ++i) {
      for (auto past = passed.rbegin(); past != passed.rend(); ++past) {
        if (now[i] == past->from) now[i] = past->to;
      }
    }
    renamed[std::move(now)] = std::move(value);
  }
  values = std::move(renamed);
}

static void note_rename(const dm::journal_record& record, std::vector<told_rename>& passed) {
  for (const told_rename& told : taken_back(read_renames(record))) {
    if (told.what == "field")
      passed.push_back({told.what, dm::folded(told.to), dm::folded(told.from)});
  }
}

// Makes the state that of before the change.
static bool take_back(int64_t record, const dm::journal_change& change, bool was_changed_since,
                      std::string& state, dm::problem& why) {
  std::string before;
  if (!dm::must_have_left(record, change, &state, was_changed_since, why)) return false;
  if (dm::was_there(change) && !dm::state_before(change, state, before))
    return dm::damaged_record(record, why);
  state = std::move(before);
  return true;
}

// Whether the change is one half of a rename, whose other half comes behind it.
static bool is_renamed(const std::vector<kept_change>& changes, size_t at) {
  return at + 1 < changes.size() && changes[at].how == dm::change_how::ADDED &&
         changes[at + 1].record == changes[at].record;
}

static bool go_back(const blamed_thing& thing, taken_apart& present, std::string state,
                    const std::vector<kept_change>& changes,
                    const std::map<int64_t, dm::journal_record>& records, dm::problem& why) {
  std::vector<told_rename> passed;
  bool was_changed_since = false;
  for (size_t i = 0; i < changes.size(); ++i) {
    const kept_change& kept = changes[i];
    const auto record = records.find(kept.record);
    const bool is_elsewhere = record == records.end();  // of another database
    if (is_elsewhere || is_renamed(changes, i)) continue;
    const dm::journal_change change = kept.borrowed(thing.what, thing.name);
    taken_apart before;
    const bool is_old_name =
        kept.how == dm::change_how::DELETED && i > 0 && is_renamed(changes, i - 1);
    if (is_old_name) state = kept.middle;
    if (!is_old_name && !take_back(kept.record, change, was_changed_since, state, why))
      return false;
    was_changed_since = true;
    const bool goes_on = dm::was_there(change);
    if (goes_on && !take_apart(thing.what, thing.name, state, before, why)) return false;
    note_rename(record->second, passed);
    if (!passed.empty()) rename_entries(passed, before.values);
    settle(present, before.values, record->second, kept.how == dm::change_how::FOUND);
    if (!goes_on) return true;
  }
  return true;
}

bool find_blame(reading& from, const std::string& name, blamed_thing& result, dm::problem& why) {
  std::optional<std::string> state;
  taken_apart present;
  std::vector<kept_change> changes;
  std::map<int64_t, dm::journal_record> records;
  result.what = name.rfind('/', 0) == 0 ? dm::change_of::CLASS : dm::change_of::FIELD;
  result.name = name;
  if (!dm::present_state(*from.store, from.database.id, result.what, name, state, why)) {
    return false;
  }
  result.is_there = state.has_value();
  if (!result.is_there) return true;
  if (!take_apart(result.what, name, *state, present, why) ||
      !find_changes_of(from, result, changes, why) || !find_records(from, changes, records, why) ||
      !go_back(result, present, *state, changes, records, why)) {
    return false;
  }
  result.parts = std::move(present.parts);
  return true;
}

}  // namespace dict
