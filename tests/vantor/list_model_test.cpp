// Random operations on lists, their copies and elements, against lists that copy everything.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "dd/values.h"
#include "vantor/binding.h"

namespace {

// Numbers, then values that can have any size.
constexpr uint32_t SCALARS[] = {
    TAV_FLD_FLAGS, TAV_FLD_LENGTH,      TAV_FLD_FIELD_NUM, TAV_FLD_NAME,
    TAV_FLD_DESCR, TAV_FLD_SQL_STORAGE, TAV_FLD_ORDER,     TAV_FLD_POID,
    TAV_FLD_LABEL, TAV_FLD_SQL_TABLE,   TAV_FLD_ATTRIBUTE, DD_FIELD_ID(TAV_FLDT_BUF, 70)};
constexpr size_t NUMBERS = 3;
constexpr uint32_t ARRAYS[] = {TAV_FLD_OBJ_ELEM, TAV_FLD_ARGS};

struct model;
struct model_element {
  int32_t id;
  uint64_t serial;  // in the order of adding
  std::unique_ptr<model> content;
};

// What a list must hold, and every pointer that it has lent.
struct model {
  struct value {
    std::string text;
    const void* lent = nullptr;
  };
  tav_flist_t* handle = nullptr;
  std::map<uint32_t, value> values;
  std::map<uint32_t, std::vector<model_element>> arrays;
};

std::string text_of(uint32_t field, const void* value) {
  const auto* buf = static_cast<const tav_buf_t*>(value);
  char decimal[4096] = "";
  switch (DD_FIELD_ID_TYPE(field)) {
    case TAV_FLDT_STRING:
      return static_cast<const char*>(value);
    case TAV_FLDT_POID:
      return tav_poid_get_type(static_cast<const tav_poid_t*>(value));
    case TAV_FLDT_DECIMAL:
      tav_decimal_to_str(static_cast<const tav_decimal_t*>(value), 0, decimal, sizeof decimal,
                         nullptr);
      return decimal;
    case TAV_FLDT_BUF:
      return {reinterpret_cast<const char*>(buf->data), buf->size};
    default:
      return std::to_string(*static_cast<const int32_t*>(value));
  }
}

std::unique_ptr<model> copy_of(const model& from) {
  auto copy = std::make_unique<model>();
  for (const auto& [field, value] : from.values) copy->values[field].text = value.text;
  for (const auto& [field, elements] : from.arrays) {
    for (const auto& e : elements) {
      copy->arrays[field].push_back({e.id, e.serial, copy_of(*e.content)});
    }
  }
  return copy;
}

void expect_same(const model& expected, const tav_node* node) {
  for (const uint32_t field : SCALARS) {
    const void* value = tav_node_get(node, field);
    const auto found = expected.values.find(field);
    ASSERT_EQ(value != nullptr, found != expected.values.end());
    ASSERT_EQ(tav_node_count(node, field), 0u);
    if (value == nullptr) continue;
    ASSERT_EQ(text_of(field, value), found->second.text);
    if (found->second.lent == nullptr) continue;
    ASSERT_EQ(text_of(field, found->second.lent), found->second.text);
  }
  for (const uint32_t field : ARRAYS) {
    const auto found = expected.arrays.find(field);
    const size_t count = found != expected.arrays.end() ? found->second.size() : 0;
    ASSERT_EQ(tav_node_get(node, field), nullptr);
    ASSERT_EQ(tav_node_count(node, field), count);
    ASSERT_EQ(tav_node_count(tav_node_of(nullptr), field), 0u);
    uint32_t position = 0;
    int32_t id = 0;
    for (size_t i = 0; i < count; ++i) {
      const tav_node* element = tav_node_next(node, field, &position, &id);
      ASSERT_NE(element, nullptr);
      ASSERT_EQ(id, found->second[i].id);
      const tav_flist_t* handle = found->second[i].content->handle;
      ASSERT_TRUE(handle == nullptr || tav_node_of(handle) == element);
      ASSERT_NO_FATAL_FAILURE(expect_same(*found->second[i].content, element));
    }
    ASSERT_EQ(tav_node_next(node, field, &position, &id), nullptr);
  }
}

class machine {
 public:
  explicit machine(unsigned seed) : random_(seed) {
    roots_.push_back(std::make_unique<model>());
    roots_[0]->handle = tav_flist_create(&ebuf_);
  }
  ~machine() {
    for (auto& root : roots_) tav_flist_destroy(root->handle, nullptr);
  }

