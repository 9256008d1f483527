// Class blocks: interfaces and implementations.
#include "dd/fold.h"
#include "dd/values.h"
#include "dparse/read/definition.h"
#include "dparse/read/element.h"
#include "dparse/read/lexer.h"
#include "dparse/read/state.h"

static constexpr char MODULE[] = "dparse";

namespace dparse {

// A class of that name, or null with a message.
static dd_flist start(const char* name) {
  tav_ebuf ebuf{};
  dd_flist list(tav_flist_create(at(&ebuf, HERE)));
  dd_set_text(list.get(), TAV_FLD_NAME, name, at(&ebuf, HERE));
  return done(HERE, ebuf) < 1 ? nullptr : std::move(list);
}

static int append(dd_list& classes, dd_flist list) {
  tav_ebuf ebuf{};
  classes.append(std::move(list), at(&ebuf, HERE));
  return done(HERE, ebuf);
}

// interface := STORABLE CLASS name "{" block; all but the block has been read.
static int read_interface(FILE* stream, dd_list& classes, const char* name) {
  if (dparseIsDuplicateClass(&classes, name) < 0)
    return fail(HERE, message::DUPLICATE_INTERFACE, name);
  dd_flist list = start(name);
  if (list == nullptr) return -1;
  target_element element{.list = list.get(), .block = &CLASS_BLOCK, .class_name = name};
  if (read_block(stream, element) < 1) return -1;
  return append(classes, std::move(list));
}

// What each implementation's blocks may hold; the names are exact.
static const struct {
  const char* name;
  const block_rules* block;
} IMPLEMENTATIONS[] = {{"TESSEL7", &SQL_CLASS_BLOCK},
                       {"SQLGENERIC", &SQL_CLASS_BLOCK},
                       {"SQLSERVER7", &SQL_CLASS_BLOCK},
                       {"LDAPV3", &LDAP_CLASS_BLOCK}};

static const block_rules* block_of(std::string_view name) {
  for (const auto& implementation : IMPLEMENTATIONS)
    if (implementation.name == name) return implementation.block;
  return nullptr;
}

bool names_implementation(std::string_view word) {
  return block_of(word) != nullptr;
}

// Where the content has been used, the list gets what tells duplicates: the name.
static int append_implementation(const definition_lists& to, dd_flist list, const char* name) {
  if (to.use && to.use(list.get())) {
    list.reset();  // first: what is made next then stands in its place
    list = start(name);
    if (list == nullptr) return -1;
  }
  return append(to.implementations, std::move(list));
}

// implementation := STORABLE CLASS name IMPLEMENTATION implementation-name "{" block; read up to
// IMPLEMENTATION.
static int read_implementation(FILE* stream, const definition_lists& to, const char* name) {
  const char* filter = to.filter;
  if (filter == nullptr && dparseIsDuplicateClass(&to.implementations, name) < 0)
    return fail(HERE, message::DUPLICATE_IMPLEMENTATION);
  token_text token;
  dd_flist list = start(name);
  if (list == nullptr) return -1;
  if (!take(stream, token, DPARSE_TOKEN_WORD))
    return fail(HERE, message::IMPLEMENTATION_NAME_EXPECTED);
  target_element element{.list = list.get(), .block = block_of(token.text), .class_name = name};
  if (element.block == nullptr) return fail(HERE, message::UNKNOWN_IMPLEMENTATION, token.text);
  if (expect_open(stream) < 1) return -1;
  if (read_block(stream, element) < 1) return -1;
  if (filter != nullptr && !dd_equal(filter, token.text)) return 1;
  return append_implementation(to, std::move(list), name);
}

// class := STORABLE CLASS name ( "{" | IMPLEMENTATION ); STORABLE has been read.
int read_class(FILE* stream, const definition_lists& to) {
  token_text name;
  token_text kind;
  if (!take(stream, name, DPARSE_KEY_CLASS)) return fail(HERE, message::CLASS_EXPECTED);
  if (!take(stream, name, DPARSE_TOKEN_WORD)) return fail(HERE, message::CLASS_NAME_EXPECTED);
  switch (next_token(stream, kind)) {
    case DPARSE_KEY_OPEN:
      if (read_interface(stream, to.interfaces, name.text) > 0) return 1;
      return fail(HERE, message::INTERFACE_NOT_READ);
    case DPARSE_KEY_IMPLEMENTATION:
      if (read_implementation(stream, to, name.text) > 0) return 1;
      return fail(HERE, message::IMPLEMENTATION_NOT_READ);
    default:
      return no_opening_brace();
  }
}

}  // namespace dparse

int dparseIsDuplicateClass(dd_list* list, const char* name) {
  tav_ebuf ebuf{};
  const tav_flist_t* found = list->find(name, at(&ebuf, HERE));
  if (dparse::done(HERE, ebuf) < 1) return -1;
  return found == nullptr ? 0 : dparse::fail(HERE, dparse::message::DUPLICATE_CLASS, name);
}
