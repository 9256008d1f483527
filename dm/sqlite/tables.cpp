#include "dm/sqlite/tables.h"

namespace dm {

// dd_fields is stored in the order of numbers, because a fetch of all fields reads it so.
// dd_classes is stored by row id with an index by name, because its rows are large. The views are
// for people: `place` is the path of an entry in the definition; NULL means the class itself.
static constexpr char FIRST[] = R"sql(
CREATE TABLE dd_databases (
  id INTEGER PRIMARY KEY,
  number TEXT NOT NULL UNIQUE,
  counter INTEGER NOT NULL
) STRICT;
CREATE TABLE dd_fields (
  database INTEGER NOT NULL REFERENCES dd_databases (id),
  folded TEXT NOT NULL,
  name TEXT NOT NULL,
  number INTEGER NOT NULL CHECK (number BETWEEN 1 AND 16777215),
  type INTEGER NOT NULL,
  descr TEXT,
  flags INTEGER NOT NULL,
  stamp INTEGER NOT NULL,
  PRIMARY KEY (database, number),
  UNIQUE (database, folded)
) STRICT, WITHOUT ROWID;
CREATE TABLE dd_classes (
  id INTEGER PRIMARY KEY,
  database INTEGER NOT NULL REFERENCES dd_databases (id),
  folded TEXT NOT NULL,
  name TEXT NOT NULL,
  stamp INTEGER NOT NULL,
  definition TEXT NOT NULL,
  UNIQUE (database, folded)
) STRICT;
CREATE TABLE dd_tables (
  database INTEGER NOT NULL REFERENCES dd_databases (id),
  folded TEXT NOT NULL,
  name TEXT NOT NULL,
  class INTEGER NOT NULL REFERENCES dd_classes (id),
  PRIMARY KEY (database, folded)
) STRICT, WITHOUT ROWID;
CREATE VIEW dd_class_fields AS
SELECT d.number AS database, c.name AS class, t.fullkey AS place,
       json_extract(t.value, '$.name') AS field, json_extract(t.value, '$.type') AS type,
       json_extract(t.value, '$.sql_name') AS sql_name
FROM dd_classes c JOIN dd_databases d ON d.id = c.database,
     json_tree(c.definition, '$.entries') t
WHERE t.type = 'object';
CREATE VIEW dd_class_attributes AS
SELECT database, class, nullif(place, '$') AS place,
       CASE WHEN place <> '$' THEN json_extract(definition, place || '.name') END AS field,
       attribute, value
FROM (
  SELECT d.number AS database, c.name AS class, c.definition AS definition, t.atom AS value,
         replace(replace(t.path, '.attrvals', ''), '.objectclasses', '') AS place,
         CASE WHEN typeof(t.key) = 'text' THEN t.key
              WHEN t.path LIKE '%.attrvals' THEN 'attrvals' ELSE 'objectclasses' END AS attribute
  FROM dd_classes c JOIN dd_databases d ON d.id = c.database, json_tree(c.definition) t
  WHERE t.atom IS NOT NULL
);
)sql";

const char DELETION_GUARDS[] = R"sql(
CREATE TRIGGER dd_journal_delete BEFORE DELETE ON dd_journal BEGIN
  SELECT RAISE(ABORT, 'the journal only grows');
END;
CREATE TRIGGER dd_journal_changes_delete BEFORE DELETE ON dd_journal_changes BEGIN
  SELECT RAISE(ABORT, 'the journal only grows');
END;
)sql";

// The journal. Its triggers keep what is in it: an INSERT OR REPLACE deletes without a trigger for
// deletions, so that a number that is there or lower is refused as well.
static constexpr char SECOND[] = R"sql(
CREATE TABLE dd_identity (
  is_one INTEGER PRIMARY KEY CHECK (is_one = 1),
  identity TEXT NOT NULL
) STRICT;
CREATE TABLE dd_journal (
  number INTEGER PRIMARY KEY,
  deployment INTEGER NOT NULL,
  changes INTEGER NOT NULL,
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
) STRICT;
CREATE TABLE dd_journal_changes (
  id INTEGER PRIMARY KEY,
  record INTEGER NOT NULL,
  part INTEGER NOT NULL,
  content TEXT NOT NULL,
  UNIQUE (record, part)
) STRICT;
CREATE TRIGGER dd_identity_update BEFORE UPDATE ON dd_identity BEGIN
  SELECT RAISE(ABORT, 'a dictionary keeps its identity');
END;
CREATE TRIGGER dd_identity_delete BEFORE DELETE ON dd_identity BEGIN
  SELECT RAISE(ABORT, 'a dictionary keeps its identity');
END;
CREATE TRIGGER dd_identity_insert BEFORE INSERT ON dd_identity
WHEN EXISTS (SELECT 1 FROM dd_identity) BEGIN
  SELECT RAISE(ABORT, 'a dictionary keeps its identity');
END;
CREATE TRIGGER dd_journal_insert BEFORE INSERT ON dd_journal
WHEN NEW.number <= (SELECT max(number) FROM dd_journal) BEGIN
  SELECT RAISE(ABORT, 'the journal only grows');
END;
CREATE TRIGGER dd_journal_update BEFORE UPDATE ON dd_journal BEGIN
  SELECT RAISE(ABORT, 'the journal only grows');
END;
CREATE TRIGGER dd_journal_changes_insert BEFORE INSERT ON dd_journal_changes
WHEN NEW.id IN (SELECT id FROM dd_journal_changes)
     OR EXISTS (SELECT 1 FROM dd_journal_changes WHERE record = NEW.record AND part = NEW.part)
BEGIN
  SELECT RAISE(ABORT, 'the journal only grows');
END;
CREATE TRIGGER dd_journal_changes_update BEFORE UPDATE ON dd_journal_changes BEGIN
  SELECT RAISE(ABORT, 'the journal only grows');
END;
)sql";

std::string schema_step(int version) {
  return version == 1 ? FIRST : join({SECOND, DELETION_GUARDS});
}

}  // namespace dm
