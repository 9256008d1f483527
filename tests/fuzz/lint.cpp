// Definition files in any state, linted: the first syntax error is the reader's, every place lies
// inside its file, and a second run finds the same.
//
// The input's first byte says where the text is cut in two files.
#include "lint/lint.h"
#include "lint/judge.h"
#include "lint/rules.h"
#include "tests/fuzz/target.h"

static void claim_inside(const std::vector<lint::source>& sources, const lint::span& where) {
  claim(where.source < sources.size(), "a place is in a file");
  const std::string& text = sources[where.source].tree.text;
  claim(where.start <= text.size() && where.length <= text.size() - where.start,
        "a place lies inside its file", text);
}

static std::string checked(const std::vector<lint::source>& sources, const lint::result& found) {
  std::string all;
  for (const lint::finding& each : found.told) {
    claim(lint::find_rule(each.rule) != nullptr, "a rule has a row", std::string(each.rule));
    claim(each.sentence.find('\n') == each.sentence.npos, "a sentence is one line", each.sentence);
    claim_inside(sources, each.where);
    for (const lint::related_place& other : each.related) claim_inside(sources, other.where);
    all += std::to_string(each.where.source) + ":" + std::to_string(each.where.start) + " " +
           std::string(each.rule) + " " + each.sentence + "\n";
  }
  return all;
}

static void claim_reader_agrees(const std::vector<lint::source>& sources,
                                const lint::result& found) {
  lint::definitions read;
  for (uint32_t source = 0; source < sources.size(); ++source) {
    const lint::verdict told = lint::judge(sources[source].tree.text, read);
    if (told.is_sound()) continue;
    for (const lint::finding& each : found.told) {
      if (each.reader_line == 0) continue;
      claim(each.where.source == source && each.reader_line == told.line &&
                each.rule == dparse::row_of(told.told).id,
            "the first syntax error is the reader's", sources[source].tree.text + each.sentence);
      return;
    }
    claim(false, "a syntax error is told", sources[source].tree.text);
  }
}

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1) return 0;
  const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
  const size_t cut = data[0] * text.size() / 255;
  std::vector<lint::source> sources;
  sources.push_back({"a.def", syntax::read(text.substr(0, cut))});
  sources.push_back({"b.def", syntax::read(text.substr(cut))});
  const lint::result first = lint::lint(sources, {});
  const std::string told = checked(sources, first);
  claim_reader_agrees(sources, first);
  claim(checked(sources, lint::lint(sources, {})) == told, "a second run finds the same", text);
  return 0;
}
