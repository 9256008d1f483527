// Whole files: a sequence of definitions.
#include "dd/memory.h"
#include "dd/types.h"
#include "dparse/read/definition.h"
#include "dparse/read/lexer.h"
#include "dparse/read/state.h"
#include "dparse/read/stream.h"

static constexpr char MODULE[] = "dparse";

namespace dparse {

static bool at_end(FILE* stream) {
  if (!read_ahead(stream).empty()) return false;
  const int c = dparse_fgetc(stream);
  dparse_ungetc(c, stream);
  return c == EOF;
}

// definition := field | class
static int read_definition(FILE* stream, const definition_lists& to) {
  token_text token;
  const int number = next_token(stream, token);
  const int32_t type = type_code_of(number);
  if (number == DPARSE_TOKEN_EOF) return 1;
  if (number == DPARSE_KEY_STORABLE) return read_class(stream, to);
  if (type != TAV_FLDT_UNUSED && type != TAV_FLDT_OBJ) return read_field(stream, to.fields, number);
  note(message::INVALID_TOKEN, token.text);
  return -1;
}

// file := { definition }
static int read_definitions(FILE* stream, const definition_lists& to) {
  while (!at_end(stream)) {
    const int result = read_definition(stream, to);
    if (result < 1) return result;
  }
  return 1;
}

// After an input error the result says only that: the text that was read may be incomplete, so that
// neither success nor a message about it would be true.
static int read_file(FILE* stream, const definition_lists& to) {
  reset();
  tav_ebuf ebuf{};
  int result = -1;
  dd_with_memory(at(&ebuf, HERE), [&] { result = read_definitions(stream, to); });
  if (dd_failed(ebuf)) result = call_failed(HERE, ebuf);
  if (std::ferror(stream) == 0) return result;
  forget_message();
  return UNREADABLE;
}

static const implementation_user KEEPS_ALL{};

}  // namespace dparse

int dparseFromTop(FILE* stream, dd_list* field_list, dd_list* class_list, dd_list* impl_list,
                  const char* filter) {
  return dparse::read_definition(stream,
                                 {*field_list, *class_list, *impl_list, filter, dparse::KEEPS_ALL});
}

int dparseDefFileExt(FILE* stream, dd_list* field_list, dd_list* class_list, dd_list* impl_list,
                     const char* filter) {
  return dparse::read_file(stream,
                           {*field_list, *class_list, *impl_list, filter, dparse::KEEPS_ALL});
}

int dparseDefFile(FILE* stream, dd_list* field_list, dd_list* class_list, dd_list* impl_list,
                  const dparse::implementation_user& use) {
  return dparse::read_file(stream, {*field_list, *class_list, *impl_list, nullptr, use});
}
