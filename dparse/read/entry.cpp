// Field entries: what stands around their blocks.
#include "dd/values.h"
#include "dparse/read/element.h"
#include "dparse/read/lexer.h"
#include "dparse/read/state.h"

static constexpr char MODULE[] = "dparse";

using dparse::message;

// head := type name "{"
int dparse_entry_head(FILE* stream, dparse_element& entry) {
  dparse_token name;
  tav_ebuf ebuf{};
  if (!dparse_take(stream, name, DPARSE_TOKEN_WORD))
    return dparse::fail(HERE, message::FIELD_NAME_EXPECTED, name.text);
  dd_set_int(entry.list, TAV_FLD_FIELD_TYPE, entry.type, at(&ebuf, HERE));
  dd_set_text(entry.list, TAV_FLD_FIELD_NAME, name.text, at(&ebuf, HERE));
  if (dparse::done(HERE, ebuf) < 1) return -1;
  return dparse_expect_open(stream);
}

static int read_entry(FILE* stream, tav_flist_t* parent, int token, const dparse_block& block) {
  tav_ebuf ebuf{};
  dd_flist list(tav_flist_create(at(&ebuf, HERE)));
  dparse_element entry{.list = list.get(), .block = &block, .type = dparse_type_code(token)};
  if (entry.type == TAV_FLDT_UNUSED) return dparse::fail(HERE, message::INVALID_TYPE);
  if (dparse::done(HERE, ebuf) < 1) return -1;
  if (dparse_entry_head(stream, entry) < 1 || dparse_read_block(stream, entry) < 1) return -1;
  dd_append(parent, TAV_FLD_OBJ_ELEM, std::move(list), at(&ebuf, HERE));
  return dparse::done(HERE, ebuf);
}

int dparseClassField(FILE* stream, tav_flist_t* parent, int type_token) {
  return read_entry(stream, parent, type_token, DPARSE_CLASS_ENTRY);
}

int dparseImplClassField(FILE* stream, tav_flist_t* parent, int type_token) {
  return read_entry(stream, parent, type_token, DPARSE_SQL_ENTRY);
}

int dparseImplClassFieldLdapV3(FILE* stream, tav_flist_t* parent, int type_token) {
  return read_entry(stream, parent, type_token, DPARSE_LDAP_ENTRY);
}
