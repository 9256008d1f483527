// Opening a dictionary, transactions, closing.
#include <algorithm>
#include <cstring>

#include "dm/postgres/postgres_rows.h"
#include "dm/schema.h"

namespace dm {

static void postgres_close(store* base) {
  postgres_store* store = &postgres_of(base);
  PQfinish(store->connection);
  delete store;
}

static const char* postgres_name(store* base) {
  return postgres_of(base).name.c_str();
}

static bool postgres_writeable(store* base) {
  return postgres_of(base).refusal.empty();
}

static int postgres_version(store* base) {
  return postgres_of(base).version;
}

static void postgres_rollback(store* base) {
  postgres_store& store = postgres_of(base);
  settle(store);
  store.batch = postgres_batch();
  store.kept = postgres_kept();
  store.is_writing = false;
  store.last_class = 0;
  if (PQtransactionStatus(store.connection) == PQTRANS_IDLE) return;
  PQclear(PQexec(store.connection, "ROLLBACK"));
}

// Whoever holds the row of dd_schema is alone in writing; readers do not look at its lock. A
// machine that fell silent holds it for a minute, not for hours. What is committed is on the
// server's disk, even where it is set up to be careless.
static bool lock(postgres_store& store, problem& why) {
  static constexpr char PREPARE[] =
      "SELECT set_config('lock_timeout', $1, true), set_config('tcp_keepalives_idle', '30', true),"
      " set_config('tcp_keepalives_interval', '10', true),"
      " set_config('tcp_keepalives_count', '3', true), CASE current_setting('synchronous_commit')"
      " WHEN 'off' THEN set_config('synchronous_commit', 'on', true) END";
  // 0 would be no limit.
  const parameters wait(std::max(int64_t{1}, int64_t{store.options.busy_milliseconds}));
  return run(store, "BEGIN ISOLATION LEVEL READ COMMITTED READ WRITE", why) &&
         execute(store, PREPARE, wait, why) != nullptr &&
         execute(store, "SELECT version FROM dd_schema FOR UPDATE", parameters(), why) != nullptr;
}

static bool postgres_begin(store* base, bool write, problem& why) try {
  postgres_store& store = postgres_of(base);
  if (!write) return run(store, "BEGIN ISOLATION LEVEL REPEATABLE READ READ ONLY", why);
  if (!store.refusal.empty()) {
    return postgres_refuse(store, TAV_ERR_WRITE_REFUSED, store.refusal, why);
  }
  store.is_writing = lock(store, why);
  if (!store.is_writing) postgres_rollback(base);
  return store.is_writing;
} catch (const std::bad_alloc&) {
  postgres_rollback(base);
  throw;
}

static bool postgres_commit(store* base, problem& why) {
  postgres_store& store = postgres_of(base);
  if (!flush(store, why)) return false;
  settle(store);
  const result_owner result(PQexec(store.connection, "COMMIT"));
  // No answer of the server's: it is lost, or there was no memory to receive it. The commit may
  // have been carried out.
  const bool is_refused = PQresultErrorField(result.get(), PG_DIAG_SQLSTATE) != nullptr;
  const bool is_done = PQresultStatus(result.get()) == PGRES_COMMAND_OK;
  if (PQstatus(store.connection) == CONNECTION_BAD || (!is_done && !is_refused)) {
    return outcome_unknown(store.name, "the connection was lost while the changes were committed",
                           one_line(PQerrorMessage(store.connection)), why);
  }
  if (!is_done) return postgres_failed(store, result.get(), why);
  // A transaction that an error has ended is rolled back instead, which is no error to the server.
  const bool committed = std::strcmp(PQcmdStatus(result.get()), "COMMIT") == 0;
  postgres_rollback(base);
  return committed || postgres_refuse(store, TAV_ERR_STORAGE,
                                      "the server rolled the changes back instead of committing "
                                      "them; nothing is stored",
                                      why);
}

const store_calls POSTGRES_CALLS = {
    postgres_close,        postgres_name,        postgres_writeable,  postgres_version,
    postgres_begin,        postgres_commit,      postgres_rollback,   postgres_databases,
    postgres_fields,       postgres_classes,     postgres_tables,     postgres_count,
    postgres_add_database, postgres_set_counter, postgres_add_fields, postgres_set_description,
    postgres_delete_field, postgres_put_class,   postgres_add_table,  postgres_delete_table,
    postgres_integrity,
};

// To deploy takes no right to add databases. Whoever may update one column may lock the row.
static constexpr char STATE[] = R"sql(
SELECT version, current_setting('transaction_read_only') = 'on',
       has_any_column_privilege('dd_schema', 'UPDATE') AND
       has_column_privilege('dd_databases', 'counter', 'UPDATE') AND
       (SELECT bool_and(has_table_privilege(t, p))
        FROM unnest(ARRAY['dd_fields', 'dd_classes', 'dd_tables']) t,
             unnest(ARRAY['SELECT', 'INSERT', 'UPDATE', 'DELETE']) p)
FROM dd_schema
)sql";

static bool is_true(const char* text) {
  return text != nullptr && *text == 't';
}

// The schema's version, and whether writes are taken at all.
static bool read_state(postgres_store& store, problem& why) {
  postgres_rows rows(store, STATE, parameters(), false, why);
  const postgres_rows::outcome outcome = rows.next();
  if (outcome == postgres_rows::FAILED) return false;
  if (outcome == postgres_rows::END) {
    return postgres_damaged(store, IS_INCOMPLETE, why);
  }
  store.version = static_cast<int>(rows.integer(0));
  if (is_true(rows.text(1))) {
    store.refusal = "the server takes no writes (it is a standby, or set to read only)";
  } else if (!is_true(rows.text(2))) {
    store.refusal =
        "the role may only read it; log in as one that may write, or grant it SELECT, INSERT, "
        "UPDATE and DELETE";
  }
  return true;
}

static bool is_known_version(const postgres_store& store, problem& why) {
  if (store.version == SCHEMA_VERSION) return true;
  why.code = TAV_ERR_STORAGE;
  why.is_damage = true;
  why.sentence = join({"Dictionary ", quoted(store.name), other_version(store.version)});
  return false;
}

static bool has_dictionary(postgres_store& store, problem& why) {
  const result_owner found =
      execute(store, "SELECT to_regclass('dd_schema') IS NOT NULL", parameters(), why);
  if (found == nullptr) return false;
  return is_true(PQgetvalue(found.get(), 0, 0)) ||
         postgres_refuse(store, TAV_ERR_NOT_FOUND,
                         "the database holds no dictionary; correct the entry 'dictionary' of "
                         "section [dm], or make it with 'tav_dict init'",
                         why);
}

store_owner open_postgres(const std::string& where, const open_options& options, problem& why) {
  store_owner owner = connect_postgres(where, why);
  if (owner == nullptr) return nullptr;
  postgres_store& store = postgres_of(owner.get());
  store.options = options;
  const bool is_usable =
      has_dictionary(store, why) && read_state(store, why) && is_known_version(store, why);
  return is_usable ? std::move(owner) : nullptr;
}

}  // namespace dm
