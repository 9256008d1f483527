#include "lint/collect.h"

#include <algorithm>
#include <tuple>

namespace lint {

void tell(result& to, finding found) {
  if (!is_full(to)) {
    to.told.push_back(std::move(found));
  } else {
    ++to.untold[static_cast<size_t>(found.told)];
  }
}

void put_in_order(result& to) {
  std::ranges::stable_sort(to.told, [](const finding& a, const finding& b) {
    return std::tie(a.where.source, a.where.start) < std::tie(b.where.source, b.where.start);
  });
}

}  // namespace lint
