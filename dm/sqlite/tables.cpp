#include "dm/sqlite/tables.h"

namespace dm {

// dd_fields is stored in the order of numbers, because a fetch of all fields reads it so.
// dd_classes is stored by row id with an index by name, because its rows are large. The views are
// for people: `place` is the path of an entry in the definition; NULL means the class itself.
const char DICTIONARY_SCHEMA[] = R"sql(
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

}  // namespace dm
