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

// file := { definition }
static int read_file(FILE* stream, dd_list* field_list, dd_list* class_list, dd_list* impl_list,
                     const char* filter) {
  while (!at_end(stream)) {
    const int result = dparseFromTop(stream, field_list, class_list, impl_list, filter);
    if (result < 1) return result;
  }
  return 1;
}

}  // namespace dparse

// definition := field | class
int dparseFromTop(FILE* stream, dd_list* field_list, dd_list* class_list, dd_list* impl_list,
                  const char* filter) {
  dparse::token_text token;
  const int number = dparse::next_token(stream, token);
  const int32_t type = dparse::type_code_of(number);
  if (number == DPARSE_TOKEN_EOF) return 1;
  if (number == DPARSE_KEY_STORABLE)
    return dparse::read_class(stream, *class_list, *impl_list, filter);
  if (type != TAV_FLDT_UNUSED && type != TAV_FLDT_OBJ)
    return dparse::read_field(stream, *field_list, number);
  dparse::note(dparse::message::INVALID_TOKEN, token.text);
  return -1;
}

// After an input error the result says only that: the text that was read may be incomplete, so that
// neither success nor a message about it would be true.
int dparseDefFileExt(FILE* stream, dd_list* field_list, dd_list* class_list, dd_list* impl_list,
                     const char* filter) {
  dparse::reset();
  tav_ebuf ebuf{};
  int result = -1;
  dd_with_memory(at(&ebuf, HERE), [&] {
    result = dparse::read_file(stream, field_list, class_list, impl_list, filter);
  });
  if (dd_failed(ebuf)) result = dparse::call_failed(HERE, ebuf);
  if (std::ferror(stream) == 0) return result;
  dparse::forget_message();
  return dparse::UNREADABLE;
}

int dparseDefFile(FILE* stream, dd_list* field_list, dd_list* class_list, dd_list* impl_list) {
  return dparseDefFileExt(stream, field_list, class_list, impl_list, nullptr);
}
