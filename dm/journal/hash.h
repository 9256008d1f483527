// SHA-256, of states of things and of records.
#ifndef DM_JOURNAL_HASH_H
#define DM_JOURNAL_HASH_H

#include <nettle/sha2.h>

#include <string>
#include <string_view>

#include "dm/journal/record.h"

namespace dm {

// A hash of texts that come one after the other.
class sha256 {
 public:
  sha256() { sha256_init(&context_); }
  void add(std::string_view text) {
    sha256_update(&context_, text.size(), reinterpret_cast<const uint8_t*>(text.data()));
  }
  // In hexadecimal; begins anew.
  std::string hex();

 private:
  sha256_ctx context_;
};

inline constexpr size_t HASH_LENGTH = 2 * SHA256_DIGEST_SIZE;

std::string hash_of(std::string_view text);

// The hash of a record: of all its columns but the hash itself, each with its length before it, and
// of `content`, the hash of the record's packed changes one after the other.
std::string hash_of_record(const journal_record& record, std::string_view content);

// A number that nobody else has drawn: 128 random bits in hexadecimal.
std::string new_identity();

}  // namespace dm

#endif
