// Reading the values of attributes, form by form. Each reads what follows the keyword, ";"
// included, and stores it in the element; see dparse_form.
#ifndef DPARSE_READ_FORMS_H
#define DPARSE_READ_FORMS_H

#include "dparse/attributes.h"

// Said of the numbers that may be above 1 too: deliberate.
inline constexpr char DPARSE_ZERO_OR_ONE_EXPECTED[] = "0 or 1 expected instead of '%s'";

using dparse_reader = int(FILE* stream, dparse_element& element, const dparse_attribute& row);

dparse_reader dparse_read_text;           // "text"
dparse_reader dparse_read_quoted_number;  // "7"
dparse_reader dparse_read_seq_start;      // "7", in a top-level class only
dparse_reader dparse_read_access;         // SELF or "Self"
dparse_reader dparse_read_word;           // a keyword of the word list
dparse_reader dparse_read_exact_word;     // the same, or its text quoted
dparse_reader dparse_read_folded_word;    // the same, the quoted text in any case
dparse_reader dparse_read_yes_no;         // the same, kept as 1 or 0
dparse_reader dparse_read_zero_one;       // 0 or 1
dparse_reader dparse_read_number;         // 0 and above
dparse_reader dparse_read_id;             // above 0, and that of an earlier definition
dparse_reader dparse_read_length;         // 0 (which keeps none) and above
dparse_reader dparse_read_order;          // 1.5
dparse_reader dparse_read_table;          // "name" of a table
dparse_reader dparse_read_column;         // "name" of a column
dparse_reader dparse_read_attrval;        // "text", one more element each time
dparse_reader dparse_read_objectclass;    // "text", once

#endif
