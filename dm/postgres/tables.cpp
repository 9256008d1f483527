#include "dm/postgres/tables.h"

namespace dm {

// Each column has a line of its own, in the order name, type, COLLATE, NOT NULL, DEFAULT,
// constraints: 'tav_dict check' compares these lines with what the server says.
//
// COLLATE "C" orders keys byte by byte, whatever the database's own order. The type json keeps the
// definition's text as it was written and refuses what is no JSON. The views are for people:
// `place` is the path of an entry in the definition; NULL means the class itself.
const char POSTGRES_SCHEMA[] = R"sql(
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

}  // namespace dm
