// The definitions of what changes, taken from the files token by token, so that nothing of them is
// lost but their comments.
#include <new>

#include "dd/report.h"
#include "dd/values.h"
#include "dd/walk.h"
#include "deploy/import/import.h"
#include "dict/plan/plan.h"
#include "dm/folded.h"
#include "lint/index.h"
#include "lint/judge.h"
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
  for (const syntax::token& each : syntax::tokens_of(definition, nodes_of(definition)[0])) {
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
    if (names.count(dm::folded(name_of(all, each))) != 0) append(all, each.where, text);
  }
  text = syntax::format(text).text;
  return text.substr(0, text.find_last_not_of('\n') + 2);
}

// --- Reading them again --------------------------------------------------------------------------

using elements_by_name = dm::key_map<std::vector<tav_flist_t*>>;  // the last one first

static elements_by_name elements_of(const dd_list& classes, tav_ebuf* ebuf) {
  elements_by_name found;
  dd_walk walk(classes.get(), TAV_FLD_OBJ_DESC);
  while (tav_flist_t* storable = walk.next(ebuf)) {
    auto& all = found[dm::folded(dd_text(storable, TAV_FLD_NAME, ebuf))];
    all.insert(all.begin(), storable);
  }
  return found;
}

// The classes in the order of the others.
static dd_flist in_order(const dd_list& classes, const dd_list& others, tav_ebuf* ebuf) {
  elements_by_name left = elements_of(classes, ebuf);
  dd_flist ordered(tav_flist_create(ebuf));
  dd_walk walk(others.get(), TAV_FLD_OBJ_DESC);
  while (tav_flist_t* other = walk.next(ebuf)) {
    auto& all = left[dm::folded(dd_text(other, TAV_FLD_NAME, ebuf))];
    if (all.empty()) continue;
    dd_append(ordered.get(), TAV_FLD_OBJ_DESC, dd_flist(tav_flist_copy(all.back(), ebuf)), ebuf);
    all.pop_back();
  }
  return ordered;
}

bool read_again(const std::string& text, const judged& files, definitions& result) {
  lint::definitions read;
  if (!lint::judge(text, read).is_sound()) return false;
  deploy::class_entries entries;
  std::vector<std::string> printed;
  dd_take_errors(&printed);
  const int is_merged =
      deploy::merge_implementations(read.interfaces, read.implementations, entries);
  dd_take_errors(nullptr);
  tav_ebuf ebuf{};
  result.classes.give(in_order(read.interfaces, files.sent.classes, &ebuf));
  result.fields.give(dd_flist(tav_flist_copy(read.fields.get(), &ebuf)));
  if (dd_failed(ebuf)) throw std::bad_alloc();
  return is_merged >= 1;
}

}  // namespace dict
