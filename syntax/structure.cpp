#include "syntax/structure.h"

#include <memory>
#include <new>

namespace syntax {

structure::structure(std::span<const token> tokens, std::span<const node> nodes) {
  static_assert(alignof(token) == alignof(block) && alignof(node) == alignof(block));
  void* const memory = ::operator new(sizeof(block) + tokens.size_bytes() + nodes.size_bytes());
  block_ = new (memory)
      block{1, static_cast<uint32_t>(tokens.size()), static_cast<uint32_t>(nodes.size())};
  std::uninitialized_copy(tokens.begin(), tokens.end(), first_token());
  std::uninitialized_copy(nodes.begin(), nodes.end(), first_node());
}

void structure::free(block* unused) noexcept {
  ::operator delete(unused);
}

}  // namespace syntax
