// Field definitions.
#include "dd/values.h"
#include "dparse/read/definition.h"
#include "dparse/read/element.h"
#include "dparse/read/lexer.h"
#include "dparse/read/state.h"

static constexpr char MODULE[] = "dparse";

using dparse::message;

// Finds the earlier definition of that name; it must have the same type.
static int find_earlier(dd_list& fields, dparse_element& definition, const char* name) {
  tav_ebuf ebuf{};
  const dd_known* earlier = fields.find_known(name, definition.hash, at(&ebuf, HERE));
  if (earlier != nullptr) definition.earlier = earlier->element;
  int32_t type = definition.type;
  if (definition.earlier != nullptr)
    type = dd_int(definition.earlier, TAV_FLD_FIELD_TYPE, at(&ebuf, HERE));
  if (dparse::done(HERE, ebuf) < 1) return -1;
  if (type == definition.type) return 1;
  return dparse::fail(HERE, message::DUPLICATE_FIELD_TYPES, name);
}

// head := type name "{"
static int read_head(FILE* stream, dd_list& fields, dparse_element& definition) {
  dparse_token token;
  tav_ebuf ebuf{};
  dd_set_int(definition.list, TAV_FLD_FIELD_TYPE, definition.type, at(&ebuf, HERE));
  if (!dparse_take(stream, token, DPARSE_TOKEN_WORD))
    return dparse::fail(HERE, message::NAME_EXPECTED);
  definition.hash = dd_hash(token.text, token.length);
  if (find_earlier(fields, definition, token.text) < 1)
    return dparse::fail(HERE, message::FIELD_TYPE_DIFFERS, token.text);
  dd_set_text(definition.list, TAV_FLD_FIELD_NAME, token.text, at(&ebuf, HERE));
  if (dparse::done(HERE, ebuf) < 1) return -1;
  // The small "e" of this one is deliberate.
  return dparse_take(stream, token, DPARSE_KEY_OPEN)
             ? 1
             : dparse::fail(HERE, message::FIELD_BRACE_EXPECTED);
}

// field := type name "{" { ID number | DESCR string } "}"
int dparse_read_field(FILE* stream, dd_list& fields, int type_token) {
  tav_ebuf ebuf{};
  dd_flist list(tav_flist_create(at(&ebuf, HERE)));
  dparse_element definition{
      .list = list.get(), .block = &DPARSE_DEFINITION, .type = dparse_type_code(type_token)};
  if (dparse::done(HERE, ebuf) < 1) return -1;
  if (read_head(stream, fields, definition) < 1) return -1;
  if (dparse_read_block(stream, definition) < 1) return -1;
  if (definition.earlier != nullptr) return 1;  // a repeat is dropped
  fields.append(std::move(list), at(&ebuf, HERE), definition.hash);
  return dparse::done(HERE, ebuf);
}
