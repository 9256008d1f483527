// Field entries: what stands around their blocks.
#include "dd/values.h"
#include "dparse/read/element.h"
#include "dparse/read/lexer.h"
#include "dparse/read/state.h"

static constexpr char MODULE[] = "dparse";

namespace dparse {

// head := type name "{"
int read_entry_head(FILE* stream, target_element& entry) {
  token_text name;
  tav_ebuf ebuf{};
  if (!take(stream, name, DPARSE_TOKEN_WORD))
    return fail(HERE, message::FIELD_NAME_EXPECTED, name.text);
  dd_set_int(entry.list, TAV_FLD_FIELD_TYPE, entry.type, at(&ebuf, HERE));
  dd_set_text(entry.list, TAV_FLD_FIELD_NAME, name.text, at(&ebuf, HERE));
  if (done(HERE, ebuf) < 1) return -1;
  return expect_open(stream);
}

static int read_entry(FILE* stream, tav_flist_t* parent, int token, const block_rules& block) {
  tav_ebuf ebuf{};
  dd_flist list(tav_flist_create(at(&ebuf, HERE)));
  target_element entry{.list = list.get(), .block = &block, .type = type_code_of(token)};
  if (entry.type == TAV_FLDT_UNUSED) return fail(HERE, message::INVALID_TYPE);
  if (done(HERE, ebuf) < 1) return -1;
  if (read_entry_head(stream, entry) < 1 || read_block(stream, entry) < 1) return -1;
  dd_append(parent, TAV_FLD_OBJ_ELEM, std::move(list), at(&ebuf, HERE));
  return done(HERE, ebuf);
}

}  // namespace dparse

int dparseClassField(FILE* stream, tav_flist_t* parent, int type_token) {
  return dparse::read_entry(stream, parent, type_token, dparse::CLASS_ENTRY_BLOCK);
}

int dparseImplClassField(FILE* stream, tav_flist_t* parent, int type_token) {
  return dparse::read_entry(stream, parent, type_token, dparse::SQL_ENTRY_BLOCK);
}

int dparseImplClassFieldLdapV3(FILE* stream, tav_flist_t* parent, int type_token) {
  return dparse::read_entry(stream, parent, type_token, dparse::LDAP_ENTRY_BLOCK);
}
