// Opening a dictionary, transactions, closing.
#include <cstdlib>
#include <cstring>

#include "dm/postgres/line.h"
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
  return postgres_of(base).refusal.empty() && !postgres_of(base).is_outdated;
}

static int postgres_version(store* base) {
  return postgres_of(base).version;
}

static void postgres_rollback(store* base) {
  postgres_store& store = postgres_of(base);
  collect_rows(store);
  drop_batches(store);
  store.has_compression = false;
  store.needs_guards = false;
  store.kept = postgres_kept();
  store.is_writing = false;
  store.last_class = 0;
  if (is_lost(store) || PQtransactionStatus(store.connection) == PQTRANS_IDLE) return;
  if (send_message(store, "ROLLBACK", nullptr)) take_answer(store);
}

// Begins a write transaction. It locks the row of dd_schema, so that there is one writer at a time;
// readers do not need that row's lock. Keepalives make the server drop a client machine that fell
// silent, and its lock, within a minute. synchronous_commit is switched on if the server has it
// off, so that a commit is on disk when it returns.
static bool lock(postgres_store& store, problem& why) {
  static constexpr char PREPARE[] =
      "SELECT set_config('tcp_keepalives_idle', '30', true),"
      " set_config('tcp_keepalives_interval', '10', true),"
      " set_config('tcp_keepalives_count', '3', true), CASE current_setting('synchronous_commit')"
      " WHEN 'off' THEN set_config('synchronous_commit', 'on', true) END;";
  const std::string statements =
      join({"BEGIN ISOLATION LEVEL READ COMMITTED READ WRITE;", limit_waiting(store), PREPARE,
            "SELECT version FROM dd_schema FOR UPDATE"});
  const result_owner locked = execute(store, statements, why);
  if (locked == nullptr) return false;
  spend_patience(store);
  // If row security hid the row, nothing would be locked and two could write at once.
  if (PQntuples(locked.get()) != 1) {
    return postgres_refuse(store, TAV_ERR_STORAGE, ROWS_SWALLOWED, why);
  }
  store.version = std::atoi(PQgetvalue(locked.get(), 0, 0));  // it may have been upgraded
  return true;
}

// Row security that keeps rows away from the role is an error then: an export or a backup without
// them would look whole.
static bool begin_snapshot(postgres_store& store, problem& why) {
  const std::string statements = join({"BEGIN ISOLATION LEVEL REPEATABLE READ READ ONLY;",
                                       "SET LOCAL row_security = off;", limit_waiting(store)});
  return execute(store, statements, why) != nullptr;
}

static bool postgres_begin(store* base, bool write, problem& why) try {
  postgres_store& store = postgres_of(base);
  if (!write) return begin_snapshot(store, why);
  if (store.is_outdated) return needs_upgrade(store.name, store.version, why);
  if (!store.refusal.empty()) {
    return postgres_refuse(store, TAV_ERR_WRITE_REFUSED, store.refusal, why);
  }
  store.is_writing = true;
  if (lock(store, why)) return true;
  postgres_rollback(base);
  return false;
} catch (const std::bad_alloc&) {
  postgres_rollback(base);
  throw;
}

static bool postgres_commit(store* base, problem& why) {
  postgres_store& store = postgres_of(base);
  if (!flush(store, why) || !settle(store, why) || !make_guards(store, why)) return false;
  const bool is_sent = send_message(store, "COMMIT", nullptr);
  const result_owner result = is_sent ? take_answer(store, silence::IS_THE_END) : nullptr;
  // Without the server's own answer (the connection is lost, or memory to receive it ran out) the
  // commit may or may not have been carried out.
  const bool is_refused = PQresultErrorField(result.get(), PG_DIAG_SQLSTATE) != nullptr;
  const bool is_done = PQresultStatus(result.get()) == PGRES_COMMAND_OK;
  if (is_lost(store) || (!is_done && !is_refused)) {
    return outcome_unknown(store.name, "the connection was lost while the changes were committed",
                           "export the dictionary and look before running again", last_words(store),
                           why);
  }
  if (!is_done) return postgres_failed(store, result.get(), why);
  // To COMMIT after a failed statement the server answers ROLLBACK, without an error.
  const bool committed = std::strcmp(PQcmdStatus(result.get()), "COMMIT") == 0;
  postgres_rollback(base);
  return committed || postgres_refuse(store, TAV_ERR_STORAGE,
                                      "the server rolled the changes back instead of committing "
                                      "them; nothing is stored",
                                      why);
}

const store_calls POSTGRES_CALLS = {
    .close = postgres_close,
    .name = postgres_name,
    .writeable = postgres_writeable,
    .schema_version = postgres_version,
    .begin = postgres_begin,
    .commit = postgres_commit,
    .rollback = postgres_rollback,
    .databases = postgres_databases,
    .fields = postgres_fields,
    .classes = postgres_classes,
    .tables = postgres_tables,
    .count = postgres_count,
    .size = postgres_size,
    .add_database = postgres_add_database,
    .set_counter = postgres_set_counter,
    .add_fields = postgres_add_fields,
    .set_description = postgres_set_description,
    .delete_field = postgres_delete_field,
    .put_class = postgres_put_class,
    .delete_class = postgres_delete_class,
    .add_table = postgres_add_table,
    .delete_table = postgres_delete_table,
    .delete_database = postgres_delete_database,
    .identity = postgres_identity,
    .set_identity = postgres_set_identity,
    .journal_end = postgres_journal_end,
    .journal = postgres_journal,
    .journal_parts = postgres_journal_parts,
    .add_record = postgres_add_record,
    .add_part = postgres_add_part,
    .forget_records = postgres_forget_records,
    .upgrade = postgres_upgrade,
    .integrity = postgres_integrity,
};

static bool read_version(postgres_store& store, problem& why) {
  const std::string statements = join({limit_waiting(store), "SELECT version FROM dd_schema"});
  const result_owner found = execute(store, statements, why);
  if (found == nullptr) return false;
  if (PQntuples(found.get()) == 0) {
    return postgres_damaged(store, IS_INCOMPLETE, why);
  }
  store.version = std::atoi(PQgetvalue(found.get(), 0, 0));
  return true;
}

// Whether this program reads the version. One that is older is not written.
static bool takes_version(postgres_store& store, problem& why) {
  if (store.version == SCHEMA_VERSION || (is_known_version(store.version) && store.may_upgrade)) {
    return true;
  }
  if (is_known_version(store.version)) return store.is_outdated = true;
  why.code = TAV_ERR_STORAGE;
  why.is_damage = true;
  why.sentence = join({"Dictionary ", quoted(store.name), other_version(store.version)});
  return false;
}

store_owner open_postgres(const std::string& where, const open_options& options, problem& why) {
  store_owner owner = connect_postgres(where, options, why);
  if (owner == nullptr) return nullptr;
  postgres_store& store = postgres_of(owner.get());
  store.may_upgrade = options.may_upgrade;
  const bool is_usable =
      read_privileges(store, why) && read_version(store, why) && takes_version(store, why);
  return is_usable ? std::move(owner) : nullptr;
}

}  // namespace dm
