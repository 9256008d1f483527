// The seven kinds of blocks, and how each says that something in it is wrong.
#include "dparse/attributes.h"
#include "dparse/read/block.h"
#include "dparse/read/state.h"

static constexpr char MODULE[] = "dparse";

namespace dparse {

namespace {

template <class... Codes>
constexpr uint32_t types(Codes... codes) {
  return ((1u << codes) | ...);
}

constexpr uint32_t FIELDS =
    types(TAV_FLDT_POID, TAV_FLDT_STRING, TAV_FLDT_ARRAY, TAV_FLDT_SUBSTRUCT, TAV_FLDT_NUM,
          TAV_FLDT_INT, TAV_FLDT_ENUM, TAV_FLDT_TIMESTAMP, TAV_FLDT_BUF, TAV_FLDT_BINSTR,
          TAV_FLDT_EBUF, TAV_FLDT_DECIMAL, TAV_FLDT_INT64);
constexpr uint32_t LDAP_FIELDS = FIELDS & ~types(TAV_FLDT_SUBSTRUCT, TAV_FLDT_BUF, TAV_FLDT_EBUF);
constexpr uint32_t LDAP_MEMBERS = LDAP_FIELDS & ~types(TAV_FLDT_ARRAY);

// The message is the bare token, the record says more: deliberate.
int unknown_in_definition(int, const char* text) {
  return fail_as(HERE, text, message::UNKNOWN_FIELD_ATTRIBUTE, {text});
}

int failed_in_definition(int token, const char*) {
  if (token == DPARSE_KEY_ID) return fail(HERE, message::ID_NOT_READ);
  return fail(HERE, message::FIELD_ATTRIBUTE_NOT_READ, keyword_text(token));
}

int refused_in_class(int, const char* text) {
  return fail(HERE, message::UNKNOWN_CLASS_MEMBER, text);
}

int unknown_in_entry(int token, const char* text) {
  return fail(HERE, message::UNKNOWN_ENTRY_MEMBER, token, text);
}

int failed_in_interface(int, const char*) {
  return fail(HERE, message::MEMBER_NOT_READ);
}

int refused_in_entry(int, const char* text) {
  return fail(HERE, message::UNKNOWN_STORAGE_MEMBER, text);
}

}  // namespace

const block_rules DEFINITION_BLOCK{DD_IN_DEFINITION, 0, nullptr, unknown_in_definition,
                                   failed_in_definition};
const block_rules CLASS_BLOCK{DD_IN_CLASS, FIELDS, &CLASS_ENTRY_BLOCK, refused_in_class,
                              failed_in_interface};
const block_rules CLASS_ENTRY_BLOCK{DD_IN_ENTRY, FIELDS, &CLASS_ENTRY_BLOCK, unknown_in_entry,
                                    failed_in_interface};
const block_rules SQL_CLASS_BLOCK{DD_IN_SQL_CLASS, FIELDS, &SQL_ENTRY_BLOCK, refused_in_class,
                                  refused_in_class};
const block_rules SQL_ENTRY_BLOCK{DD_IN_SQL_ENTRY, FIELDS, &SQL_ENTRY_BLOCK, refused_in_entry,
                                  refused_in_entry};
const block_rules LDAP_CLASS_BLOCK{DD_IN_LDAP_CLASS, LDAP_FIELDS, &LDAP_ENTRY_BLOCK,
                                   refused_in_class, refused_in_class};
const block_rules LDAP_ENTRY_BLOCK{DD_IN_LDAP_ENTRY, LDAP_MEMBERS, &LDAP_ENTRY_BLOCK,
                                   refused_in_entry, refused_in_entry};

}  // namespace dparse