  void step() {
    using operation = void (machine::*)(model&, uint32_t);
    static constexpr operation OPERATIONS[] = {
        &machine::set_number, &machine::set_text, &machine::lend, &machine::drop_value,
        &machine::add,        &machine::add,      &machine::drop, &machine::copy,
        &machine::destroy,    &machine::put,      &machine::set,  &machine::take,
        &machine::walk,       &machine::set_text,
    };
    const auto chosen = OPERATIONS[below(std::size(OPERATIONS))];
    (this->*chosen)(anywhere(), ARRAYS[below(2)]);
  }

  void check() {
    ASSERT_EQ(ebuf_.err_code, TAV_ERR_NONE);
    for (const auto& root : roots_) {
      ASSERT_NO_FATAL_FAILURE(expect_same(*root, tav_node_of(root->handle)));
    }
  }

 private:
  size_t below(size_t limit) { return random_() % limit; }
  int32_t any_id() {
    return static_cast<int32_t>(below(3) == 0 ? below(7) * 1024 - 2048 : below(20));
  }

  static std::vector<model_element>::iterator find(std::vector<model_element>& in, int32_t id) {
    return std::find_if(in.begin(), in.end(), [id](const auto& e) { return e.id == id; });
  }

  void expect_handle(model& content, tav_flist_t* given) {
    ASSERT_NE(given, nullptr);
    ASSERT_TRUE(content.handle == nullptr || content.handle == given);
    content.handle = given;
  }

  // A root, or an element up to three levels below one, handed out on the way.
  model& anywhere() {
    model* at = roots_[below(roots_.size())].get();
    for (size_t level = below(4); level > 0; --level) {
      const uint32_t field = ARRAYS[below(2)];
      auto& elements = at->arrays[field];
      if (elements.empty()) break;
      auto& e = elements[below(elements.size())];
      void* given = tavi_flist_get(at->handle, field, e.id, 0, 0, &ebuf_);
      expect_handle(*e.content, static_cast<tav_flist_t*>(given));
      at = e.content.get();
    }
    return *at;
  }

  void set_number(model& list, uint32_t) {
    const uint32_t field = SCALARS[below(NUMBERS)];
    const int32_t number = any_id();
    dd_set_int(list.handle, field, number, &ebuf_);
    list.values[field] = {std::to_string(number)};
  }
  void set_text(model& list, uint32_t) {
    const uint32_t field = SCALARS[NUMBERS + below(std::size(SCALARS) - NUMBERS)];
    std::string text(1 + below(below(4) == 0 ? 2500 : 40), '7');
    tav_buf_t buf{static_cast<uint32_t>(text.size()), reinterpret_cast<unsigned char*>(&text[0])};
    switch (DD_FIELD_ID_TYPE(field)) {
      case TAV_FLDT_POID:
        dd_put(list.handle, field, 0, dd_poid(tav_poid_create(1, text.c_str(), 2, &ebuf_)), &ebuf_);
        break;
      case TAV_FLDT_DECIMAL:
        dd_put(list.handle, field, 0, dd_decimal(tav_decimal(text.c_str(), &ebuf_)), &ebuf_);
        break;
      case TAV_FLDT_BUF:
        tavi_flist_set(list.handle, field, 0, 0, &buf, &ebuf_);
        break;
      default:
        dd_set_text(list.handle, field, text.c_str(), &ebuf_);
    }
    list.values[field] = {text};
  }
  void lend(model& list, uint32_t) {
    const uint32_t field = SCALARS[below(std::size(SCALARS))];
    const void* lent = tavi_flist_get(list.handle, field, 0, 1, 0, &ebuf_);
    const auto found = list.values.find(field);
    ASSERT_EQ(lent != nullptr, found != list.values.end());
    if (lent != nullptr && found->second.lent == nullptr) found->second.lent = lent;
  }

