// Field definitions.
#include "dd/values.h"
#include "dparse/read/definition.h"
#include "dparse/read/element.h"
#include "dparse/read/lexer.h"
#include "dparse/read/state.h"

static constexpr char MODULE[] = "dparse";

namespace dparse {

// Finds the earlier definition of that name; it must have the same type.
static int find_earlier(dd_list& fields, target_element& definition, const char* name) {
  tav_ebuf ebuf{};
  const dd_known* earlier = fields.find_known(name, definition.hash, at(&ebuf, HERE));
  if (earlier != nullptr) definition.earlier = earlier->element;
  int32_t type = definition.type;
  if (definition.earlier != nullptr)
    type = dd_int(definition.earlier, TAV_FLD_FIELD_TYPE, at(&ebuf, HERE));
  if (done(HERE, ebuf) < 1) return -1;
  if (type == definition.type) return 1;
  return fail(HERE, message::DUPLICATE_FIELD_TYPES, name);
}

// head := type name "{"
static int read_head(FILE* stream, dd_list& fields, target_element& definition) {
  token_text token;
  tav_ebuf ebuf{};
  dd_set_int(definition.list, TAV_FLD_FIELD_TYPE, definition.type, at(&ebuf, HERE));
  if (!take(stream, token, DPARSE_TOKEN_WORD)) return fail(HERE, message::NAME_EXPECTED);
  definition.hash = dd_hash(token.text, token.length);
  if (find_earlier(fields, definition, token.text) < 1)
    return fail(HERE, message::FIELD_TYPE_DIFFERS, token.text);
  dd_set_text(definition.list, TAV_FLD_FIELD_NAME, token.text, at(&ebuf, HERE));
  if (done(HERE, ebuf) < 1) return -1;
  // The small "e" of this one is deliberate.
  return take(stream, token, DPARSE_KEY_OPEN) ? 1 : fail(HERE, message::FIELD_BRACE_EXPECTED);
}

// field := type name "{" { ID number | DESCR string } "}"
int read_field(FILE* stream, dd_list& fields, int type_token) {
  tav_ebuf ebuf{};
  dd_flist list(tav_flist_create(at(&ebuf, HERE)));
  target_element definition{
      .list = list.get(), .block = &DEFINITION_BLOCK, .type = type_code_of(type_token)};
  if (done(HERE, ebuf) < 1) return -1;
  if (read_head(stream, fields, definition) < 1) return -1;
  if (read_block(stream, definition) < 1) return -1;
  if (definition.earlier != nullptr) return 1;  // a repeat is dropped
  fields.append(std::move(list), at(&ebuf, HERE), definition.hash);
  return done(HERE, ebuf);
}

}  // namespace dparse
