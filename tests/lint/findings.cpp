#include "tests/lint/findings.h"

#include <gtest/gtest.h>

#include "lint/held.h"

std::vector<lint::source> sources_of(const std::vector<std::string>& texts) {
  std::vector<lint::source> sources;
  for (const std::string& text : texts) {
    const auto letter = static_cast<char>('a' + sources.size());
    sources.push_back({letter + std::string(".def"), syntax::read(text)});
  }
  return sources;
}

std::string shown(const std::vector<lint::source>& sources, const lint::result& found) {
  std::string text;
  for (const lint::finding& each : found.told) {
    const lint::source& from = sources[each.where.source];
    const syntax::place at = syntax::place_at(from.tree, each.where.start);
    text += text.empty() ? "" : ", ";
    if (each.where.source > 0) text += from.name.substr(0, 1) + ":";
    text += std::to_string(at.line) + ":" + std::to_string(at.column + 1) + " ";
    text += each.rule;
  }
  return text;
}

std::string found_in(const std::vector<std::string>& texts) {
  const auto sources = sources_of(texts);
  return shown(sources, lint::lint(sources, {}));
}

held::held(const std::string& text) {
  std::string fault;
  EXPECT_TRUE(lint::read_held(text, fields, classes, fault)) << fault;
}

lint::world held::world(lint::world more) {
  more.fields = fields.get();
  more.classes = classes.get();
  return more;
}
