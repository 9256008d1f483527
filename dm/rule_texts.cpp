// Texts of a class are such that the definition language can carry them.
#include "dm/class_rules.h"
#include "dm/text_rules.h"

namespace dm {

static const char* fault_of_texts(const tav_node* node, const attribute& row) {
  uint32_t position = 0;
  int32_t id = 0;
  while (const tav_node* element = tav_node_next(node, row.field, &position, &id)) {
    const void* text = tav_node_get(element, row.text);
    const char* fault = text != nullptr ? text_fault(static_cast<const char*>(text)) : nullptr;
    if (fault != nullptr) return fault;
  }
  return nullptr;
}

static const char* fault_of_decimal(const void* value) {
  char digits[LONGEST_TEXT + 1];
  tav_ebuf ebuf{};
  tav_decimal_to_str(static_cast<const tav_decimal_t*>(value), 0, digits, sizeof digits, &ebuf);
  return ebuf.err_code != TAV_ERR_NONE ? "is longer than 2047 bytes" : nullptr;
}

static const char* fault_of(const void* value, const attribute& row) {
  if (row.form == value_form::NUMBER) return nullptr;
  if (row.form == value_form::TEXT) return text_fault(static_cast<const char*>(value));
  if (row.form == value_form::DECIMAL) return fault_of_decimal(value);
  return fault_of_texts(static_cast<const tav_node*>(value), row);
}

void check_texts(const class_def& definition, findings& result) {
  for (size_t i = 0; i < CLASS_ATTRIBUTES.size(); ++i) {
    const attribute& row = CLASS_ATTRIBUTES[i];
    if (definition.values[i] == nullptr) continue;
    const char* fault = fault_of(definition.values[i], row);
    if (fault == nullptr) continue;
    blame(definition, TAV_ERR_BAD_VALUE, row.field, join({"has a bad ", row.key, ": it ", fault}),
          result);
  }
  for (const entry_def& entry : definition.entries) {
    for (size_t i = 0; i < ENTRY_ATTRIBUTES.size(); ++i) {
      const attribute& row = ENTRY_ATTRIBUTES[i];
      if (entry.values[i] == nullptr) continue;
      const char* fault = fault_of(entry.values[i], row);
      if (fault == nullptr) continue;
      blame(definition, entry, TAV_ERR_BAD_VALUE, row.field,
            join({"has a bad ", row.key, ": it ", fault}), result);
    }
  }
}

}  // namespace dm
