// Reading blocks. The entries that are open are kept in a vector, not on the stack: input decides
// how deep they nest.
#include "dparse/dparse_block.h"

#include <cstring>
#include <vector>

#include "dd/values.h"
#include "dparse/dparse_attributes.h"
#include "dparse/dparse_entry.h"
#include "dparse/dparse_state.h"

static constexpr char MODULE[] = "dparse";

using entries = std::vector<dparse_element>;

static bool opens_entry(const dparse_block& block, const dparse_token& token) {
  const int32_t type = dparse_type_code(token.number);
  return type != TAV_FLDT_UNUSED && (block.types >> type & 1) != 0;
}

static bool ends_block(int token) {
  return token == DPARSE_KEY_CLOSE || token == DPARSE_TOKEN_EOF || token == DPARSE_TOKEN_BAD_STRING;
}

static int read_entry_head(FILE* stream, entries& open, const dparse_block& block,
                           const dparse_token& token) {
  if (open.size() == DPARSE_MAX_DEPTH)
    return dparse_fail(HERE, "Field entries are nested too deep, the limit is %d levels",
                       DPARSE_MAX_DEPTH);
  dparse_element& entry = open.emplace_back();
  std::memcpy(entry.keyword, token.text, token.length + 1);
  return dparse_entry_head(stream, entry, block, token.number);
}

static int read_attribute(FILE* stream, dparse_element& element, const dparse_token& token) {
  const dparse_block& block = *element.block;
  const dparse_attribute* row = dparse_find_attribute(token.number, block.attributes);
  if (row == nullptr) return block.unknown(token.number, token.text);
  const int result = row->form->read(stream, element, *row);
  return result < 0 ? block.failed(token.number, token.text) : result;
}

// Ends the innermost entry and hands it to the one around it.
static int close_entry(entries& open, dparse_element& outermost) {
  dparse_element& parent = open.size() > 1 ? open[open.size() - 2] : outermost;
  if (dparse_append_entry(parent.list.get(), open.back()) < 1) return -1;
  open.pop_back();
  return 1;
}

// The failure of an entry is one of each block around it.
static int fail_all(entries& open, const dparse_element& outermost) {
  while (!open.empty()) {
    const dparse_element entry = std::move(open.back());
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
    dparse_next(stream, token);
    int result;
    if (opens_entry(*element.block, token)) {
      result = read_entry_head(stream, open, *element.block->entry, token);
    } else if (!ends_block(token.number)) {
      result = read_attribute(stream, element, token);
    } else if (token.number != DPARSE_KEY_CLOSE) {
      result = dparse_fail(HERE, "} Expected");
    } else if (open.empty()) {
      return 1;
    } else {
      result = close_entry(open, outermost);
    }
    if (result < 1) return fail_all(open, outermost);
  }
}
