// The SELECT statements, the same for all engines, and which of them gives a choice of rows.
#ifndef DM_QUERIES_H
#define DM_QUERIES_H

#include <array>
#include <string>

#include "dm/store.h"

namespace dm {

enum query {
  SELECT_DATABASES,
  SELECT_FIELDS,
  SELECT_FIELD_TYPES,
  SELECT_FIELDS_WITH_KEYS,
  SELECT_FIELD_NAMED,
  SELECT_FIELD_NUMBERED,
  SELECT_CLASSES,
  SELECT_CLASS_NAMED,
  SELECT_CLASSES_BELOW,
  SELECT_CLASS_KEYS,
  SELECT_CLASS_KEYS_BELOW,
  SELECT_CLASSES_MENTIONING,
  SELECT_TABLES,
  SELECT_TABLE_NAMED,
  COUNT_FIELDS,
  COUNT_CLASSES,
  SELECT_IDENTITY,
  SELECT_JOURNAL_END,
  SELECT_JOURNAL,
  SELECT_JOURNAL_NEWEST_FIRST,
  SELECT_PARTS,
  SELECT_PARTS_NEWEST_FIRST,
  QUERIES  // their number
};

// The SQL text; parameters are ?1 (the database's row id), ?2 and ?3. Where it says LIKE, letters
// match without regard to ASCII case. Those of the journal have the first and the last number of a
// range.
std::string query_text(query which);

// A query and its parameters after the first, which is the database.
struct lookup {
  query which;
  int texts = 0;  // how many of the keys are parameters
  std::array<std::string, 2> keys{};
  bool has_number = false;
  int32_t number = 0;
};

// The query that gives this choice of rows.
lookup field_lookup(const choice& choice);
lookup class_lookup(const choice& choice);
lookup table_lookup(const choice& choice);

}  // namespace dm

#endif
