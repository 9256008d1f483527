#include "lint/gaps.h"

#include <algorithm>

namespace lint {

uint64_t gap_before(const syntax::tree& tree, uint64_t byte) {
  const syntax::definition* in = syntax::definition_at(tree, byte);
  if (in == nullptr) {
    const auto& all = tree.definitions;
    return all.empty() ? 0 : all.back().start + all.back().length;
  }
  const auto tokens = syntax::tokens_of(*in);
  const auto behind = std::upper_bound(
      tokens.begin(), tokens.end(), byte,
      [in](uint64_t at, const syntax::token& token) { return at < place_of(*in, token); });
  if (behind == tokens.begin()) return in->start;
  const syntax::token& token = *std::prev(behind);
  const uint64_t end = place_of(*in, token) + text_of(tree.text, *in, token).size();
  return byte < end ? std::string::npos : end;
}

}  // namespace lint
