// Rule: all texts are UTF-8, and texts and decimals are short enough for the definition language.
#include "dm/rules/class_rules.h"
#include "dm/rules/text.h"

namespace dm {

static const char* fault_of_texts(const tav_node* node, const dd_attribute& row) {
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
  char digits[DD_LONGEST_TEXT + 1];
  tav_ebuf ebuf{};
  tav_decimal_to_str(static_cast<const tav_decimal_t*>(value), 0, digits, sizeof digits, &ebuf);
  return ebuf.err_code != TAV_ERR_NONE ? TOO_LONG : nullptr;
}

static const char* fault_of(const void* value, const dd_attribute& row) {
  if (row.kind == dd_value_kind::TEXT) return text_fault(static_cast<const char*>(value));
  if (row.kind == dd_value_kind::DECIMAL) return fault_of_decimal(value);
  return fault_of_texts(static_cast<const tav_node*>(value), row);
}

// The indexes of all rows but those of numbers, which keep the rule; N ends them.
template <size_t N>
static constexpr auto rows_with_texts(const std::array<dd_attribute, N>& rows) {
  std::array<size_t, N + 1> places{};
  size_t count = 0;
  for (size_t i = 0; i < N; ++i) {
    if (rows[i].kind != dd_value_kind::NUMBER) places[count++] = i;
  }
  places[count] = N;
  return places;
}

static constexpr auto CLASS_TEXTS = rows_with_texts(CLASS_ATTRIBUTES);
static constexpr auto ENTRY_TEXTS = rows_with_texts(ENTRY_ATTRIBUTES);

// Calls call(row, fault) for each value that breaks the rule.
template <size_t N, class Call>
static void each_fault(const std::array<const void*, N>& values,
                       const std::array<dd_attribute, N>& rows,
                       const std::array<size_t, N + 1>& texts, Call call) {
  for (const size_t* place = texts.data(); *place != N; ++place) {
    const void* value = values[*place];
    const char* fault = value != nullptr ? fault_of(value, rows[*place]) : nullptr;
    if (fault != nullptr)
      call(rows[*place], join({"has a bad ", rows[*place].key, ": it ", fault}));
  }
}

void check_texts(const class_def& definition, findings& result) {
  each_fault(definition.values, CLASS_ATTRIBUTES, CLASS_TEXTS,
             [&](const dd_attribute& row, const std::string& fault) {
               blame(definition, TAV_ERR_BAD_VALUE, row.field, fault, result);
             });
  for (const entry_def& entry : definition.entries) {
    each_fault(entry.values, ENTRY_ATTRIBUTES, ENTRY_TEXTS,
               [&](const dd_attribute& row, const std::string& fault) {
                 blame(definition, entry, TAV_ERR_BAD_VALUE, row.field, fault, result);
               });
  }
}

}  // namespace dm
