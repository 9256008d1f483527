// The interface between the operations and the engine that keeps a dictionary: a record of
// functions.
//
// Conventions: a call that fails gives false and says why in the problem; texts in rows are
// borrowed and valid until the visitor returns. A database is named by its row id.
#ifndef DM_STORE_H
#define DM_STORE_H

#include <functional>
#include <memory>
#include <span>
#include <string_view>

#include "dm/journal/record.h"
#include "dm/problem.h"

namespace dm {

struct database_row {
  int64_t id;
  uint64_t number;
  int64_t counter;  // number of writes; each write raises it and stamps its rows with the new value
};

// The highest counter, stamp and row id that counts as sound: no dictionary reaches it in use, and
// adding to it does not overflow.
inline constexpr int64_t HIGHEST_COUNTER = int64_t{1} << 62;
inline constexpr int64_t HIGHEST_ROW_ID = HIGHEST_COUNTER;

// A deployment writes twice: its fields, then its classes. The counter must have room for both
// before the first, or the deployment would fail halfway.
inline constexpr int64_t WRITES_OF_A_DEPLOYMENT = 2;

inline bool has_room(int64_t counter, int64_t writes) {
  return counter >= 0 && counter <= HIGHEST_COUNTER - writes;
}
// The problem of a database whose counter cannot be raised.
problem damaged_counter(uint64_t number);

struct field_row {  // choice KEYS gives name and type only
  const char* name;
  int32_t number;
  int32_t type;
  const char* descr;  // null: never given
  int32_t flags;      // 0: none
  int64_t stamp;
  const char* key = nullptr;  // as it is stored; null unless the choice is WITH_KEYS
};

struct class_row {
  int64_t id;
  const char* key;  // the folded name
  const char* name;
  int64_t stamp;
  const char* definition;  // JSON; null for the choices KEYS and KEYS_BELOW
};

struct table_row {
  const char* key;  // the folded name
  const char* name;
  int64_t class_id;
};

// Called with each row in turn. False ends the reading, which then counts as successful.
template <class Row>
struct visitor {
  bool (*call)(void* context, const Row& row);
  void* context;
};

// A visitor that calls a callable (borrowed).
template <class Row, class Call>
visitor<Row> visit(Call& call) {
  return {[](void* context, const Row& row) { return (*static_cast<Call*>(context))(row); }, &call};
}

// Which rows to read. Fields come in ascending number, classes and tables in ascending key. KEYS
// and KEYS_BELOW give the rows of ALL and BELOW, but only their small columns. WITH_KEYS: all
// fields, with the keys that they are stored under. MENTIONING: in any order, every class whose
// definition holds that name, and others besides: the engine searches the stored texts, which costs
// less than reading them as definitions. An empty name: all classes.
struct choice {
  enum kind { ALL, NAMED, NUMBERED, BELOW, KEYS, KEYS_BELOW, WITH_KEYS, MENTIONING } which = ALL;
  const char* name = nullptr;  // NAMED, MENTIONING, in any case; BELOW, KEYS_BELOW: the class above
  int32_t number = 0;          // NUMBERED
};

enum class counted { FIELDS, CLASSES };

struct store;

struct store_calls {
  // Ends the connection; an open transaction is rolled back.
  void (*close)(store*);
  // The dictionary's name for messages, which never holds a password. Borrowed.
  const char* (*name)(store*);
  // Whether the store takes writes at all.
  bool (*writeable)(store*);
  int (*schema_version)(store*);

  // Begins a transaction. A reading one sees one snapshot. A writing one shuts out other writers;
  // it waits for one at work, but not for ever (TAV_ERR_BUSY). Where none is open, rollback does
  // nothing.
  bool (*begin)(store*, bool write, problem&);
  bool (*commit)(store*, problem&);
  void (*rollback)(store*);

  // The calls below need an open transaction. A write may be sent to the engine later than its
  // call, but before the next read and before the commit: then it is that call which fails.
  bool (*databases)(store*, visitor<database_row>, problem&);
  bool (*fields)(store*, int64_t database, const choice&, visitor<field_row>, problem&);
  bool (*classes)(store*, int64_t database, const choice&, visitor<class_row>, problem&);
  bool (*tables)(store*, int64_t database, const choice&, visitor<table_row>, problem&);
  bool (*count)(store*, int64_t database, counted, int64_t& rows, problem&);
  // What the whole dictionary takes, in bytes.
  bool (*size)(store*, int64_t& bytes, problem&);

  bool (*add_database)(store*, uint64_t number, int64_t& id, problem&);
  bool (*set_counter)(store*, int64_t database, int64_t counter, problem&);
  bool (*add_fields)(store*, int64_t database, std::span<const field_row>, problem&);
  // Sets description and stamp of the field with the row's number.
  bool (*set_description)(store*, int64_t database, const field_row&, problem&);
  bool (*delete_field)(store*, int64_t database, int32_t number, problem&);
  // Adds the class if its id is 0, and sets the id; else replaces its definition and stamp.
  bool (*put_class)(store*, int64_t database, class_row&, problem&);
  // Deletes the class with the row's id. No table may be its any more.
  bool (*delete_class)(store*, int64_t database, const class_row&, problem&);
  bool (*add_table)(store*, int64_t database, const table_row&, problem&);
  bool (*delete_table)(store*, int64_t database, const char* name, problem&);
  // Deletes the database with all its rows. What the journal tells of it stays.
  bool (*delete_database)(store*, int64_t database, problem&);

  // The journal (dm/journal/record.h), which a dictionary of schema version 1 does not have. The
  // engine refuses to change or delete what is in it; records are added in ascending numbers.
  // Parts come in the order of records and then of parts, also where the range begins with the
  // newest.
  bool (*identity)(store*, std::string& identity, problem&);
  bool (*set_identity)(store*, const std::string& identity, problem&);  // once
  bool (*journal_end)(store*, journal_head&, problem&);
  bool (*journal)(store*, const journal_range&, visitor<journal_record>, problem&);
  bool (*journal_parts)(store*, const journal_range&, visitor<journal_part>, problem&);
  bool (*add_record)(store*, const journal_record&, problem&);
  bool (*add_part)(store*, const journal_part&, problem&);
  // Deletes the records with lower numbers, and their parts: the one way to do so.
  bool (*forget_records)(store*, int64_t before, problem&);
  // Makes the tables of the newest schema version in a dictionary of an older one that was opened
  // for that (open_options), in the open write transaction.
  bool (*upgrade)(store*, problem&);

  // Tests what the rows above do not show: the engine's own integrity, tables and triggers that are
  // not as it makes them, values that a row cannot hold. Gives one sentence for each fault.
  bool (*integrity)(store*, visitor<std::string_view>, problem&);
};

// An open store; each engine derives its own record from it.
struct store {
  const store_calls* calls;
  // The cost of one look-up, where that of a local file is 1. On a server each is a round trip, so
  // that reading all rows pays sooner.
  uint32_t look_up_cost = 1;
};

// How long a store may wait.
struct open_options {
  int busy_milliseconds = 10000;  // how long to wait for other writers, in all
  int answer_milliseconds = 0;    // how long a server may be silent; 0: what the settings say
  bool may_upgrade = false;       // whether one of an older schema version may be written
};

struct close_store {
  void operator()(store* opened) const { opened->calls->close(opened); }
};
// Whether the dictionary has a journal; those of schema version 1 have none.
bool has_journal(store& store);

using store_owner = std::unique_ptr<store, close_store>;

// Writes the content of a new dictionary into its open transaction; false with the reason.
using fill_store = std::function<bool(store&, problem&)>;

}  // namespace dm

#endif
