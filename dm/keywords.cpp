#include "dm/keywords.h"

#include <algorithm>
#include <iterator>

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

bool is_keyword(const char* word) {
  const auto* at =
      std::lower_bound(std::begin(KEYWORDS), std::end(KEYWORDS), word,
                       [](const char* a, const char* b) { return dd_compare(a, b) < 0; });
  return at != std::end(KEYWORDS) && dd_equal(*at, word);
}

}  // namespace dm
