// The test of a dictionary on the server: schema, indexes, references.
#include <map>
#include <sstream>

#include "dm/postgres/result_rows.h"
#include "dm/postgres/tables.h"
#include "dm/schema.h"

namespace dm {

// All that belongs to our tables and views or acts on them, as rows of subject and shape. Triggers
// and indexes that the server made itself for a constraint are not listed: the constraint is.
static constexpr char PARTS[] = R"sql(
WITH ours (kind, name, relation) AS (
  SELECT kind, name, to_regclass(name)
  FROM (VALUES ('table', 'dd_schema'), ('table', 'dd_databases'), ('table', 'dd_fields'),
               ('table', 'dd_classes'), ('table', 'dd_tables'), ('table', 'dd_identity'),
               ('table', 'dd_journal'), ('table', 'dd_journal_changes'), ('view', 'dd_class_nodes'),
               ('view', 'dd_class_fields'), ('view', 'dd_class_attributes')) v (kind, name)
)
SELECT kind || ' ' || name,
       CASE relkind::TEXT || relpersistence::TEXT
         WHEN 'rp' THEN 'TABLE' WHEN 'ru' THEN 'UNLOGGED TABLE' WHEN 'pp' THEN 'PARTITIONED TABLE'
         WHEN 'fp' THEN 'FOREIGN TABLE' WHEN 'vp' THEN 'VIEW' ELSE 'OTHER' END
FROM ours JOIN pg_class ON oid = relation
UNION ALL
SELECT 'column ' || attname || ' of ' || name,
       upper(format_type(atttypid, atttypmod))
       || coalesce((SELECT ' COLLATE ' || quote_ident(collname) FROM pg_collation c
                    WHERE c.oid = attcollation AND collname <> 'default'), '')
       || CASE WHEN attnotnull THEN ' NOT NULL' ELSE '' END
       || CASE WHEN attgenerated <> '' THEN ' GENERATED' WHEN atthasdef THEN ' DEFAULT ' ELSE '' END
       || coalesce(pg_get_expr(adbin, adrelid), '')
       || CASE WHEN attidentity <> '' THEN ' IDENTITY' ELSE '' END
FROM ours JOIN pg_attribute ON attrelid = relation
     LEFT JOIN pg_attrdef ON adrelid = attrelid AND adnum = attnum
WHERE kind = 'table' AND attnum > 0 AND NOT attisdropped
UNION ALL
SELECT 'constraint ' || pg_get_constraintdef(c.oid) || ' of ' || name,
       CASE WHEN EXISTS (SELECT FROM pg_trigger WHERE tgconstraint = c.oid AND tgenabled <> 'O')
            THEN 'switched off' ELSE 'enforced' END
FROM ours JOIN pg_constraint c ON conrelid = relation AND contype <> 'n'
UNION ALL
SELECT 'trigger ' || tgname || ' of ' || name,
       CASE WHEN tgenabled = 'O' THEN 'at work, ' ELSE 'switched off, ' END
       || regexp_replace(pg_get_triggerdef(t.oid), '^.* (BEFORE .*) ON .* FOR ', '\1 FOR ')
FROM ours JOIN pg_trigger t ON tgrelid = relation AND NOT tgisinternal
UNION ALL
SELECT DISTINCT 'function ' || proname, btrim(prosrc)
FROM ours JOIN pg_trigger ON tgrelid = relation AND NOT tgisinternal
     JOIN pg_proc p ON p.oid = tgfoid AND proname IN ('dd_journal_keep', 'dd_journal_role')
UNION ALL
SELECT 'rule ' || rulename || ' of ' || name, ''
FROM ours JOIN pg_rewrite ON ev_class = relation AND rulename <> '_RETURN'
UNION ALL
SELECT CASE WHEN relforcerowsecurity THEN 'forced ' ELSE '' END || 'row security of ' || name, ''
FROM ours JOIN pg_class ON oid = relation AND (relrowsecurity OR relforcerowsecurity)
UNION ALL
SELECT 'policy ' || polname || ' of ' || name, '' FROM ours JOIN pg_policy ON polrelid = relation
UNION ALL
SELECT 'child table ' || inhrelid::regclass || ' of ' || name, ''
FROM ours JOIN pg_inherits ON inhparent = relation
UNION ALL
SELECT 'unique index ' || indexrelid::regclass || ' of ' || name, ''
FROM ours JOIN pg_index ON indrelid = relation AND indisunique
WHERE NOT EXISTS (SELECT FROM pg_constraint WHERE conindid = indexrelid AND conrelid = relation)
ORDER BY 1
)sql";

