// Rules for classes: interface and implementation, order numbers.
#include <algorithm>

#include "lint/rules/own.h"

namespace lint {

using syntax::node_kind;

static bool has_entries(const own_run& run, const node_place& around) {
  const syntax::definition& in = definition_of(run.all, around);
  const auto inside = nodes_of(in).subspan(around.node + 1);
  const size_t count = syntax::behind(in, around.node) - around.node - 1;
  return std::ranges::any_of(
      inside.first(count), [](const syntax::node& node) { return node.meant == node_kind::ENTRY; });
}

// A subclass without entries has nothing to store.
void check_implementation(own_run& run, const visit& visited) {
  const std::string_view name = name_of(run.all, visited.at());
  if (kind_of(run.all, visited.at()) != node_kind::INTERFACE) return;
  if (find(run.all, node_kind::IMPLEMENTATION, name) != nullptr) return;
  const bool is_subclass = name.size() > 1 && name.find('/', 1) != name.npos;
  if (is_subclass && !has_entries(run, visited.at())) return;
  report(run, "interface-without-implementation", name_span(run.all, visited.at()),
         subject_of(run.all, visited.way),
         thing_of(run.all, visited.way) +
             " has no implementation in these files, which says where it is stored: add "
             "STORABLE CLASS " +
             std::string(name) + " IMPLEMENTATION TESSEL7 { ... }.");
}

// 7, 07 and 7.00 are the same; empty for zero, with which exports mark what has no place.
static std::string plain_decimal(std::string_view word) {
  std::string text(word.substr(std::min(word.find_first_not_of("0"), word.size())));
  if (text.find('.') == text.npos) return text;
  text.erase(text.find_last_not_of('0') + 1);
  if (text.back() == '.') text.pop_back();
  return text;
}

namespace {

// An entry and the number that its ORDER gives.
struct numbered {
  std::string number;
  node_place entry;
  span where;
};

}  // namespace

static std::vector<numbered> numbers_in(const index& all, const node_place& around) {
  std::vector<numbered> found;
  each_member(all, around, [&](const node_place& entry) {
    node_place order;
    if (kind_of(all, entry) != node_kind::ENTRY || !find_attribute(all, entry, "ORDER", order))
      return;
    const span where = value_span(all, order);
    std::string number = plain_decimal(text_of(all, where));
    if (!number.empty()) found.push_back({std::move(number), entry, where});
  });
  std::ranges::stable_sort(found, {}, &numbered::number);
  return found;
}

void check_order(own_run& run, const visit& visited) {
  const node_kind kind = kind_of(run.all, visited.at());
  if (kind != node_kind::INTERFACE && kind != node_kind::ENTRY) return;
  if (kind_of(run.all, visited.way.front()) != node_kind::INTERFACE) return;
  const numbered* first = nullptr;  // that has the number
  const std::vector<numbered> all = numbers_in(run.all, visited.at());
  for (const numbered& each : all) {
    if (first == nullptr || first->number != each.number) {
      first = &each;
      continue;
    }
    std::vector<node_place> way = visited.way;
    way.push_back(each.entry);
    report(run, "repeated-order", each.where, subject_of(run.all, way),
           "ORDER " + each.number + " of " + std::string(name_of(run.all, each.entry)) +
               " is also that of " + std::string(name_of(run.all, first->entry)) +
               " beside it: give each its own.",
           {{name_span(run.all, first->entry), "The first entry of that number."}});
  }
}

}  // namespace lint
