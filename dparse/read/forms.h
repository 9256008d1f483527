// Reading the values of attributes: a function for each form of value. Each reads what follows the
// keyword, from "=" to ";", and stores the value in the element (value_form in
// dparse/attributes.h).
#ifndef DPARSE_READ_FORMS_H
#define DPARSE_READ_FORMS_H

#include "dparse/attributes.h"

namespace dparse {

using value_reader = int(FILE* stream, target_element& element, const attribute& row);

value_reader read_text;           // "text"
value_reader read_quoted_number;  // "7"
value_reader read_seq_start;      // "7", in a top-level class only
value_reader read_access;         // SELF or "Self"
value_reader read_word;           // a keyword of the row's word list
value_reader read_exact_word;     // a keyword, or a text of that list in quotes
value_reader read_folded_word;    // a keyword, or a text of that list in quotes, any case
value_reader read_yes_no;         // the same; stored as 1 for YES, else 0
value_reader read_zero_one;       // 0 or 1
value_reader read_number;         // 0 and above
value_reader read_id;             // above 0; a field defined before must keep its number
value_reader read_length;         // 0 (which stores nothing) and above
value_reader read_order;          // 1.5
value_reader read_table;          // "name" of a table
value_reader read_column;         // "name" of a column
value_reader read_attrval;        // "text"; each adds an element
value_reader read_objectclass;    // "text"; one element only

}  // namespace dparse

#endif
