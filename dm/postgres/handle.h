// The PostgreSQL engine's own side of a store: its connection, statements, errors.
#ifndef DM_POSTGRES_HANDLE_H
#define DM_POSTGRES_HANDLE_H

#include <libpq-fe.h>

#include <chrono>
#include <deque>
#include <memory>
#include <vector>

#include "dm/postgres/batch.h"
#include "dm/postgres/kept.h"
#include "dm/store.h"

namespace dm {

struct clear_result {
  void operator()(PGresult* result) const { PQclear(result); }
};
using result_owner = std::unique_ptr<PGresult, clear_result>;

struct finish_connection {
  void operator()(PGconn* connection) const { PQfinish(connection); }
};
using connection_owner = std::unique_ptr<PGconn, finish_connection>;

using steady = std::chrono::steady_clock;

class postgres_rows;

struct postgres_store : store {
  PGconn* connection = nullptr;
  std::string where;     // the entry of tav.conf: may hold a password
  std::string name;      // for messages: database, host, port, role
  std::string refusal;   // why writes are refused; empty: they are not
  std::string grants;    // SQL that would let the role read it; empty: it may
  std::string given_up;  // why the connection was given up; empty: it was not
  open_options options;
  std::chrono::milliseconds patience{0};  // how long this store may still wait for other writers
  steady::time_point asked;               // when the last message was sent
  int version = 0;
  bool is_writing = false;
  bool is_outdated = false;   // it has an older schema version, and is read only
  bool may_upgrade = false;   // it may be written although its schema version is an older one
  bool needs_guards = false;  // its journal's guards are to be made before the commit
  postgres_rows* fetching = nullptr;  // has asked for rows that were not taken in yet
  unsigned cursors = 0;               // opened so far
  int64_t last_class = 0;             // highest id in use; 0: not asked for in this transaction
  postgres_batch batch{};
  std::deque<batch_statement> sent{};  // of the batch before, the first on its way
  bool has_compression = false;        // chosen in this transaction
  postgres_kept kept{};
};

inline postgres_store& postgres_of(store* base) {
  return *static_cast<postgres_store*>(base);
}

// The parameters of a statement, $1 first. Values are copied.
class parameters {
 public:
  template <class... Values>
  explicit parameters(const Values&... values) {
    (add(values), ...);
  }
  parameters(const parameters&) = delete;
  parameters& operator=(const parameters&) = delete;

  void add(int64_t value) { keep(std::to_string(value), 0); }
  // Null is NULL.
  void add(const char* text);
  void add(const std::string& text) { keep(text, 0); }
  // In the protocol's binary form.
  void add_binary(std::string bytes) { keep(std::move(bytes), 1); }

  int count() const { return static_cast<int>(values_.size()); }
  const char* const* values() const { return values_.data(); }
  const int* lengths() const { return lengths_.data(); }
  const int* formats() const { return formats_.data(); }

 private:
  void keep(std::string text, int format);
  std::deque<std::string> texts_;
  std::vector<const char*> values_;
  std::vector<int> lengths_, formats_;
};

// Carries out one statement and gives its whole result; null and the reason when it fails.
result_owner execute(postgres_store& store, const std::string& sql, const parameters& with,
                     problem& why);
// Carries out statements and gives the result of the last.
result_owner execute(postgres_store& store, const std::string& sql, problem& why);
// Carries out a statement that must change exactly `rows` rows.
bool change_rows(postgres_store& store, const std::string& sql, const parameters& with,
                 uint64_t rows, problem& why);
// Whether a statement has changed so many rows.
bool has_changed(postgres_store& store, const PGresult* result, uint64_t rows, problem& why);
// Takes in rows that a cursor was asked for.
void collect_rows(postgres_store& store);
// The same, and takes in what the server says to batches, so that the
// connection is free for a statement.
bool settle(postgres_store& store, problem& why);
// A statement that limits how long later statements of the transaction may wait for locks.
std::string limit_waiting(const postgres_store& store);
// Subtracts the time since the last message was sent from `patience`.
void spend_patience(postgres_store& store);

// Turns a failed result (null: none came) into a problem; gives false. The only place that does.
bool postgres_failed(postgres_store& store, const PGresult* result, problem& why);
bool postgres_refuse(const postgres_store& store, int32_t code, std::string_view advice,
                     problem& why);
// The same for a fault of what the dictionary holds: storage failure, damage.
bool postgres_damaged(const postgres_store& store, std::string_view advice, problem& why);

// The engine's words in one line.
std::string one_line(const char* text);
// The SQL text of a query, with parameters as this engine writes them.
std::string postgres_text(const std::string& text);

// Connects; none with the reason.
store_owner connect_postgres(const std::string& where, const open_options& options, problem& why);
// Begins to connect once more, to the very server that the store is connected with.
PGconn* connect_beside(const postgres_store& store);
// Whether there is a dictionary, and what the role may do with it; false where it can do nothing.
bool read_privileges(postgres_store& store, problem& why);
// Whether there is a dictionary in a schema that the role may not use, or the question failed.
bool is_hidden(postgres_store& store, problem& why);
// Makes what is due of the journal's guards.
bool make_guards(postgres_store& store, problem& why);
// What the module offers.
store_owner open_postgres(const std::string& where, const open_options& options, problem& why);
store_owner begin_new_postgres(const std::string& where, const open_options& options, problem& why);

// Calls of the record.
bool postgres_databases(store*, visitor<database_row>, problem&);
bool postgres_fields(store*, int64_t, const choice&, visitor<field_row>, problem&);
bool postgres_classes(store*, int64_t, const choice&, visitor<class_row>, problem&);
bool postgres_tables(store*, int64_t, const choice&, visitor<table_row>, problem&);
bool postgres_count(store*, int64_t, counted, int64_t&, problem&);
bool postgres_size(store*, int64_t&, problem&);
bool postgres_integrity(store*, visitor<std::string_view>, problem&);
bool postgres_add_database(store*, uint64_t, int64_t&, problem&);
bool postgres_set_counter(store*, int64_t, int64_t, problem&);
bool postgres_add_fields(store*, int64_t, std::span<const field_row>, problem&);
bool postgres_set_description(store*, int64_t, const field_row&, problem&);
bool postgres_delete_field(store*, int64_t, int32_t, problem&);
bool postgres_put_class(store*, int64_t, class_row&, problem&);
bool postgres_delete_class(store*, int64_t, const class_row&, problem&);
bool postgres_add_table(store*, int64_t, const table_row&, problem&);
bool postgres_delete_table(store*, int64_t, const char*, problem&);
bool postgres_delete_database(store*, int64_t, problem&);
bool postgres_identity(store*, std::string&, problem&);
bool postgres_set_identity(store*, const std::string&, problem&);
bool postgres_journal_end(store*, journal_head&, problem&);
bool postgres_journal(store*, const journal_range&, visitor<journal_record>, problem&);
bool postgres_journal_parts(store*, const journal_range&, visitor<journal_part>, problem&);
bool postgres_add_record(store*, const journal_record&, problem&);
bool postgres_add_part(store*, const journal_part&, problem&);
bool postgres_forget_records(store*, int64_t, problem&);
bool postgres_upgrade(store*, problem&);

extern const store_calls POSTGRES_CALLS;

}  // namespace dm

#endif
