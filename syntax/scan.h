// Tokens and what stands between them, straight from a text that is in memory whole.
//
// What a token is comes from the reader's own tables (dparse/characters.h, dparse/tokens.h). Two
// things differ, because nothing of the text may be lost: a token that is longer than the reader
// takes stays whole, and a byte order mark before everything else is no part of a word.
#ifndef SYNTAX_SCAN_H
#define SYNTAX_SCAN_H

#include <cstddef>
#include <string_view>

#include "dparse/tokens.h"

namespace syntax {

struct scanned {
  size_t start;  // bytes from the beginning of the text
  size_t end;    // behind its last byte
  int kind;      // its number in dparse/tokens.h
};

// The token that stands at `at` or, behind blanks and comments, next. At the end of the text one of
// no length, DPARSE_TOKEN_EOF. A string includes its quotes; one that a NUL byte breaks off
// (DPARSE_TOKEN_BAD_STRING) includes that byte, one that its line breaks off ends before the line
// end.
scanned scan(std::string_view text, size_t at);

enum class gap_kind {
  NONE,      // a token stands there, or the text ends
  MARK,      // a byte order mark
  BLANKS,    // white space within a line
  LINE_END,  // "\n" or "\r\n"
  COMMENT    // from "#" to before the line end
};

struct gap_piece {
  gap_kind kind;
  size_t end;
};

// What stands at `at`, which is between two tokens.
gap_piece next_in_gap(std::string_view text, size_t at);

// How many bytes the byte order mark at the beginning takes: 3, or 0 where there is none.
size_t mark_size(std::string_view text);

}  // namespace syntax

#endif
