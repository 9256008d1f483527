// Definition files in the style of the exports.
//
// Each attribute, head and closing brace has a line of its own, indented by tabs; between the
// tokens of a line stands one blank, none before ";". Only blanks and line ends change: order,
// words, strings (which are not joined) and comments stay. A comment behind something stays on its
// line. Blank lines are neither added nor all taken away: of several one stays, before a comment
// that begins a banner ("#=====") two. A string that begins a line begins one again. Line ends are
// those of most lines; the last line has one.
//
// What is broken stays as it is, with the blanks and comments around it.
#ifndef SYNTAX_FORMAT_H
#define SYNTAX_FORMAT_H

#include <string>
#include <string_view>
#include <vector>

#include "syntax/tree.h"

namespace syntax {

struct broken_place {
  uint64_t byte;    // of the text before
  node_kind meant;  // what it was to be
};

struct formatted {
  std::string text;
  std::vector<broken_place> broken;  // in their order
};

formatted format(const tree& tree);
// The same of a text, without the memory for its tree.
formatted format(std::string_view text);

// Whether both have the same tokens and comments, each as it is written, in the same order.
bool same_words(std::string_view text, std::string_view other);

}  // namespace syntax

#endif
