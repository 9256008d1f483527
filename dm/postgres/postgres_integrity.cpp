// The engine's own test of what it keeps.
#include "dm/postgres/postgres_rows.h"
#include "dm/schema.h"

namespace dm {

// The guards that each table was made with: primary keys, unique names, references, checks. One
// that was dropped, or never proved over the rows that are there, is missing here.
static constexpr char MISSING_GUARDS[] = R"sql(
SELECT 'Table ' || t.name || ' has lost some of the constraints that guard it.'
FROM (VALUES ('dd_schema', 'cp'), ('dd_databases', 'pu'), ('dd_fields', 'cfpu'),
             ('dd_classes', 'fpu'), ('dd_tables', 'ffp')) t (name, guards)
WHERE guards <> (SELECT coalesce(string_agg(contype::TEXT, '' ORDER BY contype::TEXT), '')
                 FROM pg_constraint
                 WHERE conrelid = to_regclass(t.name) AND convalidated AND contype <> 'n')
)sql";

static constexpr char BROKEN_INDEXES[] = R"sql(
SELECT 'Index ' || indexrelid::regclass || ' cannot be used; build it anew (REINDEX).'
FROM pg_index
WHERE indrelid IN (to_regclass('dd_schema'), to_regclass('dd_databases'), to_regclass('dd_fields'),
                   to_regclass('dd_classes'), to_regclass('dd_tables'))
  AND NOT (indisvalid AND indisready)
)sql";

static bool tell_rows(postgres_store& store, const std::string& sql,
                      visitor<std::string_view> visitor, problem& why) {
  postgres_rows rows(store, sql, parameters(), false, why);
  postgres_rows::outcome outcome;
  while ((outcome = rows.next()) == postgres_rows::ROW) {
    if (!visitor.call(visitor.context, rows.text(0))) return true;
  }
  return outcome == postgres_rows::END;
}

// References, looked at row by row: who switches triggers off gets past the guard.
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
  for (const char* test : {MISSING_GUARDS, BROKEN_INDEXES}) {
    if (!tell_rows(store, test, visitor, why)) return false;
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
