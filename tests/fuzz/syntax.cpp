// Definition files as trees, and laid out: no byte is lost, an edit gives the tree of the new text,
// and formatting changes neither words nor meaning, and nothing the second time.
//
// The input's first bytes choose an edit, the rest is the text.
#include "dparse/read/reader.h"
#include "syntax/format.h"
#include "syntax/scan.h"
#include "tests/dparse/language.h"
#include "tests/fuzz/target.h"
#include "tests/syntax/texts.h"

static void try_edit(const std::string& text, const uint8_t (&choice)[3]) {
  syntax::tree tree = syntax::read(text);
  const std::string first = dump(tree);
  claim(first.find('(') == first.npos, "a tree holds together", first + text);
  const size_t start = choice[0] * text.size() / 255;
  const std::string inserted = text.substr(choice[2] * text.size() / 255, choice[2] % 32);
  const size_t count = apply(tree, {start, choice[1], inserted});
  std::string changed = text;
  changed.replace(start, choice[1], inserted);
  claim(tree.text == changed, "an edit changes the text", tree.text);
  claim(dump(tree) == dump(syntax::read(changed)), "an edit gives the tree of the new text", text);
  claim(count <= tree.definitions.size(), "an edit reads no definition twice", text);
}

static void try_format(const std::string& text) {
  const std::string pretty = syntax::format(text).text;
  claim(syntax::same_words(text, pretty), "formatting keeps words and comments", pretty);
  claim(syntax::format(pretty).text == pretty, "what is formatted stays so", pretty);
  claim(syntax::format(syntax::read(text)).text == pretty, "a tree is formatted alike", text);
  lists before, after;
  const int result = before.read(text);
  const bool is_same = after.read(pretty) == result && after.text() == before.text();
  claim(is_same, "formatting keeps the meaning", text + "\n---\n" + pretty);
}

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  tav_err_set_level(0);
  if (size < 3) return 0;
  const std::string text(reinterpret_cast<const char*>(data) + 3, size - 3);
  try_edit(text, {data[0], data[1], data[2]});
  try_format(text);
  return 0;
}
