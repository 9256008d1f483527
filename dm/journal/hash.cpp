#include "dm/journal/hash.h"

#include <sys/random.h>

#include <cstdlib>

namespace dm {

static std::string in_hex(const uint8_t* bytes, size_t count) {
  static constexpr char DIGITS[] = "0123456789abcdef";
  std::string text(2 * count, '0');
  for (size_t i = 0; i < count; ++i) {
    text[2 * i] = DIGITS[bytes[i] >> 4];
    text[2 * i + 1] = DIGITS[bytes[i] & 15];
  }
  return text;
}

std::string sha256::hex() {
  uint8_t digest[SHA256_DIGEST_SIZE];
  sha256_digest(&context_, sizeof digest, digest);
  return in_hex(digest, sizeof digest);
}

std::string hash_of(std::string_view text) {
  sha256 hash;
  hash.add(text);
  return hash.hex();
}

static void add_column(sha256& hash, std::string_view text) {
  hash.add(std::to_string(text.size()) + ":");
  hash.add(text);
}

std::string hash_of_record(const journal_record& record, std::string_view content) {
  sha256 hash;
  for (const int64_t number : {record.number, record.deployment, record.changes}) {
    add_column(hash, std::to_string(number));
  }
  for (const auto& row : JOURNAL_TEXTS) {
    if (row.text != &journal_record::hash) add_column(hash, record.*row.text);
  }
  add_column(hash, content);
  return hash.hex();
}

std::string new_identity() {
  uint8_t bytes[16];
  // So few bytes come whole or not at all. A kernel that gives none has no use for a dictionary.
  if (getrandom(bytes, sizeof bytes, 0) != static_cast<ssize_t>(sizeof bytes)) std::abort();
  return in_hex(bytes, sizeof bytes);
}

}  // namespace dm
