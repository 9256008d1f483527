// The rules that a class definition must keep; a file holds one rule. Each function below appends
// the violations that it finds to `result`.
#ifndef DM_RULES_CLASS_RULES_H
#define DM_RULES_CLASS_RULES_H

#include "dd/buf_storage.h"
#include "dm/rules/class_world.h"

namespace dm {

// A violation, with what it is about besides the class: the field or superclass that is missed; or
// another class, and the table (TAV_FLD_SQL_TABLE) or container that both would have. The rules do
// not know which class has a table.
struct violation : problem {
  std::string against{};
  std::string shared{};
};
using findings = std::vector<violation>;

void check_texts(const class_def& definition, findings& result);
void check_name(const class_def& definition, class_world& world, findings& result);
void check_structure(const class_def& definition, findings& result);
void check_fields(const class_def& definition, class_world& world, findings& result);
void check_hierarchy(const class_def& definition, class_world& world, findings& result);
// Also appends the names of the tables that the class has to `tables`.
void check_storage(const class_def& definition, class_world& world,
                   std::vector<std::string>& tables, findings& result);

// Whether two entries under one parent might have equal texts in that attribute (without regard to
// case). A quick test by hashes: false is certain and saves comparing the texts.
bool may_repeat(const class_def& definition, entry_attribute which);

// The table named in the definition of a subclass. A subclass needs none, and it is not stored.
// Null where none is named, and for a base class.
const char* needless_table(const class_def& definition);

// The names of the tables that a sound definition has.
std::vector<std::string> tables_of(const class_def& definition);

// Checks all rules: texts, name and structure first; fields, hierarchy and storage only if these
// found nothing.
void check_class(const class_def& definition, class_world& world, std::vector<std::string>& tables,
                 findings& result);

// The table and the column in the storage text of a BUF entry. Without a table both are missing.
dd_buf_storage storage_of_buf(std::string_view text);

// Adds a finding about the class, or about one of its entries.
void blame(const class_def& definition, int32_t code, uint32_t field, std::string_view fault,
           findings& result);
void blame(const class_def& definition, const entry_def& entry, int32_t code, uint32_t field,
           std::string_view fault, findings& result);

}  // namespace dm

#endif