// The subjects in a sound dictionary that each schema version adds, in the server's wording.
// Columns are added from the schema.
static constexpr const char* EXPECTED[SCHEMA_VERSION] = {R"(table dd_schema
table dd_databases
table dd_fields
table dd_classes
table dd_tables
view dd_class_nodes
view dd_class_fields
view dd_class_attributes
constraint PRIMARY KEY (is_one) of dd_schema
constraint CHECK (is_one) of dd_schema
constraint PRIMARY KEY (id) of dd_databases
constraint UNIQUE (number) of dd_databases
constraint PRIMARY KEY (database, number) of dd_fields
constraint UNIQUE (database, folded) of dd_fields
constraint FOREIGN KEY (database) REFERENCES dd_databases(id) of dd_fields
constraint CHECK (((number >= 1) AND (number <= 16777215))) of dd_fields
constraint PRIMARY KEY (id) of dd_classes
constraint UNIQUE (database, folded) of dd_classes
constraint FOREIGN KEY (database) REFERENCES dd_databases(id) of dd_classes
constraint PRIMARY KEY (database, folded) of dd_tables
constraint FOREIGN KEY (database) REFERENCES dd_databases(id) of dd_tables
constraint FOREIGN KEY (class) REFERENCES dd_classes(id) of dd_tables)",
                                                         R"(table dd_identity
table dd_journal
table dd_journal_changes
constraint PRIMARY KEY (is_one) of dd_identity
constraint CHECK (is_one) of dd_identity
constraint PRIMARY KEY (number) of dd_journal
constraint PRIMARY KEY (record, part) of dd_journal_changes
trigger dd_identity_keep of dd_identity
trigger dd_journal_keep of dd_journal
trigger dd_journal_role of dd_journal
trigger dd_journal_changes_keep of dd_journal_changes)"};

// The guards of the journal, in the server's wording.
static constexpr char KEEPS[] =
    "at work, BEFORE DELETE OR UPDATE OR TRUNCATE FOR EACH STATEMENT EXECUTE FUNCTION"
    " dd_journal_keep()";
static constexpr char SIGNING[] = "dd_journal_role";
static constexpr char SIGNS[] =
    "at work, BEFORE INSERT FOR EACH ROW EXECUTE FUNCTION dd_journal_role()";

static const char* shape_of(const std::string& subject) {
  if (subject[0] == 'c') return "enforced";
  if (subject.rfind("trigger ", 0) == 0) {
    return subject.find(SIGNING) != subject.npos ? SIGNS : KEEPS;
  }
  return subject[0] == 't' ? "TABLE" : "VIEW";
}

using parts = std::map<std::string, std::string>;  // shapes by subject

// Adds the columns: each has a line of its own where its table is made.
static void add_columns(const char* tables, parts& expected) {
  static const std::string TABLE = "CREATE TABLE ";
  std::istringstream lines(tables);
  std::string table;
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind(TABLE, 0) == 0)
      table = line.substr(TABLE.size(), line.rfind(' ') - TABLE.size());
    if (line.size() < 3 || line[0] != ' ' || line[2] < 'a' || line[2] > 'z') continue;
    const size_t name_end = line.find(' ', 2);
    std::string shape = line.substr(name_end + 1);
    for (const char* guard : {" PRIMARY", " UNIQUE", " REFERENCES", " CHECK", ","}) {
      shape = shape.substr(0, shape.find(guard));
    }
    expected[join({"column ", line.substr(2, name_end - 2), " of ", table})] = shape;
  }
}

