#include <rapidjson/reader.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

#include "dd/longest_text.h"
#include "dd/owners.h"
#include "dm/class_json.h"
#include "dm/json_memory.h"
#include "dm/json_run.h"

namespace dm {

// Whether the text holds a surrogate, which is no character. The parser refuses all but one case:
// the escape of a low surrogate that follows no high one.
static bool holds_surrogate(std::string_view text) {
  for (size_t at = 0; (at = text.find('\xed', at)) != text.npos; ++at) {
    if (at + 1 < text.size() && static_cast<unsigned char>(text[at + 1]) >= 0xa0) return true;
  }
  return false;
}

namespace {

// UTF-8, read in place. A run of characters that need no escape is taken at once instead of one by
// one.
struct text_encoding : rapidjson::UTF8<> {
  using rapidjson::UTF8<>::Validate;
  template <class Stream>
  static bool Validate(Stream& text, Stream&) {
    const size_t run = plain_run(text.src_);
    if (run == 0) return rapidjson::UTF8<>::Validate(text, text);
    if (text.dst_ != text.src_) std::memmove(text.dst_, text.src_, run);
    text.src_ += run;
    text.dst_ += run;
    return true;
  }
};

// What was read so far of a class or an entry. Values are collected, because making an element with
// all its values is faster than setting each. Before its first array the element must be made.
struct level {
  static constexpr size_t ROWS = std::max(CLASS_ATTRIBUTES.size(), ENTRY_ATTRIBUTES.size());
  tav_flist_t* list;  // the element; null until it is made
  int32_t elem_id;
  int32_t count;   // entries so far
  unsigned given;  // a bit for each row whose key was read
  size_t waiting;  // number of values collected
  std::array<tav_value, ROWS> values;
  std::array<int32_t, ROWS> numbers;
};
static_assert(level::ROWS <= std::numeric_limits<unsigned>::digits,
              "level::given has no bit for a row");

// Builds the list of one class from the parser's events. The class is an object; its entries, and
// theirs, are arrays of objects; the only other arrays are those of texts. Anything else is a
// fault, which ends the reading.
class builder {
 public:
  // Without escapes no text needs the test for NUL bytes and surrogates: the parser refuses those
  // that are not escaped.
  builder(tav_flist_t* list, int32_t elem_id, bool has_escapes, std::vector<dd_decimal>& decimals)
      : list_(list), elem_id_(elem_id), has_escapes_(has_escapes), decimals_(decimals) {}

  const char* fault() const { return fault_; }
  tav_flist_t* element() const { return levels_[0].list; }

  bool StartObject() {
    if (depth_ < 0) return begin(elem_id_);
    if (!in_entries_ || depth_ + 1 > DEEPEST_READ) return fail("is nested wrongly");
    return begin(levels_[depth_].count++);
  }
  bool EndObject(rapidjson::SizeType) {
    const unsigned needed = depth_ > 0 ? bit(ENTRY_NAME) | bit(ENTRY_TYPE) : bit(CLASS_NAME);
    if ((levels_[depth_].given & needed) != needed) return fail("lacks a name or a type");
    if (!build()) return false;
    in_entries_ = depth_ > 0;
    row_ = nullptr;
    if (depth_ > 0) --depth_;
    return true;
  }
  bool StartArray() {
    const bool is_entries = row_ == nullptr && at_entries_ && !in_entries_;
    const bool is_texts = row_ != nullptr && row_->kind == dd_value_kind::TEXTS && !in_texts_;
    if (!is_entries && !is_texts) return fail("is nested wrongly");
    if (is_entries) at_entries_ = false;
    texts_ = 0;
    (is_entries ? in_entries_ : in_texts_) = true;
    return build();
  }
  bool EndArray(rapidjson::SizeType) {
    if (!in_texts_) in_entries_ = false;
    in_texts_ = false;
    row_ = nullptr;
    return true;
  }

  bool Key(const char* key, rapidjson::SizeType length, bool) {
    const std::string_view wanted(key, length);
    at_entries_ = wanted == ENTRIES_KEY;
    row_ = nullptr;
    if (at_entries_) return true;
    row_ = depth_ == 0 ? look(CLASS_ATTRIBUTES, wanted) : look(ENTRY_ATTRIBUTES, wanted);
    return row_ != nullptr || fail("holds an attribute that is unknown or stands there twice");
  }

  bool String(const char* text, rapidjson::SizeType length, bool) {
    if (row_ == nullptr || (has_escapes_ && is_bad({text, length})))
      return fail("holds a bad text");
    if (row_->kind == dd_value_kind::TEXT) return wait(text);
    if (row_->kind == dd_value_kind::DECIMAL) return read_decimal(text, length);
    if (!in_texts_) return fail("holds a text in a wrong place");
    const tav_value value = {row_->text, text};
    tav_elem_add_filled(levels_[depth_].list, row_->field, texts_++, &value, 1, &ebuf_);
    return built();
  }
  bool Int(int value) {
    if (row_ == nullptr || row_->kind != dd_value_kind::NUMBER)
      return fail("holds a number in a wrong place");
    level& at = levels_[depth_];
    at.numbers[at.waiting] = value;
    return wait(&at.numbers[at.waiting]);
  }
  bool Uint(unsigned value) {
    constexpr auto MOST = static_cast<unsigned>(std::numeric_limits<int32_t>::max());
    return value <= MOST ? Int(static_cast<int>(value)) : fail("holds a number out of range");
  }
  bool Int64(int64_t) { return fail("holds a number out of range"); }
  bool Uint64(uint64_t) { return fail("holds a number out of range"); }
  bool Double(double) { return fail("holds a number out of range"); }
  bool RawNumber(const char*, rapidjson::SizeType, bool) { return fail("holds a bad number"); }
  bool Null() { return fail("holds an empty value"); }
  bool Bool(bool) { return fail("holds a truth value"); }

