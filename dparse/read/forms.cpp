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

using dparse::message;

int dparse_read_text(FILE* stream, dparse_element& element, const dparse_attribute& row) {
  dparse_token value;
  if (dparse_read_string(stream, value) < 1) return -1;
  return dparse_store_text(element, row.field, value.text);
}

int dparse_read_quoted_number(FILE* stream, dparse_element& element, const dparse_attribute& row) {
  dparse_token value;
  int32_t number;
  if (dparse_read_string(stream, value) < 1) return -1;
  if (!dparse_to_number(value.text, number))
    return dparse::fail_with(HERE, row.refused,
                             {value.text, dparse_text_of(element, TAV_FLD_NAME)});
  return dparse_store_number(element, row.field, number);
}

int dparse_read_seq_start(FILE* stream, dparse_element& element, const dparse_attribute& row) {
  const char* name = dparse_text_of(element, TAV_FLD_NAME);
  if (!dparseIsTopLevelClass(name)) return dparse::fail(HERE, message::SEQ_START_IN_SUBCLASS, name);
  return dparse_read_quoted_number(stream, element, row);
}

int dparse_read_access(FILE* stream, dparse_element& element, const dparse_attribute& row) {
  char text[DPARSE_TEXT_SIZE];
  if (dparseReadWriteAccessLevel(stream, text, sizeof text) < 1) return -1;
  return dparse_store_text(element, row.field, text);
}

// choice := "=" ( keyword | '"text"' ) ";"  `fits` compares a quoted text with one of the list.
template <class Fits>
static const dparse_word* read_choice(FILE* stream, const dparse_attribute& row, Fits fits) {
  dparse_token token;
  if (dparse_expect_equals(stream) < 1) return nullptr;
  const int number = dparse_next(stream, token);
  const bool quoted = number == DPARSE_TOKEN_STRING;
  const dparse_word* word = dparse_find_word(row.words, [&](const dparse_word& known) {
    return quoted ? fits(known.text, token.text) : known.token == number;
  });
  if (word == nullptr) {
    const bool refused = quoted || row.expected == message::NONE;
    dparse::fail_with(HERE, refused ? row.refused : row.expected, {token.text});
    return nullptr;
  }
  return dparse_expect_semicolon(stream) < 1 ? nullptr : word;
}

static bool never_fits(const char*, const char*) {
  return false;
}
static bool fits_exactly(const char* known, const char* text) {
  return std::strcmp(known, text) == 0;
}

template <class Fits>
static int read_word(FILE* stream, dparse_element& element, const dparse_attribute& row,
                     Fits fits) {
  const dparse_word* word = read_choice(stream, row, fits);
  return word == nullptr ? -1 : dparse_store_text(element, row.field, word->text);
}

int dparse_read_word(FILE* stream, dparse_element& element, const dparse_attribute& row) {
  return read_word(stream, element, row, never_fits);
}

int dparse_read_exact_word(FILE* stream, dparse_element& element, const dparse_attribute& row) {
  return read_word(stream, element, row, fits_exactly);
}

int dparse_read_folded_word(FILE* stream, dparse_element& element, const dparse_attribute& row) {
  return read_word(stream, element, row, dd_equal);
}

int dparse_read_yes_no(FILE* stream, dparse_element& element, const dparse_attribute& row) {
  const dparse_word* word = read_choice(stream, row, dd_equal);
  return word == nullptr ? -1
                         : dparse_store_number(element, row.field, word->token == DPARSE_KEY_YES);
}

int dparse_read_zero_one(FILE* stream, dparse_element& element, const dparse_attribute& row) {
  const int number = dparseMultivalued(stream);
  return number < 0 ? -1 : dparse_store_number(element, row.field, number);
}

static int read_bare(FILE* stream, const dparse_attribute& row, int32_t& number) {
  return dparse_bare_number(stream, INT32_MAX, row.expected, row.refused, number);
}

int dparse_read_number(FILE* stream, dparse_element& element, const dparse_attribute& row) {
  int32_t number;
  return read_bare(stream, row, number) < 1 ? -1 : dparse_store_number(element, row.field, number);
}

// 0 stores nothing: a length that the entry was given before stays.
int dparse_read_length(FILE* stream, dparse_element& element, const dparse_attribute& row) {
  int32_t number;
  if (read_bare(stream, row, number) < 1) return -1;
  return number == 0 ? 1 : dparse_store_number(element, row.field, number);
}

static int compare_id(const dparse_element& definition, int32_t id, const char* name) {
  tav_ebuf ebuf{};
  const int32_t earlier = dd_int(definition.earlier, TAV_FLD_FIELD_NUM, at(&ebuf, HERE));
  if (dparse::done(HERE, ebuf) < 1) return -1;
  if (earlier == id) return 1;
  return dparse::fail(HERE, message::DUPLICATE_FIELD_IDS, name);
}

// A duplicate with another number reports two lines and gives 0, so that
// the block reports no third.
int dparse_read_id(FILE* stream, dparse_element& definition, const dparse_attribute& row) {
  int32_t id;
  if (read_bare(stream, row, id) < 1 || id == 0) return -1;
  if (definition.earlier == nullptr) return dparse_store_number(definition, row.field, id);
  const char* name = dparse_text_of(definition, TAV_FLD_FIELD_NAME);
  if (compare_id(definition, id, name) > 0) return 1;
  dparse::fail(HERE, message::FIELD_ID_DIFFERS, name);
  return 0;
}

// order := "=" word ";"  tav_decimal decides whether the word is a decimal.
int dparse_read_order(FILE* stream, dparse_element& element, const dparse_attribute& row) {
  dparse_token token;
  if (dparse_expect_equals(stream) < 1) return -1;
  if (!dparse_take(stream, token, DPARSE_TOKEN_WORD))
    return dparse::fail_with(HERE, row.expected, {token.text});
  tav_ebuf ebuf{};
  dd_decimal order(tav_decimal(token.text, at(&ebuf, HERE)));
  if (ebuf.err_code == TAV_ERR_NO_MEM) return dparse::call_failed(HERE, ebuf);
  if (dd_failed(ebuf)) return dparse::fail_with(HERE, row.refused, {token.text});
  dd_put(element.list, row.field, 0, std::move(order), at(&ebuf, HERE));
  if (dparse::done(HERE, ebuf) < 1) return -1;
  return dparse_expect_semicolon(stream);
}
