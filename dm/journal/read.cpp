#include "dm/journal/read.h"

#include <list>

#include "dd/database_number.h"
#include "dm/folded.h"

namespace dm {

bool damaged_record(int64_t number, problem& why) {
  why.code = TAV_ERR_STORAGE;
  why.is_damage = true;
  why.sentence = join(
      {"Record ", std::to_string(number), " of the journal is damaged; see 'tav_dict check'."});
  return false;
}

bool walk_records(store& store, const journal_range& range, const record_visitor& visitor,
                  problem& why) {
  auto give = [&](const journal_record& record) { return visitor(record); };
  return store.calls->journal(&store, range, visit<journal_record>(give), why);
}

bool walk_changes(store& store, const journal_range& range, const change_visitor& visitor,
                  problem& why) {
  bool is_sound = true;
  auto unpack = [&](const journal_part& part) {
    std::string_view packed = part.content;
    journal_change change{};
    while (!packed.empty()) {
      is_sound = unpack_change(packed, change) || damaged_record(part.record, why);
      if (!is_sound || !visitor(part.record, change)) return false;
    }
    return true;
  };
  return store.calls->journal_parts(&store, range, visit<journal_part>(unpack), why) && is_sound;
}

std::string thing_key(change_of what, std::string_view name) {
  return static_cast<char>(what) + folded(name);
}

bool present_state(store& store, int64_t database, change_of what, const std::string& name,
                   std::optional<std::string>& state, problem& why) {
  state.reset();
  const choice named{choice::NAMED, name.c_str()};
  auto take_field = [&](const field_row& row) { return state = field_state(row), true; };
  auto take_class = [&](const class_row& row) { return state = row.definition, true; };
  if (what == change_of::FIELD) {
    return store.calls->fields(&store, database, named, visit<field_row>(take_field), why);
  }
  return store.calls->classes(&store, database, named, visit<class_row>(take_class), why);
}

namespace {

// The records on the way back that are about the database.
struct way_back {
  std::set<int64_t> records{};
  int64_t changes = 0;
};

}  // namespace

static bool find_way(store& store, const database_row& stored, int64_t number, way_back& way,
                     problem& why) {
  const std::string database = dd_database_text(stored.number);
  int64_t oldest = 0;
  const auto note = [&](const journal_record& record) {
    if (oldest == 0) oldest = record.number;
    if (record.database == database && record.number > number) {
      way.records.insert(record.number);
      way.changes += record.changes;
    }
    return true;
  };
  if (!walk_records(store, {number}, note, why)) return false;
  // No record after `number` may be missing.
  const bool is_there = oldest == number || oldest == number + 1;
  if (is_there) return true;
  why.code = TAV_ERR_NOT_FOUND;
  why.sentence = join({"The journal has no record ", std::to_string(number), "."});
  return false;
}

// Reads all that is there at once: one by one, many things would take a look-up each.
static bool read_present(store& store, int64_t database, past& now, problem& why) {
  auto field = [&](const field_row& row) {
    now[thing_key(change_of::FIELD, row.name)] = {row.name, field_state(row)};
    return true;
  };
  auto of_class = [&](const class_row& row) {
    now[thing_key(change_of::CLASS, row.name)] = {row.name, row.definition};
    return true;
  };
  return store.calls->fields(&store, database, {}, visit<field_row>(field), why) &&
         store.calls->classes(&store, database, {}, visit<class_row>(of_class), why);
}

// For more changes than this all is read at once (with a local file; sooner on a server).
static constexpr int64_t MANY = 2000;

// The state of the thing that `change` left, where nothing later on the way changed it.
static bool state_now(store& store, int64_t database, const journal_change& change, const past* all,
                      past_thing& thing, problem& why) {
  thing.name = change.name;
  if (all == nullptr) {
    return present_state(store, database, change.what, thing.name, thing.state, why);
  }
  const auto found = all->find(thing_key(change.what, change.name));
  if (found != all->end()) thing.state = found->second.state;
  return true;
}

// The problem of a way back that ends: the journal began with this record. Gives false.
static bool ends_here(int64_t record, const past_thing& thing, problem& why) {
  why.code = TAV_ERR_NOT_FOUND;
  why.sentence =
      join({"The way back ends at record ", std::to_string(record), " of the journal: it found ",
            quoted(thing.name), " there, and what was before is not known."});
  return false;
}

problem altered_thing(change_of what, std::string_view name, int64_t record) {
  problem why;
  why.code = TAV_ERR_CONFLICT;
  why.is_damage = true;
  why.sentence = join({what == change_of::FIELD ? "Field " : "Class ", quoted(name),
                       " is not as record ", std::to_string(record),
                       " of the journal left it: it was changed outside of the journal; see "
                       "'tav_dict check'."});
  return why;
}

bool must_have_left(int64_t record, const journal_change& change, const std::string* after,
                    bool was_changed_since, problem& why) {
  if (has_left(change, after)) return true;
  if (was_changed_since) return damaged_record(record, why);
  return why = altered_thing(change.what, change.name, record), false;
}

// Takes the change of a record back. False where the state after it is not the one that it left.
static bool take_back(int64_t record, const journal_change& change, bool is_newest,
                      past_thing& thing, problem& why) {
  const std::string* after = thing.state ? &*thing.state : nullptr;
  if (!must_have_left(record, change, after, !is_newest, why)) return false;
  if (change.how == change_how::FOUND) return ends_here(record, thing, why);
  if (!was_there(change)) return thing.state.reset(), true;
  std::string before;
  const bool fits = state_before(change, thing.state ? *thing.state : "", before);
  thing.state = std::move(before);
  return fits || damaged_record(record, why);
}

bool look_back(store& store, const database_row& stored, int64_t number, past& found, problem& why,
               const std::set<std::string>* keys) {
  way_back way;
  past all;
  found.clear();
  if (!find_way(store, stored, number, way, why)) return false;
  const bool reads_all = way.changes > MANY / static_cast<int64_t>(store.look_up_cost);
  if (reads_all && !read_present(store, stored.id, all, why)) return false;
  bool is_sound = true;
  const auto back = [&](int64_t record, const journal_change& change) {
    const std::string key = thing_key(change.what, change.name);
    if (way.records.count(record) == 0 || (keys != nullptr && keys->count(key) == 0)) return true;
    const auto [at, is_new] = found.try_emplace(key);
    is_sound =
        !is_new || state_now(store, stored.id, change, reads_all ? &all : nullptr, at->second, why);
    is_sound = is_sound && take_back(record, change, is_new, at->second, why);
    return is_sound;
  };
  const journal_range range{number + 1, std::numeric_limits<int64_t>::max(), true};
  return walk_changes(store, range, back, why) && is_sound;
}

namespace {

// Past fields with their rows, which borrow from the texts.
struct kept_field {
  std::string state;
  field_row row{};
};

}  // namespace

bool past_fields(store& store, int64_t database, const past& at, visitor<field_row> visitor,
                 problem& why) {
  std::list<kept_field> kept;  // short texts would move with what holds them
  for (const auto& [key, thing] : at) {
    if (key[0] == static_cast<char>(change_of::FIELD) && thing.state)
      kept.push_back({*thing.state});
  }
  for (kept_field& field : kept) {
    if (!read_field_state(field.state, field.row)) return damaged_record(0, why);
  }
  kept.sort([](const kept_field& a, const kept_field& b) { return a.row.number < b.row.number; });
  auto next = kept.begin();
  bool goes_on = true;
  const auto give_to = [&](int64_t number) {
    while (goes_on && next != kept.end() && next->row.number <= number) {
      goes_on = visitor.call(visitor.context, (next++)->row);
    }
    return goes_on;
  };
  auto merge = [&](const field_row& row) {
    if (at.count(thing_key(change_of::FIELD, row.name)) != 0) return true;
    return give_to(row.number) && (goes_on = visitor.call(visitor.context, row));
  };
  if (!store.calls->fields(&store, database, {}, visit<field_row>(merge), why)) return false;
  return give_to(std::numeric_limits<int64_t>::max()), true;
}

bool past_classes(store& store, int64_t database, const past& at, visitor<class_row> visitor,
                  problem& why) {
  const std::string first(1, static_cast<char>(change_of::CLASS));
  auto next = at.lower_bound(first);
  const auto last = at.lower_bound(std::string(1, static_cast<char>(first[0] + 1)));
  bool goes_on = true;
  // Gives the past classes before the key, and at it.
  const auto give_to = [&](const std::string* key) {
    for (; goes_on && next != last && (key == nullptr || next->first <= *key); ++next) {
      const past_thing& thing = next->second;
      if (!thing.state) continue;
      const class_row row{0, next->first.c_str() + 1, thing.name.c_str(), 0, thing.state->c_str()};
      goes_on = visitor.call(visitor.context, row);
    }
    return goes_on;
  };
  auto merge = [&](const class_row& row) {
    const std::string key = thing_key(change_of::CLASS, row.name);
    const bool is_past = at.count(key) != 0;
    return give_to(&key) && (is_past || (goes_on = visitor.call(visitor.context, row)));
  };
  if (!store.calls->classes(&store, database, {}, visit<class_row>(merge), why)) return false;
  return give_to(nullptr), true;
}

}  // namespace dm
