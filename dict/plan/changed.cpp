// The definitions of what changes, taken from the files token by token, so that nothing of them is
// lost but their comments.
#include <unordered_set>

#include "dict/plan/plan.h"
#include "dm/folded.h"
#include "lint/index.h"
#include "syntax/format.h"

namespace dict {

using syntax::node_kind;

static dm::key_set names_of(const judged& files, dm::change_of what) {
  dm::key_set names;
  for (const dm::outcome& one : files.result.changes) {
    if (one.what == what) names.insert(dm::folded(one.name));
  }
  return names;
}

static void append(const lint::index& all, const lint::node_place& at, std::string& text) {
  const syntax::definition& definition = lint::definition_of(all, at);
  for (const syntax::token& each : syntax::tokens_of(definition, definition.nodes[0])) {
    text.append(syntax::text_of(lint::text_of(all, at), definition, each)).append(" ");
  }
  text += "\n\n";
}

std::string changed_definitions(const std::vector<lint::source>& sources, const judged& files) {
  const lint::index all = lint::index_of(sources);
  const dm::key_set fields = names_of(files, dm::change_of::FIELD);
  const dm::key_set classes = names_of(files, dm::change_of::CLASS);
  std::string text;
  for (const lint::defined& each : all.definitions) {
    const dm::key_set& names = each.kind == node_kind::FIELD ? fields : classes;
    if (names.count(dm::folded(each.name)) != 0) append(all, each.where, text);
  }
  text = syntax::format(text).text;
  return text.substr(0, text.find_last_not_of('\n') + 2);
}

}  // namespace dict