// Adds the functions: the body of each stands on a line of its own, between "$$ " and " $$;".
static void add_functions(parts& expected) {
  static const std::string FUNCTION = "CREATE FUNCTION ";
  std::istringstream lines(POSTGRES_GUARDS);
  for (std::string line, body; std::getline(lines, line);) {
    if (line.rfind(FUNCTION, 0) != 0 || !std::getline(lines, body)) continue;
    const std::string name = line.substr(FUNCTION.size(), line.find('(') - FUNCTION.size());
    expected["function " + name] = body.substr(3, body.size() - 7);
  }
}

static parts expected_parts(int version) {
  parts expected;
  if (version >= JOURNAL_VERSION) add_functions(expected);
  for (int step = 0; step < version; ++step) {
    std::istringstream lines(EXPECTED[step]);
    for (std::string line; std::getline(lines, line);) expected[line] = shape_of(line);
    add_columns(POSTGRES_STEPS[step], expected);
  }
  return expected;
}

static constexpr char BROKEN_INDEXES[] = R"sql(
SELECT 'Index ' || indexrelid::regclass || ' cannot be used; build it anew (REINDEX).'
FROM pg_index
WHERE indrelid IN (to_regclass('dd_schema'), to_regclass('dd_databases'), to_regclass('dd_fields'),
                   to_regclass('dd_classes'), to_regclass('dd_tables'), to_regclass('dd_identity'),
                   to_regclass('dd_journal'), to_regclass('dd_journal_changes'))
  AND NOT (indisvalid AND indisready)
)sql";

static bool check_parts(postgres_store& store, visitor<std::string_view> visitor, problem& why) {
  const auto tell = [&](std::initializer_list<std::string_view> pieces) {
    visitor.call(visitor.context, join(pieces));
  };
  const result_owner found = execute(store, PARTS, parameters(), why);
  if (found == nullptr) return false;
  parts expected = expected_parts(store.version);
  for (int row = 0; row < PQntuples(found.get()); ++row) {
    const char* subject = PQgetvalue(found.get(), row, 0);
    const char* shape = PQgetvalue(found.get(), row, 1);
    const auto at = expected.find(subject);
    if (at == expected.end()) {
      tell({"The ", one_line(subject), " is none of a dictionary's."});
      continue;
    }
    if (at->second != shape) {
      tell({"The ", subject, " is ", one_line(shape), "; this program makes it ", at->second, "."});
    }
    expected.erase(at);
  }
  for (const auto& [subject, shape] : expected) tell({"The ", subject, " is missing."});
  return true;
}

static bool tell_rows(postgres_store& store, const std::string& sql,
                      visitor<std::string_view> visitor, problem& why) {
  postgres_rows rows(store, sql, parameters(), false, why);
  postgres_rows::outcome outcome;
  while ((outcome = rows.next()) == postgres_rows::ROW) {
    if (!visitor.call(visitor.context, rows.text(0))) return true;
  }
  return outcome == postgres_rows::END;
}

// References are tested row by row, because whoever switches triggers off can break foreign keys.
static constexpr struct {
  const char *table, *column, *parent;
} REFERENCES[] = {
    {"dd_fields", "database", "dd_databases"},
    {"dd_classes", "database", "dd_databases"},
    {"dd_tables", "database", "dd_databases"},
    {"dd_tables", "class", "dd_classes"},
};

bool postgres_integrity(store* base, visitor<std::string_view> visitor, problem& why) {
  postgres_store& store = postgres_of(base);
  if (!check_parts(store, visitor, why) || !tell_rows(store, BROKEN_INDEXES, visitor, why)) {
    return false;
  }
  for (const auto& row : REFERENCES) {
    const std::string sql = join({"SELECT '", orphan(row.table, row.parent), "' FROM ", row.table,
                                  " child WHERE NOT EXISTS (SELECT FROM ", row.parent,
                                  " parent WHERE parent.id = child.", row.column, ")"});
    if (!tell_rows(store, sql, visitor, why)) return false;
  }
  return true;
}

}  // namespace dm
