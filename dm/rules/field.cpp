#include "dm/rules/field.h"

#include "dm/rules/text.h"

namespace dm {

static_assert(DD_HIGHEST_FIELD_NUMBER == 16777215, "the sentence below and the tables say it, too");

bool blame_field(const char* name, int32_t code, uint32_t which, std::string_view fault,
                 problem& why) {
  why = {code, which, 0, 0, join({"Field ", quoted(name != nullptr ? name : ""), " ", fault, "."})};
  return false;
}

bool is_well_formed(const field_def& field, problem& why) {
  constexpr int32_t MISSING = TAV_ERR_MISSING_FIELD;
  constexpr int32_t VALUE = TAV_ERR_BAD_VALUE;
  const char* name = field.name;
  if (name == nullptr) return blame_field(name, MISSING, TAV_FLD_FIELD_NAME, "has no name", why);
  if (const char* fault = field_name_fault(name)) {
    return blame_field(name, VALUE, TAV_FLD_FIELD_NAME, join({"cannot have this name: it ", fault}),
                       why);
  }
  if (!field.type) {
    return blame_field(name, MISSING, TAV_FLD_FIELD_TYPE, "has no type", why);
  }
  if (!dd_is_field_type(*field.type)) {
    return blame_field(name, VALUE, TAV_FLD_FIELD_TYPE,
                       join({"has the unknown type ", std::to_string(*field.type)}), why);
  }
  if (!field.number) {
    return blame_field(name, MISSING, TAV_FLD_FIELD_NUM, "has no number", why);
  }
  if (*field.number < 1 || *field.number > DD_HIGHEST_FIELD_NUMBER) {
    return blame_field(
        name, VALUE, TAV_FLD_FIELD_NUM,
        join({"has the number ", std::to_string(*field.number), "; numbers go from 1 to 16777215"}),
        why);
  }
  const char* fault = field.descr != nullptr ? text_fault(field.descr) : nullptr;
  return fault == nullptr ||
         blame_field(name, VALUE, TAV_FLD_DESCR, join({"has a description that ", fault}), why);
}

}  // namespace dm
