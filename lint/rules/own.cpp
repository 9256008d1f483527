#include "lint/rules/own.h"

#include <algorithm>

#include "dd/field_ids.h"
#include "dd/fold.h"
#include "lint/rules.h"

namespace lint {

using syntax::node_kind;

namespace {

using check = void (*)(own_run& run, const visit& visited);

constexpr check OF_DEFINITIONS[] = {check_name, check_description, check_field_number,
                                    check_use,  check_files,       check_implementation};
constexpr check OF_NODES[] = {check_text, check_storage_names, check_order};

constexpr std::string_view PREDEFINED[] = {
#define LINT_NAME(name, type, number, description) #name,
    DD_FIELD_IDS(LINT_NAME)
#undef LINT_NAME
};

}  // namespace

void report(own_run& run, std::string_view id, const span& where, std::string subject,
            std::string sentence, std::vector<related_place> related) {
  const rule& row = *find_rule(id);
  const level told = run.options.level_of ? run.options.level_of(row.id) : row.normal;
  if (told == level::OFF) return;
  if (run.found.told.size() >= run.most) {
    ++run.found.untold[static_cast<size_t>(told)];
  } else {
    run.found.told.push_back(
        {row.id, told, where, std::move(sentence), std::move(subject), std::move(related)});
  }
}

bool is_predefined(std::string_view field) {
  return std::ranges::any_of(
      PREDEFINED, [field](std::string_view name) { return by_view::equal(name, field); });
}

bool is_read_again(const own_options& options, uint32_t source) {
  return source < options.same_file.size() && options.same_file[source] != source;
}

static const char* word_of(node_kind kind) {
  switch (kind) {
    case node_kind::FIELD:
      return "field ";
    case node_kind::INTERFACE:
      return "class ";
    case node_kind::IMPLEMENTATION:
      return "implementation of ";
    case node_kind::ENTRY:
      return "entry ";
    default:
      return "attribute ";
  }
}

std::string subject_of(const index& all, const std::vector<node_place>& way) {
  std::string subject;
  for (const node_place& at : way) {
    if (!subject.empty()) subject += ", ";
    subject.append(word_of(kind_of(all, at))).append(name_of(all, at));
  }
  return subject;
}

std::string thing_of(const index& all, const std::vector<node_place>& way) {
  std::string thing;
  for (auto at = way.rbegin(); at != way.rend(); ++at) {
    const bool is_attribute = kind_of(all, *at) == node_kind::ATTRIBUTE;
    if (!thing.empty())
      thing += kind_of(all, *std::prev(at)) == node_kind::ATTRIBUTE ? " of " : " in ";
    thing.append(is_attribute ? "" : word_of(kind_of(all, *at))).append(name_of(all, *at));
  }
  if (!thing.empty() && thing[0] >= 'a' && thing[0] <= 'z')
    thing[0] = static_cast<char>(thing[0] - 'a' + 'A');
  return thing;
}

static std::string_view unquoted(std::string_view text) {
  return text.substr(1, text.size() - 2);
}

bool read_text(const index& all, const node_place& attribute, std::string& text) {
  const syntax::definition& in = definition_of(all, attribute);
  text.clear();
  bool has_strings = false;
  for (const syntax::token& token : tokens_of(in, node_of(all, attribute))) {
    if (token.kind() != DPARSE_TOKEN_STRING) continue;
    text += unquoted(syntax::text_of(text_of(all, attribute), in, token));
    has_strings = true;
  }
  return has_strings;
}

// Visits all nodes of a definition but broken ones and what is in them. `ends` is memory.
static void check_nodes(own_run& run, std::vector<node_place>& way, std::vector<uint32_t>& ends) {
  const syntax::definition& in = definition_of(run.all, way.front());
  const auto nodes = nodes_of(in);
  ends.assign(1, static_cast<uint32_t>(nodes.size()));
  for (uint32_t node = 0; node < nodes.size();) {
    while (node >= ends.back()) ends.pop_back(), way.pop_back();
    if (nodes[node].kind == node_kind::BROKEN) {
      node = syntax::behind(in, node);
      continue;
    }
    if (node > 0) {
      node_place at = way.front();
      at.node = node;
      way.push_back(at);
      ends.push_back(syntax::behind(in, node));
    }
    for (const check each : OF_NODES) each(run, {way});
    ++node;
  }
}

own_findings check_own(const index& all, const own_options& options, size_t most) {
  own_findings found;
  const auto is_class = [](const defined& one) { return one.kind == node_kind::INTERFACE; };
  own_run run{all, options, most, found, std::ranges::any_of(all.definitions, is_class)};
  run.sound_up_to.resize(all.sources.size());
  for (uint32_t source = 0; source < all.sources.size(); ++source) {
    check_names_of_files(run, source);
    if (!is_read_again(options, source)) check_bytes(run, source);
  }
  std::vector<node_place> way;
  std::vector<uint32_t> ends;
  for (const defined& each : all.definitions) {
    way.assign(1, each.where);
    if (node_of(all, each.where).kind == node_kind::BROKEN) continue;
    if (is_read_again(options, each.where.source)) continue;
    run.defined = &each;
    for (const check one : OF_DEFINITIONS) one(run, {way});
    check_nodes(run, way, ends);
  }
  return found;
}

}  // namespace lint
