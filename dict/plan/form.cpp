#include "dict/plan/form.h"

#include "dm/journal/hash.h"

namespace dict {

// What stands around the digest, which is over all before it.
static constexpr std::string_view BEFORE = ",\n  \"digest\": \"";
static constexpr std::string_view BEHIND = "\"\n}\n";

std::string with_digest(const std::string& text) {
  const std::string open = text.substr(0, text.rfind("\n}"));
  return open + std::string(BEFORE) + dm::hash_of(open) + std::string(BEHIND);
}

std::string sound_digest(std::string_view text) {
  const size_t end = BEFORE.size() + dm::HASH_LENGTH + BEHIND.size();
  if (text.size() < end) return "";
  const std::string_view open = text.substr(0, text.size() - end);
  const std::string digest = dm::hash_of(open);
  std::string sound(open);
  sound.append(BEFORE).append(digest).append(BEHIND);
  return sound == text ? digest : "";
}

}  // namespace dict
