#include "dparse/read/forms.h"

#include <climits>
#include <cstring>

#include "dd/fold.h"
#include "dd/values.h"
#include "dparse/class_names.h"
#include "dparse/read/element.h"
#include "dparse/read/state.h"
#include "dparse/read/values.h"

static constexpr char MODULE[] = "dparse";

namespace dparse {

int read_text(FILE* stream, target_element& element, const attribute& row) {
  token_text value;
  if (read_string(stream, value) < 1) return -1;
  return store_text(element, row.field, value.text);
}

int read_quoted_number(FILE* stream, target_element& element, const attribute& row) {
  token_text value;
  int32_t number;
  if (read_string(stream, value) < 1) return -1;
  if (!to_number(value.text, number))
    return fail_with(HERE, row.refused, {value.text, text_of(element, TAV_FLD_NAME)});
  return store_number(element, row.field, number);
}

int read_seq_start(FILE* stream, target_element& element, const attribute& row) {
  const char* name = element.class_name;
  if (!dparseIsTopLevelClass(name)) return fail(HERE, message::SEQ_START_IN_SUBCLASS, name);
  return read_quoted_number(stream, element, row);
}

int read_access(FILE* stream, target_element& element, const attribute& row) {
  char text[TEXT_SIZE];
  if (dparseReadWriteAccessLevel(stream, text, sizeof text) < 1) return -1;
  return store_text(element, row.field, text);
}

// choice := "=" ( keyword | '"text"' ) ";"  `fits` compares a quoted text with one of the list.
template <class Fits>
static const value_word* read_choice(FILE* stream, const attribute& row, Fits fits) {
  token_text token;
  if (expect_equals(stream) < 1) return nullptr;
  const int number = next_token(stream, token);
  const bool quoted = number == DPARSE_TOKEN_STRING;
  const value_word* word = find_word(row.words, [&](const value_word& known) {
    return quoted ? fits(known.text, token.text) : known.token == number;
  });
  if (word == nullptr) {
    const bool refused = quoted || row.expected == message::NONE;
    fail_with(HERE, refused ? row.refused : row.expected, {token.text});
    return nullptr;
  }
  return expect_semicolon(stream) < 1 ? nullptr : word;
}

static bool never_fits(const char*, const char*) {
  return false;
}
static bool fits_exactly(const char* known, const char* text) {
  return std::strcmp(known, text) == 0;
}

template <class Fits>
static int store_choice(FILE* stream, target_element& element, const attribute& row, Fits fits) {
  const value_word* word = read_choice(stream, row, fits);
  return word == nullptr ? -1 : store_text(element, row.field, word->text);
}

int read_word(FILE* stream, target_element& element, const attribute& row) {
  return store_choice(stream, element, row, never_fits);
}

int read_exact_word(FILE* stream, target_element& element, const attribute& row) {
  return store_choice(stream, element, row, fits_exactly);
}

int read_folded_word(FILE* stream, target_element& element, const attribute& row) {
  return store_choice(stream, element, row, dd_equal);
}

int read_yes_no(FILE* stream, target_element& element, const attribute& row) {
  const value_word* word = read_choice(stream, row, dd_equal);
  return word == nullptr ? -1 : store_number(element, row.field, word->token == DPARSE_KEY_YES);
}

int read_zero_one(FILE* stream, target_element& element, const attribute& row) {
  const int number = dparseMultivalued(stream);
  return number < 0 ? -1 : store_number(element, row.field, number);
}

static int read_bare(FILE* stream, const attribute& row, int32_t& number) {
  return read_bare_number(stream, INT32_MAX, row.expected, row.refused, number);
}

int read_number(FILE* stream, target_element& element, const attribute& row) {
  int32_t number;
  return read_bare(stream, row, number) < 1 ? -1 : store_number(element, row.field, number);
}

// 0 stores nothing: a length that the entry was given before stays.
int read_length(FILE* stream, target_element& element, const attribute& row) {
  int32_t number;
  if (read_bare(stream, row, number) < 1) return -1;
  return number == 0 ? 1 : store_number(element, row.field, number);
}

static int compare_id(const target_element& definition, int32_t id, const char* name) {
  tav_ebuf ebuf{};
  const int32_t earlier = dd_int(definition.earlier, TAV_FLD_FIELD_NUM, at(&ebuf, HERE));
  if (done(HERE, ebuf) < 1) return -1;
  if (earlier == id) return 1;
  return fail(HERE, message::DUPLICATE_FIELD_IDS, name);
}

// A duplicate with another number reports two lines and gives 0, so that
// the block reports no third.
int read_id(FILE* stream, target_element& definition, const attribute& row) {
  int32_t id;
  if (read_bare(stream, row, id) < 1 || id == 0) return -1;
  if (definition.earlier == nullptr) return store_number(definition, row.field, id);
  const char* name = text_of(definition, TAV_FLD_FIELD_NAME);
  if (compare_id(definition, id, name) > 0) return 1;
  fail(HERE, message::FIELD_ID_DIFFERS, name);
  return 0;
}

// order := "=" word ";"  tav_decimal decides whether the word is a decimal.
int read_order(FILE* stream, target_element& element, const attribute& row) {
  token_text token;
  if (expect_equals(stream) < 1) return -1;
  if (!take(stream, token, DPARSE_TOKEN_WORD)) return fail_with(HERE, row.expected, {token.text});
  tav_ebuf ebuf{};
  dd_decimal order(tav_decimal(token.text, at(&ebuf, HERE)));
  if (ebuf.err_code == TAV_ERR_NO_MEM) return call_failed(HERE, ebuf);
  if (dd_failed(ebuf)) return fail_with(HERE, row.refused, {token.text});
  dd_put(element.list, row.field, 0, std::move(order), at(&ebuf, HERE));
  if (done(HERE, ebuf) < 1) return -1;
  return expect_semicolon(stream);
}

}  // namespace dparse