  void expect_drop(bool there) {
    ASSERT_EQ(ebuf_.err_code, there ? TAV_ERR_NONE : TAV_ERR_NOT_FOUND);
    ebuf_ = {};
  }
  void drop_value(model& list, uint32_t) {
    const uint32_t field = SCALARS[below(std::size(SCALARS))];
    tavi_flist_drop(list.handle, field, 0, &ebuf_);
    expect_drop(list.values.erase(field) > 0);
  }
  void drop(model& list, uint32_t field) {
    auto& elements = list.arrays[field];
    const int32_t id = any_id();
    tavi_flist_drop(list.handle, field, id, &ebuf_);
    const auto found = find(elements, id);
    expect_drop(found != elements.end());
    if (found != elements.end()) elements.erase(found);
  }

  // The element's content becomes this, in its place or at the end.
  void place(model& list, uint32_t field, int32_t id, std::unique_ptr<model> content) {
    auto& elements = list.arrays[field];
    const auto found = find(elements, id);
    if (found != elements.end()) {
      found->content = std::move(content);
    } else {
      elements.push_back({id, ++serial_, std::move(content)});
    }
  }
  void add(model& list, uint32_t field) {
    const int32_t id = any_id();
    auto content = std::make_unique<model>();
    content->handle = tav_flist_elem_add(list.handle, field, id, &ebuf_);
    place(list, field, id, std::move(content));
  }
  void copy(model& list, uint32_t) {
    if (roots_.size() > 6) return;
    roots_.push_back(copy_of(list));
    roots_.back()->handle = tav_flist_copy(list.handle, &ebuf_);
  }
  void destroy(model&, uint32_t) {
    if (roots_.size() < 3) return;
    tav_flist_destroy(roots_[1]->handle, nullptr);
    roots_.erase(roots_.begin() + 1);
  }
  void put(model&, uint32_t field) {
    if (roots_.size() < 3) return;
    std::unique_ptr<model> content = std::move(roots_.back());
    roots_.pop_back();
    const int32_t id = any_id();
    model& list = anywhere();
    tavi_flist_put(list.handle, field, id, 0, content->handle, &ebuf_);
    place(list, field, id, std::move(content));
  }
  void set(model& list, uint32_t field) {
    if (below(4) != 0) return;  // or the lists would explode
    const model& value = anywhere();
    const int32_t id = any_id();
    auto content = copy_of(value);
    tavi_flist_set(list.handle, field, id, 0, value.handle, &ebuf_);
    place(list, field, id, std::move(content));
  }
  void take(model& list, uint32_t field) {
    tav_cookie_t* cookie = nullptr;
    auto& elements = list.arrays[field];
    int32_t id = 0;
    tav_flist_t* taken = tav_flist_elem_take_next(list.handle, field, &id, 0, &cookie, 0, &ebuf_);
    expect_drop(!elements.empty());
    if (elements.empty()) return;
    ASSERT_EQ(id, elements[0].id);
    expect_handle(*elements[0].content, taken);
    roots_.push_back(std::move(elements[0].content));
    elements.erase(elements.begin());
  }

  // Walks while elements come and go.
  void walk(model& list, uint32_t field) {
    tav_cookie_t* cookie = nullptr;
    uint64_t last = 0;
    for (size_t steps = below(40); steps > 0; --steps) {
      int32_t id = 0;
      tav_flist_t* given = tav_flist_elem_get_next(list.handle, field, &id, 0, &cookie, 0, &ebuf_);
      auto& elements = list.arrays[field];
      const auto next = std::find_if(elements.begin(), elements.end(),
                                     [last](const auto& e) { return e.serial > last; });
      expect_drop(next != elements.end());
      if (next != elements.end()) {
        ASSERT_EQ(id, next->id);
        ASSERT_NO_FATAL_FAILURE(expect_handle(*next->content, given));
        last = next->serial;
      }
      if (below(3) == 0) add(list, field);
      if (below(3) == 0) drop(list, field);
    }
  }

  std::mt19937 random_;
  tav_ebuf ebuf_{};
  uint64_t serial_ = 0;
  std::vector<std::unique_ptr<model>> roots_;
};

TEST(ListModel, RandomOperationsKeepToTheModel) {
  for (unsigned seed = 1; seed <= 8; ++seed) {
    SCOPED_TRACE(seed);
    machine lists(seed);
    for (int step = 0; step < 2500; ++step) {
      lists.step();
      if (testing::Test::HasFatalFailure()) return;
      if (step % 20 != 0) continue;
      ASSERT_NO_FATAL_FAILURE(lists.check());
    }
    ASSERT_NO_FATAL_FAILURE(lists.check());
  }
}

}  // namespace
