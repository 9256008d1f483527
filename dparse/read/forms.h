// Reading the values of attributes: a function for each form of value. Each reads what follows the
// keyword, from "=" to ";", and stores the value in the element (dparse_form in
// dparse/attributes.h).
#ifndef DPARSE_READ_FORMS_H
#define DPARSE_READ_FORMS_H

#include "dparse/attributes.h"

using dparse_reader = int(FILE* stream, dparse_element& element, const dparse_attribute& row);

dparse_reader dparse_read_text;           // "text"
dparse_reader dparse_read_quoted_number;  // "7"
dparse_reader dparse_read_seq_start;      // "7", in a top-level class only
dparse_reader dparse_read_access;         // SELF or "Self"
dparse_reader dparse_read_word;           // a keyword of the row's word list
dparse_reader dparse_read_exact_word;     // a keyword, or a text of that list in quotes
dparse_reader dparse_read_folded_word;    // a keyword, or a text of that list in quotes, any case
dparse_reader dparse_read_yes_no;         // the same; stored as 1 for YES, else 0
dparse_reader dparse_read_zero_one;       // 0 or 1
dparse_reader dparse_read_number;         // 0 and above
dparse_reader dparse_read_id;             // above 0; a field defined before must keep its number
dparse_reader dparse_read_length;         // 0 (which stores nothing) and above
dparse_reader dparse_read_order;          // 1.5
dparse_reader dparse_read_table;          // "name" of a table
dparse_reader dparse_read_column;         // "name" of a column
dparse_reader dparse_read_attrval;        // "text"; each adds an element
dparse_reader dparse_read_objectclass;    // "text"; one element only

#endif
