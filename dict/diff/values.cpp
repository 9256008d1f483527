#include "dict/diff/values.h"
#include "dd/class_names.h"

#include "dd/fold.h"
#include "dd/values.h"
#include "deploy/import/import.h"
#include "dparse/write/forms.h"

namespace dict {

const element_kind FIELD{"field", TAV_FLD_FIELD_NAME, DD_IN_DEFINITION};
const element_kind CLASS{"class", TAV_FLD_NAME, DD_IN_CLASS | DD_IN_SQL_CLASS};
const element_kind ENTRY{"entry", TAV_FLD_FIELD_NAME, DD_IN_ENTRY | DD_IN_SQL_ENTRY};

namespace {

// An attribute's value in an element.
struct written {
  std::string text;       // as the language writes it; empty: it writes none
  bool is_given = false;  // false also for an empty text
};

struct element {
  const element_kind& kind;
  tav_flist_t* list;
  const char* name;
  int32_t type;  // 0 for a class
};

}  // namespace

static element read_element(const element_kind& kind, tav_flist_t* list, tav_ebuf* ebuf) {
  const bool has_type = &kind != &CLASS;
  return {kind, list, dd_text(list, kind.name, ebuf),
          has_type ? dd_int(list, TAV_FLD_FIELD_TYPE, ebuf) : 0};
}

static written write_value(const element& holder, const dparse::attribute& row, tav_ebuf* ebuf) {
  dd_decimal zero;
  const void* held = tavi_flist_get(holder.list, row.field, 0, 1, 0, ebuf);
  const void* value = dparse::value_or_zero(held, row.field, zero, ebuf);
  const bool is_text = DD_FIELD_ID_TYPE(row.field) == TAV_FLDT_STRING;
  std::string text = dparse::value_text(row, value, holder.name, holder.type, ebuf);
  const bool is_given = is_text ? !text.empty() : value != nullptr;
  return {std::move(text), is_given};
}

// What a deployment does with the old value of an attribute.
static dd_keeping keeping_of(const element_kind& kind, uint32_t field) {
  const dd_attribute* row = dd_find_attribute(field, kind.attributes);
  return row != nullptr ? row->kept : dd_keeping::NEVER;
}

// A decimal without plus sign, leading zeros, and zeros at the end of its fraction.
static std::string plain_decimal(std::string text) {
  const bool is_negative = !text.empty() && text[0] == '-';
  text.erase(0, text.find_first_not_of("+-0"));
  if (text.find('.') != text.npos) text.erase(text.find_last_not_of('0') + 1);
  if (!text.empty() && text.back() == '.') text.pop_back();
  return is_negative && !text.empty() ? "-" + text : text;
}

static bool is_same(uint32_t field, const std::string& before, const std::string& after) {
  if (field == TAV_FLD_ORDER) return plain_decimal(before) == plain_decimal(after);
  if (field == TAV_FLD_SQL_TABLE || field == TAV_FLD_SQL_STORAGE) {
    return dd_equal(before.c_str(), after.c_str());
  }
  return before == after;
}

// Whether a deployment ignores the new value without a message.
static bool is_passed_over(const element& holder, uint32_t field, const written& after) {
  if (&holder.kind == &CLASS && field == TAV_FLD_SQL_TABLE && dd_is_subclass(holder.name)) {
    return true;  // a subclass needs no table: its own is not stored
  }
  return !after.is_given && keeping_of(holder.kind, field) != dd_keeping::NEVER;
}

static void compare_value(const element& before, const element& after, const dparse::attribute& row,
                          bool is_deployment, std::vector<value_change>& changes, tav_ebuf* ebuf) {
  written old_value = write_value(before, row, ebuf);
  written new_value = write_value(after, row, ebuf);
  if (is_same(row.field, old_value.text, new_value.text)) return;
  if (is_deployment && is_passed_over(after, row.field, new_value)) return;
  const bool is_kept = is_deployment && old_value.is_given &&
                       keeping_of(after.kind, row.field) == dd_keeping::ALWAYS;
  changes.push_back({dparse::keyword_text(row.token), std::move(old_value.text),
                     std::move(new_value.text), is_kept});
}

static std::string keyword_of(int32_t type) {
  const char* keyword = dd_is_field_type(type) ? dd_type_keyword(type) : nullptr;
  return keyword != nullptr ? keyword : "";
}

std::string type_of(const element_kind& kind, tav_flist_t* list, tav_ebuf* ebuf) {
  return keyword_of(read_element(kind, list, ebuf).type);
}

std::vector<value_change> compare_values(const element_kind& kind, tav_flist_t* before,
                                         tav_flist_t* after, bool is_deployment, tav_ebuf* ebuf) {
  std::vector<value_change> changes;
  const element old_element = read_element(kind, before, ebuf);
  const element new_element = read_element(kind, after, ebuf);
  if (old_element.type != new_element.type)
    changes.push_back({"type", keyword_of(old_element.type), keyword_of(new_element.type)});
  for (const dparse::attribute& row : dparse::attributes()) {
    if ((row.read_in & kind.attributes) == 0) continue;
    compare_value(old_element, new_element, row, is_deployment, changes, ebuf);
  }
  return changes;
}

std::vector<value_change> values_of(const element_kind& kind, tav_flist_t* list, tav_ebuf* ebuf) {
  std::vector<value_change> values;
  const element one = read_element(kind, list, ebuf);
  for (const dparse::attribute& row : dparse::attributes()) {
    if ((row.read_in & kind.attributes) == 0) continue;
    std::string text = write_value(one, row, ebuf).text;
    if (!text.empty()) values.push_back({dparse::keyword_text(row.token), "", std::move(text)});
  }
  return values;
}

}  // namespace dict
