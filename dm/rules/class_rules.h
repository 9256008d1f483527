// The rules that a class definition must keep, a file for each. Every one adds what it finds.
#ifndef DM_RULES_CLASS_RULES_H
#define DM_RULES_CLASS_RULES_H

#include "dm/rules/class_world.h"

namespace dm {

using findings = std::vector<problem>;

void check_texts(const class_def& definition, findings& result);
void check_name(const class_def& definition, class_world& world, findings& result);
void check_structure(const class_def& definition, findings& result);
void check_fields(const class_def& definition, class_world& world, findings& result);
void check_hierarchy(const class_def& definition, class_world& world, findings& result);
// Also gives the tables that the class has.
void check_storage(const class_def& definition, class_world& world,
                   std::vector<std::string>& tables, findings& result);

// Whether two entries under one parent may have the same text there, the case apart: mostly not,
// and then their texts need not be compared.
bool may_repeat(const class_def& definition, entry_attribute which);

// The table of a subclass, which needs none: it is not stored. Null where there is none.
const char* needless_table(const class_def& definition);

// All of them; those on what is in the class first, and the others only when it is sound so far.
void check_class(const class_def& definition, class_world& world, std::vector<std::string>& tables,
                 findings& result);

// The table and the column in the storage text of a BUF entry; empty where it names none.
struct buf_storage {
  std::string_view table, column;
};
buf_storage storage_of_buf(std::string_view text);

// Adds a finding about the class, or about one of its entries.
void blame(const class_def& definition, int32_t code, uint32_t field, std::string_view fault,
           findings& result);
void blame(const class_def& definition, const entry_def& entry, int32_t code, uint32_t field,
           std::string_view fault, findings& result);

}  // namespace dm

#endif
