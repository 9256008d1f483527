#include "lint/lint.h"

#include <algorithm>
#include <tuple>

namespace lint {

static void sort(std::vector<finding>& found) {
  std::ranges::stable_sort(found, [](const finding& a, const finding& b) {
    return std::tie(a.where.source, a.where.start) < std::tie(b.where.source, b.where.start);
  });
}

result lint(const std::vector<source>& sources, const world& against) {
  const index all = index_of(sources);
  result found;
  if (against.own) found.told = against.own(all);
  sort(found.told);
  return found;
}

}  // namespace lint
