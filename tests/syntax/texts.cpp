#include "texts.h"

#include <filesystem>
#include <fstream>
#include <sstream>

#include "syntax/scan.h"

namespace fs = std::filesystem;

static void add_parts(const std::string& cases, std::vector<std::string>& texts) {
  for (size_t at = 0; (at = cases.find("\n=== file ", at)) != cases.npos;) {
    const size_t start = cases.find('\n', at + 1) + 1;
    texts.push_back(cases.substr(start, cases.find("\n===", start - 1) + 1 - start));
    at = start - 1;
  }
}

const std::vector<std::string>& all_texts() {
  static const std::vector<std::string> all = [] {
    std::vector<std::string> texts{""};
    for (const char* folder : {"/examples", "/tests"}) {
      for (const auto& each : fs::recursive_directory_iterator(std::string(TAV_ROOT) + folder)) {
        const std::string name = each.path().extension();
        const bool is_found = each.path().parent_path().filename() == "reader";
        if (!is_found && name != ".def" && name != ".case" && name != ".txt") continue;
        std::stringstream text;
        text << std::ifstream(each.path(), std::ios::binary).rdbuf();
        texts.push_back(text.str());
        if (name == ".case") add_parts(text.str(), texts);
      }
    }
    return texts;
  }();
  return all;
}

mutation mutate(std::mt19937& chance, const std::string& text) {
  static const std::string pieces[] = {"{",
                                       "}",
                                       ";",
                                       "=",
                                       "\"",
                                       "\n",
                                       "\r\n",
                                       " ",
                                       "#",
                                       "# no\n",
                                       "STORABLE CLASS ",
                                       "STRING A {",
                                       "\nSTRING A {\nID = 1;\n}\n",
                                       "ID = 5;",
                                       "IMPLEMENTATION",
                                       "word",
                                       "\"text\"",
                                       "\xEF\xBB\xBF",
                                       "\xff",
                                       std::string(1, '\0'),
                                       std::string(2050, 'w'),
                                       "\r",
                                       "ARRAY X { ORDER = 1; }",
                                       ""};
  const size_t start = chance() % (text.size() + 1);
  const size_t most = chance() % 4 == 0 ? 200 : 3;
  const size_t removed = std::min<size_t>(chance() % most, text.size() - start);
  return {start, removed, pieces[chance() % std::size(pieces)]};
}

std::string changed(std::string text, const mutation& change) {
  return text.replace(change.start, change.removed, change.inserted);
}

static void add_shape(const syntax::tree& tree, const syntax::definition& in, uint32_t index,
                      std::string& shape) {
  const syntax::node& node = nodes_of(in)[index];
  if (node.kind != node.meant || node.kind == syntax::node_kind::BROKEN) shape += '!';
  shape += "FCIEa?"[static_cast<size_t>(node.meant)];
  const std::string name(name_of(tree.text, in, node));
  if (!name.empty()) shape += ":" + name;
  const uint32_t end = behind(in, index);
  if (index + 1 < end) shape += '[';
  for (uint32_t child = index + 1; child < end; child = behind(in, child)) {
    if (child > index + 1) shape += ' ';
    add_shape(tree, in, child, shape);
  }
  if (index + 1 < end) shape += ']';
}

std::string shape_of(const syntax::tree& tree) {
  std::string shape;
  for (const syntax::definition& each : tree.definitions) {
    if (!shape.empty()) shape += ' ';
    add_shape(tree, each, 0, shape);
  }
  return shape;
}

static void add_gap(const syntax::tree& tree, size_t& at, size_t end, std::string& all) {
  while (at < end) {
    const auto [kind, next] = syntax::next_in_gap(tree.text, at);
    if (kind == syntax::gap_kind::NONE || next > end) break;
    all += tree.text.substr(at, next - at);
    at = next;
  }
  if (at != end) all += "(a gap that holds more than blanks)";
}

std::string dump(const syntax::tree& tree) {
  std::string all, records;
  size_t at = 0, start = 0;
  for (const syntax::definition& each : tree.definitions) {
    if (each.start != start) records += "(definitions apart)";
    for (const syntax::token& token : tokens_of(each)) {
      add_gap(tree, at, place_of(each, token), all);
      const std::string_view text = text_of(tree.text, each, token);
      all += text;
      at += text.size();
      records += std::to_string(token.start) + "/" + std::to_string(token.kind_and_length) + " ";
    }
    const auto nodes = nodes_of(each);
    if (nodes[0].first != 0 || nodes[0].count != tokens_of(each).size())
      records += "(tokens left over)";
    for (uint32_t i = 0; i < nodes.size(); ++i) {
      const auto& node = nodes[i];
      for (uint32_t inner = i + 1; inner < behind(each, i); ++inner)
        if (nodes[inner].first + nodes[inner].count > node.first + node.count)
          records += "(a node sticks out)";
      records += std::to_string(static_cast<int>(node.kind)) +
                 std::to_string(static_cast<int>(node.meant)) + ":" + std::to_string(node.first) +
                 "+" + std::to_string(node.count) + " ";
    }
    start = each.start + each.length;
    if (start != at) records += "(definition ends elsewhere)";
    records.append("@").append(std::to_string(start) + "+" + std::to_string(each.ahead) + "\n");
  }
  add_gap(tree, at, tree.text.size(), all);
  if (all != tree.text) records += "(the text is another)";
  for (const uint32_t lines : tree.lines) records += std::to_string(lines) + " ";
  return records;
}
