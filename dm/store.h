// What stands between the operations and the engine that keeps a dictionary: a record of functions.
//
// Conventions: a call that fails gives false and says why in the problem; texts in rows are
// borrowed and valid until the visitor returns. A database is named by its row id.
#ifndef DM_STORE_H
#define DM_STORE_H

#include <functional>
#include <memory>
#include <span>
#include <string_view>

#include "dm/problem.h"

namespace dm {

struct database_row {
  int64_t id;
  uint64_t number;
  int64_t counter;  // stamped on what a write changes, and raised by each write
};

// The highest counter, stamp and row id: more than there will be, and far from where the next would
// overflow.
inline constexpr int64_t HIGHEST_COUNTER = int64_t{1} << 62;
inline constexpr int64_t HIGHEST_ROW_ID = HIGHEST_COUNTER;

// A deployment writes its fields and then its classes. There is room for both before the first is
// written, or it would end in the middle.
inline constexpr int64_t WRITES_OF_A_DEPLOYMENT = 2;

inline bool has_room(int64_t counter, int64_t writes) {
  return counter >= 0 && counter <= HIGHEST_COUNTER - writes;
}
// Why a database whose counter cannot be raised is not used.
problem damaged_counter(uint64_t number);

struct field_row {  // read for its key only: name and type
  const char* name;
  int32_t number;
  int32_t type;
  const char* descr;  // null: never given
  int32_t flags;      // 0: none
  int64_t stamp;
  const char* key = nullptr;  // as it is stored; null where it was not asked for
};

struct class_row {
  int64_t id;
  const char* key;  // the folded name
  const char* name;
  int64_t stamp;
  const char* definition;  // JSON; null in a row read for its key only
};

struct table_row {
  const char* key;  // the folded name
  const char* name;
  int64_t class_id;
};

// Called with each row that was asked for; false ends the reading (which then succeeds).
template <class Row>
struct visitor {
  bool (*call)(void* context, const Row& row);
  void* context;
};

// A visitor from a callable, which the caller keeps.
template <class Row, class Call>
visitor<Row> visit(Call& call) {
  return {[](void* context, const Row& row) { return (*static_cast<Call*>(context))(row); }, &call};
}

// Which rows. Fields come in ascending number, classes and tables in ascending key. WITH_KEYS: all
// fields, and the keys that they are found by. MENTIONING: in any order, every class whose
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
  // What the dictionary is called when people are told of it: never with a password. Borrowed.
  const char* (*name)(store*);
  // Whether the store takes writes at all.
  bool (*writeable)(store*);
  int (*schema_version)(store*);

  // One snapshot for what is read up to the end; or, for a write, alone in the dictionary, waiting
  // for another writer (busy after a while).
  bool (*begin)(store*, bool write, problem&);
  bool (*commit)(store*, problem&);
  void (*rollback)(store*);

  // What is read and written stands between begin and commit or rollback. Rows may reach the engine
  // later than their call, but before what is read next, and before the commit: its refusal of one
  // may come then.
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
  bool (*set_description)(store*, int64_t database, const field_row&, problem&);
  bool (*delete_field)(store*, int64_t database, int32_t number, problem&);
  // Adds the class (id 0; gives its id) or replaces its definition.
  bool (*put_class)(store*, int64_t database, class_row&, problem&);
  bool (*add_table)(store*, int64_t database, const table_row&, problem&);
  bool (*delete_table)(store*, int64_t database, const char* name, problem&);

  // The engine's own test of what it keeps, and of what only it sees: tables and guards that are
  // not as it makes them, values that rows cannot hold. One sentence for each fault.
  bool (*integrity)(store*, visitor<std::string_view>, problem&);
};

// An open store; an engine's own record begins with it.
struct store {
  const store_calls* calls;
  // What one look-up costs, in those of a file on this machine: on a server each is a round trip,
  // and reading all pays sooner.
  uint32_t look_up_cost = 1;
};

// How to open one.
struct open_options {
  int busy_milliseconds = 10000;  // how long to wait for other writers, in all
  int answer_milliseconds = 0;    // how long a server may be silent; 0: what the settings say
};

struct close_store {
  void operator()(store* opened) const { opened->calls->close(opened); }
};
using store_owner = std::unique_ptr<store, close_store>;

// Writes what a new dictionary holds; false with the reason.
using fill_store = std::function<bool(store&, problem&)>;

}  // namespace dm

#endif
