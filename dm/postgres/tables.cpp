#include "dm/postgres/tables.h"

namespace dm {

// Each column has a line of its own, in the order name, type, COLLATE, NOT NULL, DEFAULT,
// constraints: 'tav_dict check' compares these lines with what the server says.
//
// COLLATE "C" orders keys byte by byte, whatever the database's own order. The type json keeps the
// definition's text as it was written and refuses what is no JSON. The views are for people:
// `place` is the path of an entry in the definition; NULL means the class itself.
static constexpr char FIRST[] = R"sql(
CREATE TABLE dd_schema (
  version INTEGER NOT NULL,
  is_one BOOLEAN NOT NULL DEFAULT true PRIMARY KEY CHECK (is_one)
);
CREATE TABLE dd_databases (
  id BIGINT NOT NULL PRIMARY KEY,
  number TEXT NOT NULL UNIQUE,
  counter BIGINT NOT NULL
);
CREATE TABLE dd_fields (
  database BIGINT NOT NULL REFERENCES dd_databases (id),
  folded TEXT COLLATE "C" NOT NULL,
  name TEXT NOT NULL,
  number INTEGER NOT NULL CHECK (number BETWEEN 1 AND 16777215),
  type INTEGER NOT NULL,
  descr TEXT,
  flags INTEGER NOT NULL,
  stamp BIGINT NOT NULL,
  PRIMARY KEY (database, number),
  UNIQUE (database, folded)
);
CREATE TABLE dd_classes (
  id BIGINT NOT NULL PRIMARY KEY,
  database BIGINT NOT NULL REFERENCES dd_databases (id),
  folded TEXT COLLATE "C" NOT NULL,
  name TEXT NOT NULL,
  stamp BIGINT NOT NULL,
  definition JSON NOT NULL,
  UNIQUE (database, folded)
);
CREATE TABLE dd_tables (
  database BIGINT NOT NULL REFERENCES dd_databases (id),
  folded TEXT COLLATE "C" NOT NULL,
  name TEXT NOT NULL,
  class BIGINT NOT NULL REFERENCES dd_classes (id),
  PRIMARY KEY (database, folded)
);
CREATE VIEW dd_class_nodes AS
WITH RECURSIVE node (class, place, definition) AS (
  SELECT id, '$', definition FROM dd_classes
  UNION ALL
  SELECT n.class, n.place || '.entries[' || e.position - 1 || ']', e.value
  FROM node n, json_array_elements(n.definition -> 'entries') WITH ORDINALITY e (value, position)
)
SELECT d.number AS database, c.name AS class, n.place, n.definition
FROM node n JOIN dd_classes c ON c.id = n.class JOIN dd_databases d ON d.id = c.database;
CREATE VIEW dd_class_fields AS
SELECT database, class, place, definition ->> 'name' AS field,
       (definition ->> 'type')::INTEGER AS type, definition ->> 'sql_name' AS sql_name
FROM dd_class_nodes WHERE place <> '$';
CREATE VIEW dd_class_attributes AS
SELECT n.database, n.class, nullif(n.place, '$') AS place,
       CASE WHEN n.place <> '$' THEN n.definition ->> 'name' END AS field,
       a.key AS attribute, v.value
FROM dd_class_nodes n, json_each(n.definition) a,
     LATERAL (SELECT a.value #>> '{}' AS value WHERE json_typeof(a.value) <> 'array'
              UNION ALL
              SELECT t FROM json_array_elements_text(
                CASE WHEN json_typeof(a.value) = 'array' THEN a.value ELSE '[]' END) t) v
WHERE a.key <> 'entries';
)sql";

static constexpr char SECOND[] = R"sql(
CREATE TABLE dd_identity (
  identity TEXT NOT NULL,
  is_one BOOLEAN NOT NULL DEFAULT true PRIMARY KEY CHECK (is_one)
);
CREATE TABLE dd_journal (
  number BIGINT NOT NULL PRIMARY KEY,
  deployment BIGINT NOT NULL,
  changes BIGINT NOT NULL,
  time TEXT NOT NULL,
  database TEXT NOT NULL,
  kind TEXT NOT NULL,
  run TEXT NOT NULL,
  os_user TEXT NOT NULL,
  os_host TEXT NOT NULL,
  role TEXT NOT NULL,
  login TEXT NOT NULL,
  program TEXT NOT NULL,
  version TEXT NOT NULL,
  mode TEXT NOT NULL,
  called TEXT NOT NULL,
  reason TEXT NOT NULL,
  detail TEXT NOT NULL,
  previous TEXT NOT NULL,
  hash TEXT NOT NULL
);
CREATE TABLE dd_journal_changes (
  record BIGINT NOT NULL,
  part BIGINT NOT NULL,
  content TEXT NOT NULL,
  PRIMARY KEY (record, part)
);
)sql";

const char* const POSTGRES_STEPS[SCHEMA_VERSION] = {FIRST, SECOND};

const char POSTGRES_GUARDS[] = R"sql(
CREATE FUNCTION dd_journal_keep() RETURNS trigger LANGUAGE plpgsql AS
$$ BEGIN RAISE EXCEPTION 'the journal only grows'; END $$;
CREATE FUNCTION dd_journal_role() RETURNS trigger LANGUAGE plpgsql AS
$$ BEGIN IF NEW.role <> session_user THEN RAISE EXCEPTION 'the journal names the role that writes'; END IF; RETURN NEW; END $$;
CREATE TRIGGER dd_identity_keep BEFORE UPDATE OR DELETE OR TRUNCATE ON dd_identity
  FOR EACH STATEMENT EXECUTE FUNCTION dd_journal_keep();
CREATE TRIGGER dd_journal_keep BEFORE UPDATE OR DELETE OR TRUNCATE ON dd_journal
  FOR EACH STATEMENT EXECUTE FUNCTION dd_journal_keep();
CREATE TRIGGER dd_journal_role BEFORE INSERT ON dd_journal
  FOR EACH ROW EXECUTE FUNCTION dd_journal_role();
CREATE TRIGGER dd_journal_changes_keep BEFORE UPDATE OR DELETE OR TRUNCATE ON dd_journal_changes
  FOR EACH STATEMENT EXECUTE FUNCTION dd_journal_keep();
)sql";

}  // namespace dm
