// What the calls of the interface do with error buffers.
#include <gtest/gtest.h>

#include <sstream>

#include "dd/values.h"
#include "manager_double.h"

// Rows of the tables below: a call with the buffer; whether it gives nothing; one that has no
// result.
#define CALL(function, ...) [](tav_ebuf* e) { function(__VA_ARGS__, e); }
#define NOTHING(function, ...) [](tav_ebuf* e) { return !function(__VA_ARGS__, e); }
#define DONE(function, ...) [](tav_ebuf* e) { return function(__VA_ARGS__, e), true; }

namespace {

constexpr uint32_t COUNT = TAV_FLD_FLAGS;
constexpr uint32_t ITEMS = TAV_FLD_OBJ_ELEM;
constexpr uint32_t ABSENT = TAV_FLD_FIELD_NUM;
constexpr uint32_t BYTES = DD_FIELD_ID(TAV_FLDT_BUF, 1);
constexpr uint32_t NONE = DD_FIELD_ID(TAV_FLDT_OBJ, 1);

// What the rows below call with: a list with COUNT 7 and two elements that were handed out.
tav_flist_t *list, *item, *null_list;
tav_poid_t* poid;
tav_decimal_t* decimal;
tav_cookie_t* cookie;
int32_t id;
const int32_t one = 1;
const tav_buf_t no_bytes{1, nullptr};
char digits[8];
tcm_context_t *opened, *context;
uint64_t database;
tav_flist_t* output;

std::string text_of(const tav_ebuf& e) {
  std::ostringstream text;
  text << e.location << ' ' << e.err_class << ' ' << e.err_code << ' ' << e.field << ' ' << e.rec_id
       << ' ' << e.reserved << ' ' << e.line_no << ' ' << e.filename;
  return text.str();
}

class errors : public testing::Test {
 protected:
  errors() {
    list = owned_list.get();
    poid = owned_poid.get();
    decimal = owned_decimal.get();
    dd_set_int(list, COUNT, 7, nullptr);
    item = tav_flist_elem_add(list, ITEMS, 3, nullptr);
    tav_flist_elem_add(list, ITEMS, 4, nullptr);
    tcm_connect(&opened, &database, nullptr);
    the_manager = {};
  }
  ~errors() override { tcm_context_close(opened, 0, nullptr); }

  // The list, and what a call could have written elsewhere.
  std::string state() const {
    std::ostringstream text;
    text << dd_int(list, COUNT, nullptr) << ' ' << tav_flist_elem_count(list, ITEMS, nullptr) << ' '
         << (tavi_flist_get(list, TAV_FLD_POID, 0, 1, 0, nullptr) != nullptr) << ' ' << id << ' '
         << cookie << ' ' << digits << ' ' << context << ' ' << output << the_manager.calls;
    return text.str();
  }

  dd_flist owned_list{tav_flist_create(nullptr)};
  dd_poid owned_poid{tav_poid_create(1, "/t", 5, nullptr)};
  dd_decimal owned_decimal{tav_decimal("-1.50", nullptr)};
};

}  // namespace

// All calls that take an error buffer but those that free, which do so whatever the buffer holds.
TEST_F(errors, that_are_held_keep_every_call_from_doing_anything) {
  const struct {
    const char* name;
    bool (*gives_nothing)(tav_ebuf*);
  } calls[] = {
      {"create", [](tav_ebuf* e) { return tav_flist_create(e) == nullptr; }},
      {"copy", NOTHING(tav_flist_copy, list)},
      {"get", NOTHING(tavi_flist_get, list, COUNT, 0, 0, 0)},
      {"get item", NOTHING(tavi_flist_get, list, ITEMS, 3, 0, 0)},
      {"set", DONE(tavi_flist_set, list, COUNT, 0, 0, &one)},
      {"put", DONE(tavi_flist_put, list, TAV_FLD_POID, 0, 0, poid)},
      {"drop", DONE(tavi_flist_drop, list, ITEMS, 3)},
      {"add", NOTHING(tav_flist_elem_add, list, ITEMS, 9)},
      {"next", NOTHING(tav_flist_elem_get_next, list, ITEMS, &id, 0, &cookie, 0)},
      {"take", NOTHING(tav_flist_elem_take_next, list, ITEMS, &id, 0, &cookie, 0)},
      {"count", NOTHING(tav_flist_elem_count, list, ITEMS)},
      {"poid", NOTHING(tav_poid_create, 1, "/t", 1)},
      {"copy poid", NOTHING(tav_poid_copy, poid)},
      {"decimal", NOTHING(tav_decimal, "1")},
      {"zero", [](tav_ebuf* e) { return tav_decimal_alloc_result_zero(e) == nullptr; }},
      {"digits", DONE(tav_decimal_to_str, decimal, 0, digits, sizeof digits)},
      {"connect", DONE(tcm_connect, &context, &database)},
      {"op", DONE(tcm_op, opened, 575, 0, list, &output)},
  };
  const std::string before = state();
  for (const auto& call : calls) {
    const tav_ebuf held{1, 2, TAV_ERR_BUSY, COUNT, 5, 6, 12, "caller"};
    tav_ebuf error = held;
    EXPECT_TRUE(call.gives_nothing(&error)) << call.name;
    EXPECT_EQ(text_of(error), text_of(held)) << call.name;
    EXPECT_EQ(state(), before) << call.name;
  }
}

