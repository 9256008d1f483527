// Definition texts to try things on, and trees as texts.
#ifndef TESTS_SYNTAX_TEXTS_H
#define TESTS_SYNTAX_TEXTS_H

#include <random>
#include <string>
#include <vector>

#include "syntax/tree.h"

// All definition files of the examples and the tests, those inside case files too, and what fuzzing
// found.
const std::vector<std::string>& all_texts();

// A change somewhere, of pieces that matter to the language.
struct mutation {
  size_t start, removed;
  std::string inserted;
};
mutation mutate(std::mt19937& chance, const std::string& text);
std::string changed(std::string text, const mutation& change);

// F field, C interface, I implementation, E entry, a attribute, ! before what is broken and ? for
// what nobody knows; ":NAME" behind it, and in brackets what is inside.
std::string shape_of(const syntax::tree& tree);

// Everything that a tree holds, and that it holds together: no byte missing, nothing out of place.
std::string dump(const syntax::tree& tree);

#endif