 private:
  static constexpr unsigned bit(size_t row) { return 1u << row; }

  static bool is_bad(std::string_view text) {
    return text.find('\0') != text.npos || holds_surrogate(text);
  }

  bool fail(const char* fault) {
    fault_ = fault;
    return false;
  }
  // Whether the last list call succeeded; its error is the fault. Throws std::bad_alloc where
  // memory ran out, because that is no fault of the text.
  bool built() {
    if (ebuf_.err_code == TAV_ERR_NO_MEM) throw std::bad_alloc();
    return ebuf_.err_code == TAV_ERR_NONE || fail(tav_taverr_to_str(ebuf_.err_code));
  }

  bool begin(int32_t elem_id) {
    level& next = levels_[++depth_];
    next.list = nullptr;
    next.elem_id = elem_id;
    next.count = 0;
    next.given = 0;
    next.waiting = 0;
    in_entries_ = false;
    next_ = 0;
    return true;
  }

  bool wait(const void* value) {
    level& at = levels_[depth_];
    at.values[at.waiting++] = {row_->field, value};
    return true;
  }

  bool read_decimal(const char* text, size_t length) {
    if (length > DD_LONGEST_TEXT) return fail("holds a number that is too long");
    dd_decimal made(tav_decimal(text, &ebuf_));  // owned before the vector may lack memory to grow
    decimals_.push_back(std::move(made));
    return built() && wait(decimals_.back().get());
  }

  // Makes the element with the values collected; if it was made before, sets them in it.
  bool build() {
    level& at = levels_[depth_];
    if (at.list == nullptr) {
      tav_flist_t* list = depth_ > 0 ? levels_[depth_ - 1].list : list_;
      at.list = tav_elem_add_filled(list, depth_ > 0 ? TAV_FLD_OBJ_ELEM : TAV_FLD_OBJ_DESC,
                                    at.elem_id, at.values.data(), at.waiting, &ebuf_);
      if (at.list == nullptr && depth_ == 0) throw std::bad_alloc();
      at.waiting = 0;
    }
    for (size_t i = 0; i < at.waiting; ++i) {
      tavi_flist_set(at.list, at.values[i].field, 0, 0, at.values[i].value, &ebuf_);
    }
    at.waiting = 0;
    return built();
  }

  // The row of a key; null where there is none, or the key stands there twice. The search begins
  // after the row found last, because definitions are written in the order of the rows.
  template <size_t N>
  const dd_attribute* look(const std::array<dd_attribute, N>& rows, std::string_view key) {
    for (size_t tried = 0; tried < N; ++tried) {
      const dd_attribute& row = rows[next_];
      const size_t place = next_;
      if (++next_ == N) next_ = 0;
      if (key != row.key) continue;
      if ((levels_[depth_].given & bit(place)) != 0) return nullptr;
      levels_[depth_].given |= bit(place);
      return &row;
    }
    return nullptr;
  }

  tav_flist_t* list_;
  int32_t elem_id_;
  bool has_escapes_;
  std::vector<dd_decimal>& decimals_;  // own the decimals among the values
  level levels_[DEEPEST_READ + 1];
  int depth_ = -1;
  int32_t texts_ = 0;
  size_t next_ = 0;
  bool at_entries_ = false;  // the last key was that of the entries
  bool in_entries_ = false;
  bool in_texts_ = false;
  const dd_attribute* row_ = nullptr;
  const char* fault_ = "is no JSON text";
  tav_ebuf ebuf_{};
};

}  // namespace

struct class_reader::buffers {
  rapidjson::GenericReader<text_encoding, text_encoding, json_memory> json;
  std::string text;  // a copy of the definition, which the parser overwrites
  std::vector<dd_decimal> decimals;
};

class_reader::class_reader() : buffers_(std::make_unique<buffers>()) {}
class_reader::~class_reader() = default;

tav_flist_t* class_reader::read(const char* text, tav_flist_t* list, int32_t elem_id,
                                const char*& fault) {
  constexpr unsigned FLAGS = rapidjson::kParseInsituFlag | rapidjson::kParseValidateEncodingFlag;
  std::string& copy = buffers_->text;
  copy = text;
  const bool has_escapes = copy.find('\\') != copy.npos;
  // plain_run reads up to eight bytes beyond the end, and the decoder a whole UTF-8 sequence even
  // if the text ends within it.
  copy.append(WORD, '\0');
  buffers_->decimals.clear();
  builder build(list, elem_id, has_escapes, buffers_->decimals);
  rapidjson::GenericInsituStringStream<text_encoding> stream(copy.data());
  // The parser recurses at each level; the builder refuses deep nesting.
  const auto result = buffers_->json.Parse<FLAGS>(stream, build);
  fault = build.fault();
  return result.IsError() ? nullptr : build.element();
}

}  // namespace dm
