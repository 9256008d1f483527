#include "lint/collect.h"

#include <algorithm>
#include <tuple>

namespace lint {

static bool is_off(const result& to, std::string_view rule, level told) {
  return told == level::OFF || (to.is_off && to.is_off(rule));
}

void count_untold(result& to, std::string_view rule, level told) {
  if (!is_off(to, rule, told)) ++to.untold[static_cast<size_t>(told)];
}

void tell(result& to, finding found) {
  if (is_off(to, found.rule, found.told)) {
    if (to.off == MOST_TOLD) return;
    ++to.off;
  } else if (is_full(to)) {
    return count_untold(to, found.rule, found.told);
  }
  to.told.push_back(std::move(found));
}

void put_in_order(result& to) {
  std::ranges::stable_sort(to.told, [](const finding& a, const finding& b) {
    return std::tie(a.where.source, a.where.start) < std::tie(b.where.source, b.where.start);
  });
}

}  // namespace lint
