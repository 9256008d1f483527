#include "dm/queries.h"

#include "dd/longest_text.h"
#include "dm/folded.h"

namespace dm {

static constexpr char FIELD_COLUMNS[] =
    "SELECT name, number, type, descr, flags, stamp FROM dd_fields ";
static constexpr char CLASS_COLUMNS[] =
    "SELECT id, folded, name, stamp, definition FROM dd_classes ";
static constexpr char KEY_COLUMNS[] = "SELECT id, folded, name, stamp FROM dd_classes ";
static constexpr char TABLE_COLUMNS[] = "SELECT folded, name, class FROM dd_tables ";

static constexpr char RECORD_COLUMNS[] =
    "SELECT number, deployment, changes, time, database, kind, run, os_user, os_host, role, login,"
    " program, version, mode, called, reason, detail, previous, hash FROM dd_journal ";
static constexpr char PART_COLUMNS[] = "SELECT record, part, content FROM dd_journal_changes ";

// In two parts, because columns are shared; in the order of the queries.
static constexpr struct {
  query which;
  const char *columns, *rest;
} TEXTS[] = {
    {SELECT_DATABASES, "", "SELECT id, number, counter FROM dd_databases ORDER BY id"},
    {SELECT_FIELDS, FIELD_COLUMNS, "WHERE database = ?1 ORDER BY number"},
    {SELECT_FIELD_TYPES, "",
     "SELECT name, type FROM dd_fields WHERE database = ?1 ORDER BY number"},
    {SELECT_FIELDS_WITH_KEYS, "",
     "SELECT name, number, type, descr, flags, stamp, folded FROM dd_fields"
     " WHERE database = ?1 ORDER BY number"},
    {SELECT_FIELD_NAMED, FIELD_COLUMNS, "WHERE database = ?1 AND folded = ?2"},
    {SELECT_FIELD_NUMBERED, FIELD_COLUMNS, "WHERE database = ?1 AND number = ?2"},
    {SELECT_CLASSES, CLASS_COLUMNS, "WHERE database = ?1 ORDER BY folded"},
    {SELECT_CLASS_NAMED, CLASS_COLUMNS, "WHERE database = ?1 AND folded = ?2"},
    {SELECT_CLASSES_BELOW, CLASS_COLUMNS,
     "WHERE database = ?1 AND folded > ?2 AND folded < ?3 ORDER BY folded"},
    {SELECT_CLASS_KEYS, KEY_COLUMNS, "WHERE database = ?1 ORDER BY folded"},
    {SELECT_CLASS_KEYS_BELOW, KEY_COLUMNS,
     "WHERE database = ?1 AND folded > ?2 AND folded < ?3 ORDER BY folded"},
    // The "+" keeps the rows from being read in the order of an index, which takes four times as
    // long.
    {SELECT_CLASSES_MENTIONING, CLASS_COLUMNS,
     "WHERE +database = ?1 AND (definition LIKE ?2 ESCAPE '!' OR definition LIKE ?3 ESCAPE '!')"},
    {SELECT_TABLES, TABLE_COLUMNS, "WHERE database = ?1 ORDER BY folded"},
    {SELECT_TABLE_NAMED, TABLE_COLUMNS, "WHERE database = ?1 AND folded = ?2"},
    {COUNT_FIELDS, "", "SELECT count(*) FROM dd_fields WHERE database = ?1"},
    {COUNT_CLASSES, "", "SELECT count(*) FROM dd_classes WHERE database = ?1"},
    {SELECT_IDENTITY, "", "SELECT identity FROM dd_identity"},
    {SELECT_JOURNAL_END, "",
     "SELECT number, hash, time FROM dd_journal ORDER BY number DESC LIMIT 1"},
    {SELECT_JOURNAL, RECORD_COLUMNS, "WHERE number BETWEEN ?1 AND ?2 ORDER BY number"},
    {SELECT_JOURNAL_NEWEST_FIRST, RECORD_COLUMNS,
     "WHERE number BETWEEN ?1 AND ?2 ORDER BY number DESC"},
    {SELECT_PARTS, PART_COLUMNS, "WHERE record BETWEEN ?1 AND ?2 ORDER BY record, part"},
    {SELECT_PARTS_NEWEST_FIRST, PART_COLUMNS,
     "WHERE record BETWEEN ?1 AND ?2 ORDER BY record DESC, part"},
};
static_assert(std::size(TEXTS) == QUERIES);

std::string query_text(query which) {
  return std::string(TEXTS[which].columns) + TEXTS[which].rest;
}

static lookup by_name(query which, const char* name) {
  return {which, 1, {folded(name), ""}};
}

static lookup below(query which, const char* name) {
  auto [first, behind] = keys_below(folded(name));
  return {which, 2, {std::move(first), std::move(behind)}};
}

// A pattern that fits every text which holds the name, however JSON spells it: what JSON may spell
// in two ways, and what has a meaning in patterns, stands for anything. Any other character can be
// spelled as \u and four digits only; such texts are found by the second pattern.
static lookup mentioning(const char* name) {
  static constexpr std::string_view SPECIAL = "\"\\/!";
  std::string pattern = join({"%", folded(name).substr(0, DD_LONGEST_TEXT), "%"});
  for (char& c : pattern) {
    const bool is_control = static_cast<unsigned char>(c) < ' ';
    if (is_control || SPECIAL.find(c) != std::string_view::npos) c = '%';
  }
  return {SELECT_CLASSES_MENTIONING, 2, {pattern, "%\\u%"}};
}

lookup field_lookup(const choice& choice) {
  if (choice.which == choice::NAMED) return by_name(SELECT_FIELD_NAMED, choice.name);
  if (choice.which == choice::KEYS) return {SELECT_FIELD_TYPES};
  if (choice.which == choice::WITH_KEYS) return {SELECT_FIELDS_WITH_KEYS};
  if (choice.which != choice::NUMBERED) return {SELECT_FIELDS};
  lookup numbered{SELECT_FIELD_NUMBERED};
  numbered.has_number = true;
  numbered.number = choice.number;
  return numbered;
}

lookup class_lookup(const choice& choice) {
  switch (choice.which) {
    case choice::NAMED:
      return by_name(SELECT_CLASS_NAMED, choice.name);
    case choice::BELOW:
      return below(SELECT_CLASSES_BELOW, choice.name);
    case choice::KEYS:
      return {SELECT_CLASS_KEYS};
    case choice::KEYS_BELOW:
      return below(SELECT_CLASS_KEYS_BELOW, choice.name);
    case choice::MENTIONING:
      return mentioning(choice.name);
    default:
      return {SELECT_CLASSES};
  }
}

lookup table_lookup(const choice& choice) {
  if (choice.which == choice::NAMED) return by_name(SELECT_TABLE_NAMED, choice.name);
  return {SELECT_TABLES};
}

}  // namespace dm
