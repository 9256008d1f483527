// The values of a field, class or field entry, side by side.
#ifndef DICT_DIFF_VALUES_H
#define DICT_DIFF_VALUES_H

#include "dict/diff/diff.h"

namespace dict {

// A kind of element, and where its attributes stand in the language.
struct element_kind {
  const char* what;
  uint32_t name;        // field that names it
  unsigned attributes;  // the DD_IN_ set
};
extern const element_kind FIELD;
extern const element_kind CLASS;
extern const element_kind ENTRY;

// The type's keyword; empty for a class.
std::string type_of(const element_kind& kind, tav_flist_t* element, tav_ebuf* ebuf);

// The values that differ between two elements of that kind.
std::vector<value_change> compare_values(const element_kind& kind, tav_flist_t* before,
                                         tav_flist_t* after, bool is_deployment, tav_ebuf* ebuf);

// The attributes that the language writes of an element, each as one that comes new.
std::vector<value_change> values_of(const element_kind& kind, tav_flist_t* element, tav_ebuf* ebuf);

}  // namespace dict

#endif