// A failure that leaves all as it is names the place, the field and the element.
TEST_F(errors, say_what_is_wrong) {
  const struct {
    int32_t code;
    uint32_t field;
    int32_t rec_id;
    void (*call)(tav_ebuf*);
    int32_t location = TAV_ERRLOC_LIST;
  } rows[] = {
      {TAV_ERR_MISSING_FIELD, ABSENT, 0, CALL(tavi_flist_get, list, ABSENT, 0, 0, 0)},
      {TAV_ERR_MISSING_FIELD, ITEMS, 8, CALL(tavi_flist_get, list, ITEMS, 8, 0, 0)},
      {TAV_ERR_WRONG_TYPE, NONE, 2, CALL(tavi_flist_get, list, NONE, 2, 1, 0)},
      {TAV_ERR_BAD_ARG, COUNT, 0, CALL(tavi_flist_get, null_list, COUNT, 0, 1, 0)},
      {TAV_ERR_BAD_ARG, COUNT, 0, CALL(tavi_flist_set, null_list, COUNT, 0, 0, &one)},
      {TAV_ERR_BAD_ARG, COUNT, 6, CALL(tavi_flist_set, list, COUNT, 6, 0, nullptr)},
      {TAV_ERR_BAD_ARG, BYTES, 0, CALL(tavi_flist_set, list, BYTES, 0, 0, &no_bytes)},
      {TAV_ERR_WRONG_TYPE, NONE, 0, CALL(tavi_flist_set, list, NONE, 0, 0, &one)},
      {TAV_ERR_WRONG_TYPE, COUNT, 0, CALL(tavi_flist_put, list, COUNT, 0, 0, item)},
      {TAV_ERR_BAD_ARG, ITEMS, 0, CALL(tavi_flist_put, null_list, ITEMS, 0, 0, item)},
      {TAV_ERR_BAD_ARG, ITEMS, 6, CALL(tavi_flist_put, list, ITEMS, 6, 0, nullptr)},
      {TAV_ERR_BAD_ARG, ITEMS, 0, CALL(tavi_flist_put, item, ITEMS, 0, 0, list)},
      {TAV_ERR_BAD_ARG, ITEMS, 5, CALL(tavi_flist_put, list, ITEMS, 5, 0, item)},
      {TAV_ERR_NOT_FOUND, ITEMS, 8, CALL(tavi_flist_drop, list, ITEMS, 8)},
      {TAV_ERR_BAD_ARG, ITEMS, 8, CALL(tavi_flist_drop, null_list, ITEMS, 8)},
      {TAV_ERR_WRONG_TYPE, COUNT, 2, CALL(tav_flist_elem_add, list, COUNT, 2)},
      {TAV_ERR_BAD_ARG, ITEMS, 2, CALL(tav_flist_elem_add, null_list, ITEMS, 2)},
      {TAV_ERR_WRONG_TYPE, COUNT, 0, CALL(tav_flist_elem_count, list, COUNT)},
      {TAV_ERR_BAD_ARG, ITEMS, 0, CALL(tav_flist_elem_count, null_list, ITEMS)},
      {TAV_ERR_BAD_ARG, ITEMS, 0,
       CALL(tav_flist_elem_get_next, null_list, ITEMS, &id, 0, &cookie, 0)},
      {TAV_ERR_BAD_ARG, ITEMS, 0, CALL(tav_flist_elem_get_next, list, ITEMS, &id, 0, nullptr, 0)},
      {TAV_ERR_WRONG_TYPE, COUNT, 0,
       CALL(tav_flist_elem_get_next, list, COUNT, &id, 0, &cookie, 0)},
      {TAV_ERR_BAD_ARG, ITEMS, 0,
       CALL(tav_flist_elem_take_next, null_list, ITEMS, &id, 0, &cookie, 0)},
      {TAV_ERR_BAD_ARG, 0, 0, CALL(tav_flist_copy, nullptr)},
      {TAV_ERR_BAD_ARG, 0, 0, CALL(tav_flist_destroy, item)},
      {TAV_ERR_BAD_ARG, 0, 0, CALL(tav_decimal, nullptr)},
      {TAV_ERR_BAD_VALUE, 0, 0, CALL(tav_decimal, "1.5x")},
      {TAV_ERR_BAD_ARG, 0, 0, CALL(tav_decimal_to_str, decimal, 0, digits, 5)},
      {TAV_ERR_BAD_ARG, 0, 0, CALL(tcm_connect, &context, nullptr), TAV_ERRLOC_CM},
      {TAV_ERR_BAD_ARG, 0, 0, CALL(tcm_op, opened, 575, 0, nullptr, &output),
       TAV_ERRLOC_CONNECTION},
  };
  const std::string before = state();
  for (const auto& row : rows) {
    SCOPED_TRACE(&row - rows);
    tav_ebuf error{0, 0, 0, 0, 0, 0, 12, "caller"};
    row.call(&error);
    EXPECT_EQ(text_of(error), text_of({row.location, TAV_ERRCLASS_REQUEST, row.code, row.field,
                                       row.rec_id, 0, 12, "caller"}));
    EXPECT_EQ(state(), before);
    row.call(nullptr);
    EXPECT_EQ(state(), before);
  }
}
