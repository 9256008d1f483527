#include "dm/keywords.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>

#include "dd/fold.h"

namespace dm {

// Sorted, for the search.
// clang-format off
static constexpr const char* KEYWORDS[] = {
    "ANCESTRALLINEAGE", "ANY", "ARRAY", "ATTRIBUTE", "ATTRVAL", "AUDIT_SCHEME", "AUDITABLE",
    "BINSTR", "BRAND", "BRANDLINEAGE", "BRANDOWNER", "BUF", "CLASS", "COMPACTED", "CREATE",
    "CREATE_ACCESS", "DECIMAL", "DESCR", "EBUF", "ENCRYPTABLE", "ENTRY_TYPE", "ENUM", "EVENT_TYPE",
    "EXPANDED", "FINITE", "GLOBAL", "HISTORIC", "ID", "IGNORE_ON_AUDIT", "IMPLEMENTATION", "INT",
    "INT64", "IS_PARTITIONED", "LABEL", "LENGTH", "LINK_ATTRIBUTE", "LINK_OBJECT", "LOCATION",
    "MODIFY", "MULTIVALUED", "NO", "NOT_WRITABLE", "NOT_WRITEABLE", "NUM", "OBJ", "OBJECTCLASS",
    "OPTIONAL", "ORDER", "PARTITION_MODE", "POID", "PROHIBITED", "QUERYABLE_ON_AUDIT", "RDN_PIECE",
    "READ_ACCESS", "REQUIRED", "RESIDENCY_TYPE", "ROOT", "SELF", "SEQ_START", "SERIALIZABLE",
    "SQL_COLUMN", "SQL_COLUMN_PREFIX", "SQL_STORAGE", "SQL_TABLE", "STORABLE", "STRING",
    "SUBSTRUCT", "SYSTEM", "TIMESTAMP", "UINT", "VIRTUAL_FLAG", "WRITABLE", "WRITE_ACCESS",
    "WRITEABLE", "YES",
};
// clang-format on
static_assert(std::size(KEYWORDS) == 75);  // all of the reader's table but { } = ;

// How long the keywords of each first letter are, a bit for each: mostly not as long as a name.
static constexpr auto LENGTHS = [] {
  std::array<uint32_t, 256> lengths{};
  for (const std::string_view keyword : KEYWORDS) {
    lengths[static_cast<unsigned char>(keyword[0])] |= 1u << keyword.size();
  }
  return lengths;
}();

static bool may_be_keyword(const char* word) {
  const unsigned char first = dd_fold(*word);
  const size_t length = std::strlen(word);
  const bool is_small = first >= 'a' && first <= 'z';
  return is_small && length < 32 && (LENGTHS[first - 'a' + 'A'] >> length & 1) != 0;
}

bool is_keyword(const char* word) {
  if (!may_be_keyword(word)) return false;
  const auto* at =
      std::lower_bound(std::begin(KEYWORDS), std::end(KEYWORDS), word,
                       [](const char* a, const char* b) { return dd_compare(a, b) < 0; });
  return at != std::end(KEYWORDS) && dd_equal(*at, word);
}

}  // namespace dm
