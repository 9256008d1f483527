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

namespace dparse {

using entries = std::vector<target_element>;

static bool opens_entry(const block_rules& block, int token) {
  const int32_t type = type_code_of(token);
  return type != TAV_FLDT_UNUSED && (block.types >> type & 1) != 0;
}

static bool ends_block(int token) {
  return token == DPARSE_KEY_CLOSE || token == DPARSE_TOKEN_EOF || token == DPARSE_TOKEN_BAD_STRING;
}

// Opens an entry as the last one of its parent.
static int open_entry(FILE* stream, entries& open, target_element& parent, int number,
                      const token_text& token) {
  if (open.size() == MAX_DEPTH) return fail(HERE, message::ENTRIES_TOO_DEEP, MAX_DEPTH);
  tav_ebuf ebuf{};
  target_element entry{.list = tav_flist_elem_add(parent.list, TAV_FLD_OBJ_ELEM,
                                                  parent.entry_count++, at(&ebuf, HERE)),
                       .block = parent.block->entry,
                       .type = type_code_of(number),
                       .token = number};
  std::memcpy(entry.keyword, token.text, sizeof entry.keyword);
  open.push_back(entry);  // the parent may move
  return done(HERE, ebuf) < 1 ? -1 : read_entry_head(stream, open.back());
}

static int read_attribute(FILE* stream, target_element& element, const attribute& row,
                          const token_text& token) {
  const int result = row.form->read(stream, element, row);
  return result < 0 ? element.block->failed(row.token, token.text) : result;
}

// member := attribute | type name "{"
static int read_member(FILE* stream, entries& open, target_element& element, int number,
                       const token_text& token) {
  const block_rules& block = *element.block;
  if (const attribute* row = find_attribute(number, block.attributes))
    return read_attribute(stream, element, *row, token);
  if (opens_entry(block, number)) return open_entry(stream, open, element, number, token);
  return block.unknown(number, token.text);
}

// The failure of an entry is one of each block around it.
static int fail_all(entries& open, const target_element& outermost) {
  while (!open.empty()) {
    const target_element entry = open.back();
    open.pop_back();
    const target_element& parent = open.empty() ? outermost : open.back();
    parent.block->failed(entry.token, entry.keyword);
  }
  return -1;
}

// block := { attribute | type name "{" block } "}"
int read_block(FILE* stream, target_element& outermost) {
  entries open;
  token_text token;
  for (;;) {
    target_element& element = open.empty() ? outermost : open.back();
    const int number = next_token(stream, token);
    int result = 1;
    if (!ends_block(number)) {
      result = read_member(stream, open, element, number, token);
    } else if (number != DPARSE_KEY_CLOSE) {
      result = fail(HERE, message::CLOSING_BRACE_EXPECTED);
    } else if (open.empty()) {
      return 1;
    } else {
      open.pop_back();
    }
    if (result < 1) return fail_all(open, outermost);
  }
}

}  // namespace dparse
