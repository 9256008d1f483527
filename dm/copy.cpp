#include "dm/copy.h"

#include <unordered_map>
#include <vector>

#include "dm/journal/begin.h"
#include "dm/rules/class_world.h"
#include "dm/schema.h"

namespace dm {

namespace {

// The copying of one database.
struct passage {
  store &from, &to;
  int64_t source, target;  // row ids of the database
  const std::function<void()>& copied;
  problem& why;
};

}  // namespace

// Gives each row that `read` visits to `write`, up to the first that fails.
template <class Row, class Read, class Write>
static bool pass(passage& p, Read read, Write write) {
  bool written = true;
  auto next = [&](const Row& row) {
    written = write(row);
    p.copied();
    return written;
  };
  return read(&p.from, p.source, choice(), visit<Row>(next), p.why) && written;
}

static bool copy_fields(passage& p) {
  return pass<field_row>(p, p.from.calls->fields, [&](const field_row& row) {
    return p.to.calls->add_fields(&p.to, p.target, {&row, 1}, p.why);
  });
}

// Reads each definition too: a copy of one that cannot be read would be useless.
static bool copy_classes(passage& p, std::unordered_map<int64_t, int64_t>& new_ids) {
  class_reader reader;
  class_def definition;
  dd_flist list;
  return pass<class_row>(p, p.from.calls->classes, [&](const class_row& row) {
    if (!load_class(reader, row, list, definition, p.why)) return false;
    class_row copy = row;
    copy.id = 0;
    if (!p.to.calls->put_class(&p.to, p.target, copy, p.why)) return false;
    new_ids[row.id] = copy.id;
    return true;
  });
}

static bool copy_tables(passage& p, const std::unordered_map<int64_t, int64_t>& new_ids) {
  return pass<table_row>(p, p.from.calls->tables, [&](const table_row& row) {
    const auto id = new_ids.find(row.class_id);
    if (id != new_ids.end()) {
      return p.to.calls->add_table(&p.to, p.target, {row.key, row.name, id->second}, p.why);
    }
    p.why.code = TAV_ERR_STORAGE;
    p.why.sentence = join({"Table ", quoted(row.name),
                           " belongs to no class of its database; see 'tav_dict check'."});
    return false;
  });
}

static bool copy_database(store& from, store& to, const database_row& row,
                          const std::function<void()>& copied, problem& why) {
  if (!has_room(row.counter, 0)) return why = damaged_counter(row.number), false;
  passage p{from, to, row.id, 0, copied, why};
  std::unordered_map<int64_t, int64_t> new_ids;
  return to.calls->add_database(&to, row.number, p.target, why) && copy_fields(p) &&
         copy_classes(p, new_ids) && copy_tables(p, new_ids) &&
         to.calls->set_counter(&to, p.target, row.counter, why);
}

static bool copy_parts(store& from, store& to, problem& why) {
  bool written = true;
  auto copy = [&](const journal_part& part) {
    return written = to.calls->add_part(&to, part, why);
  };
  return from.calls->journal_parts(&from, {}, visit<journal_part>(copy), why) && written;
}

static bool copy_journal(store& from, store& to, problem& why) {
  bool written = true;
  auto copy = [&](const journal_record& record) {
    return written = to.calls->add_record(&to, record, why);
  };
  return from.calls->journal(&from, {}, visit<journal_record>(copy), why) && written &&
         copy_parts(from, to, why);
}

bool copy_dictionary(store& from, store& to, const std::function<void()>& copied, problem& why) {
  std::vector<database_row> databases;
  auto note = [&](const database_row& row) { return databases.push_back(row), true; };
  if (!from.calls->databases(&from, visit<database_row>(note), why)) return false;
  for (const database_row& row : databases) {
    if (!copy_database(from, to, row, copied, why)) return false;
  }
  return !has_journal(from) || copy_journal(from, to, why);
}

bool copy_identity(store& from, store& to, problem& why) {
  std::string identity;
  return !has_journal(from) ||
         (from.calls->identity(&from, identity, why) && to.calls->set_identity(&to, identity, why));
}

// What a dictionary without a journal holds is noted like the content of an upgraded one.
bool begin_restored(store& from, store& to, problem& why) {
  journal_run run;
  std::string origin;
  const bool is_known = has_journal(from);
  if (is_known && !from.calls->identity(&from, origin, why)) return false;
  return begin_journal(to, journal_kind::RESTORE, origin, run, why) &&
         (is_known || note_present(to, journal_kind::RESTORE, run, why));
}

}  // namespace dm
