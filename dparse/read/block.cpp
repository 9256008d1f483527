// Reading blocks. The entries that are open are kept in a vector, not on the stack: input decides
// how deep they nest.
#include "dparse/read/block.h"

#include <cstring>
#include <vector>

#include "dd/values.h"
#include "dparse/attributes.h"
#include "dparse/read/element.h"
#include "dparse/read/lexer.h"
#include "dparse/read/state.h"

static constexpr char MODULE[] = "dparse";

using dparse::message;

using entries = std::vector<dparse_element>;

static bool opens_entry(const dparse_block& block, int token) {
  const int32_t type = dparse_type_code(token);
  return type != TAV_FLDT_UNUSED && (block.types >> type & 1) != 0;
}

static bool ends_block(int token) {
  return token == DPARSE_KEY_CLOSE || token == DPARSE_TOKEN_EOF || token == DPARSE_TOKEN_BAD_STRING;
}

// Opens an entry as the last one of its parent.
static int open_entry(FILE* stream, entries& open, dparse_element& parent, int number,
                      const dparse_token& token) {
  if (open.size() == DPARSE_MAX_DEPTH)
    return dparse::fail(HERE, message::ENTRIES_TOO_DEEP, DPARSE_MAX_DEPTH);
  tav_ebuf ebuf{};
  dparse_element entry{.list = tav_flist_elem_add(parent.list, TAV_FLD_OBJ_ELEM,
                                                  parent.entry_count++, at(&ebuf, HERE)),
                       .block = parent.block->entry,
                       .type = dparse_type_code(number),
                       .token = number};
  std::memcpy(entry.keyword, token.text, sizeof entry.keyword);
  open.push_back(entry);  // the parent may move
  return dparse::done(HERE, ebuf) < 1 ? -1 : dparse_entry_head(stream, open.back());
}

static int read_attribute(FILE* stream, dparse_element& element, const dparse_attribute& row,
                          const dparse_token& token) {
  const int result = row.form->read(stream, element, row);
  return result < 0 ? element.block->failed(row.token, token.text) : result;
}

// member := attribute | type name "{"
static int read_member(FILE* stream, entries& open, dparse_element& element, int number,
                       const dparse_token& token) {
  const dparse_block& block = *element.block;
  if (const dparse_attribute* row = dparse_find_attribute(number, block.attributes))
    return read_attribute(stream, element, *row, token);
  if (opens_entry(block, number)) return open_entry(stream, open, element, number, token);
  return block.unknown(number, token.text);
}

// The failure of an entry is one of each block around it.
static int fail_all(entries& open, const dparse_element& outermost) {
  while (!open.empty()) {
    const dparse_element entry = open.back();
    open.pop_back();
    const dparse_element& parent = open.empty() ? outermost : open.back();
    parent.block->failed(entry.token, entry.keyword);
  }
  return -1;
}

// block := { attribute | type name "{" block } "}"
int dparse_read_block(FILE* stream, dparse_element& outermost) {
  entries open;
  dparse_token token;
  for (;;) {
    dparse_element& element = open.empty() ? outermost : open.back();
    const int number = dparse_next(stream, token);
    int result = 1;
    if (!ends_block(number)) {
      result = read_member(stream, open, element, number, token);
    } else if (number != DPARSE_KEY_CLOSE) {
      result = dparse::fail(HERE, message::CLOSING_BRACE_EXPECTED);
    } else if (open.empty()) {
      return 1;
    } else {
      open.pop_back();
    }
    if (result < 1) return fail_all(open, outermost);
  }
}
