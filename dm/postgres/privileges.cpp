// What the role may do with a dictionary, and what to grant it where that is too little.
#include <cerrno>

#include "dm/postgres/handle.h"

namespace dm {

// Gives: whether a dictionary exists; whether the server takes reads only; the grants that the role
// lacks to read, and those that it lacks to read and write (NULL: none). Deploying needs no INSERT
// on dd_databases, and neither UPDATE nor DELETE on the journal. To lock the row of dd_schema it is
// enough to have UPDATE on one of its columns.
static constexpr char PRIVILEGES[] = R"sql(
WITH needed (table_name, privilege, column_name) AS (
  VALUES ('dd_schema', 'SELECT', NULL), ('dd_schema', 'UPDATE', 'is_one'),
         ('dd_databases', 'SELECT', NULL), ('dd_databases', 'UPDATE', 'counter'),
         ('dd_identity', 'SELECT', NULL)
  UNION ALL
  SELECT t, p, NULL FROM unnest(ARRAY['dd_fields', 'dd_classes', 'dd_tables']) t,
                         unnest(ARRAY['SELECT', 'INSERT', 'UPDATE', 'DELETE']) p
  UNION ALL
  SELECT t, p, NULL FROM unnest(ARRAY['dd_journal', 'dd_journal_changes']) t,
                         unnest(ARRAY['SELECT', 'INSERT']) p
), missing AS (
  SELECT quote_ident(nspname) || '.' || table_name AS name,
         privilege || COALESCE(' (' || column_name || ')', '') AS privilege
  FROM needed JOIN pg_class c ON c.oid = to_regclass(table_name)
       JOIN pg_namespace n ON n.oid = c.relnamespace
  WHERE NOT CASE WHEN column_name IS NULL THEN has_table_privilege(c.oid, privilege)
                 ELSE has_column_privilege(c.oid, column_name, privilege) END
), by_table (name, privileges) AS (
  SELECT name, string_agg(privilege, ', ' ORDER BY privilege) FROM missing GROUP BY name
), grants (statement) AS (
  SELECT 'GRANT ' || privileges || ' ON ' || string_agg(name, ', ' ORDER BY name) || ' TO '
         || quote_ident(current_user)
  FROM by_table GROUP BY privileges
)
SELECT to_regclass('dd_schema') IS NOT NULL, current_setting('transaction_read_only') = 'on',
       (SELECT 'GRANT SELECT ON ' || string_agg(name, ', ' ORDER BY name) || ' TO '
               || quote_ident(current_user) FROM missing WHERE privilege = 'SELECT'),
       (SELECT string_agg(statement, '; ' ORDER BY statement) FROM grants)
)sql";

static bool is_true(const char* text) {
  return *text == 't';
}

bool read_privileges(postgres_store& store, problem& why) {
  const result_owner found = execute(store, PRIVILEGES, parameters(), why);
  if (found == nullptr) return false;
  const auto value = [&](int column) { return PQgetvalue(found.get(), 0, column); };
  if (!is_true(value(0))) {
    return !is_hidden(store, why) &&
           postgres_refuse(store, TAV_ERR_NOT_FOUND,
                           "the database holds no dictionary; correct the entry 'dictionary' of "
                           "section [dm], or make it with 'tav_dict init'",
                           why);
  }
  store.grants = value(2);
  const std::string grants_to_write = value(3);
  if (is_true(value(1))) {
    store.refusal = "the server takes no writes (it is a standby, or set to read only)";
  } else if (!grants_to_write.empty()) {
    store.refusal =
        join({"the role may only read it; log in as one that may write, or let the owner say: ",
              grants_to_write});
  }
  return true;
}

// Finds a dictionary in a schema of the search path that the role may not use: to_regclass ignores
// such schemas.
static constexpr char HIDDEN[] = R"(
WITH path (place, entry) AS (
  SELECT place, trim(entry)
  FROM unnest(string_to_array(current_setting('search_path'), ',')) WITH ORDINALITY p (entry, place)
), schemas (place, name) AS (
  SELECT place, CASE WHEN entry = '"$user"' THEN current_user::TEXT
                     WHEN entry LIKE '"%' THEN replace(trim(BOTH '"' FROM entry), '""', '"')
                     ELSE lower(entry) END
  FROM path
)
SELECT quote_ident(n.nspname), quote_ident(current_user)
FROM schemas s JOIN pg_namespace n ON n.nspname = s.name
     JOIN pg_class c ON c.relnamespace = n.oid AND c.relname = 'dd_schema'
WHERE NOT has_schema_privilege(n.oid, 'USAGE')
ORDER BY place LIMIT 1
)";

bool is_hidden(postgres_store& store, problem& why) {
  const result_owner found = execute(store, HIDDEN, parameters(), why);
  if (found == nullptr) return true;
  if (PQntuples(found.get()) == 0) return false;
  const std::string schema = PQgetvalue(found.get(), 0, 0);
  why.detail = EACCES;
  postgres_refuse(store, TAV_ERR_STORAGE,
                  join({"it is in schema ", schema,
                        ", which the role may not use; log in as one "
                        "that may, or let the owner say: GRANT USAGE ON SCHEMA ",
                        schema, " TO ", PQgetvalue(found.get(), 0, 1)}),
                  why);
  return true;
}

}  // namespace dm
