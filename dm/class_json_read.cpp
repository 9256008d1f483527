#include <rapidjson/memorystream.h>
#include <rapidjson/reader.h>

#include <cstring>
#include <limits>

#include "dd/owners.h"
#include "dd/values.h"
#include "dm/class_json.h"
#include "dm/text_rules.h"

namespace dm {

// A half of a code point that is written as two: the library lets a second one alone pass.
static bool holds_surrogate(std::string_view text) {
  for (size_t at = 0; (at = text.find('\xed', at)) != text.npos; ++at) {
    if (at + 1 < text.size() && static_cast<unsigned char>(text[at + 1]) >= 0xa0) return true;
  }
  return false;
}

namespace {

// Text of one definition into lists. The levels of a text are: the class, its entries (an array and
// an object each), and an array of texts; anything else ends the reading.
class builder {
 public:
  explicit builder(tav_flist_t* element) { lists_[0] = element; }

  const char* fault() const { return fault_; }

  bool StartObject() {
    if (depth_ < 0) return depth_ = 0, true;
    if (!in_entries_ || depth_ + 1 > DEEPEST_READ) return fail("is nested wrongly");
    lists_[depth_ + 1] =
        tav_flist_elem_add(lists_[depth_], TAV_FLD_OBJ_ELEM, count_[depth_]++, &ebuf_);
    ++depth_;
    count_[depth_] = 0;
    given_[depth_] = 0;
    in_entries_ = false;
    next_ = 0;
    return built();
  }
  bool EndObject(rapidjson::SizeType) {
    const unsigned needed = depth_ > 0 ? bit(ENTRY_NAME) | bit(ENTRY_TYPE) : bit(CLASS_NAME);
    if ((given_[depth_] & needed) != needed) return fail("lacks a name or a type");
    in_entries_ = depth_ > 0;
    if (depth_ > 0) --depth_;
    return true;
  }
  bool StartArray() {
    if (row_ == nullptr && at_entries_ && !in_entries_)
      return at_entries_ = false, in_entries_ = true;
    if (row_ == nullptr || row_->form != value_form::TEXTS || in_texts_)
      return fail("is nested wrongly");
    texts_ = 0;
    return in_texts_ = true;
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
    if (row_ == nullptr || std::memchr(text, '\0', length) != nullptr ||
        holds_surrogate({text, length}))
      return fail("holds a bad text");
    if (row_->form == value_form::DECIMAL && length > LONGEST_TEXT)
      return fail("holds a number that is too long");
    tav_flist_t* list = lists_[depth_];
    if (row_->form == value_form::TEXT) {
      dd_set_text(list, row_->field, text, &ebuf_);
    } else if (row_->form == value_form::DECIMAL) {
      dd_put(list, row_->field, 0, dd_decimal(tav_decimal(text, &ebuf_)), &ebuf_);
    } else if (in_texts_) {
      dd_set_text(tav_flist_elem_add(list, row_->field, texts_++, &ebuf_), row_->text, text,
                  &ebuf_);
    } else {
      return fail("holds a text in a wrong place");
    }
    return built();
  }
  bool Int(int value) {
    if (row_ == nullptr || row_->form != value_form::NUMBER)
      return fail("holds a number in a wrong place");
    dd_set_int(lists_[depth_], row_->field, value, &ebuf_);
    return built();
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

  bool fail(const char* fault) {
    fault_ = fault;
    return false;
  }
  bool built() { return ebuf_.err_code == TAV_ERR_NONE || fail(tav_taverr_to_str(ebuf_.err_code)); }

  // Attributes stand in the order of the rows, so the next one is near.
  template <size_t N>
  const attribute* look(const std::array<attribute, N>& rows, std::string_view key) {
    for (size_t tried = 0; tried < N; ++tried) {
      const attribute& row = rows[next_];
      const size_t place = next_;
      if (++next_ == N) next_ = 0;
      if (key != row.key) continue;
      if ((given_[depth_] & bit(place)) != 0) return nullptr;
      given_[depth_] |= bit(place);
      return &row;
    }
    return nullptr;
  }

  tav_flist_t* lists_[DEEPEST_READ + 1] = {};
  int32_t count_[DEEPEST_READ + 1] = {};   // entries so far
  unsigned given_[DEEPEST_READ + 1] = {};  // a bit for each row that was met
  int depth_ = -1;
  int32_t texts_ = 0;
  size_t next_ = 0;
  bool at_entries_ = false;  // behind the key of the entries
  bool in_entries_ = false;
  bool in_texts_ = false;
  const attribute* row_ = nullptr;
  const char* fault_ = "is no JSON text";
  tav_ebuf ebuf_{};
};

}  // namespace

struct class_reader::buffers {
  rapidjson::Reader json;
};

class_reader::class_reader() : buffers_(std::make_unique<buffers>()) {}
class_reader::~class_reader() = default;

bool class_reader::read(const char* text, tav_flist_t* element, const char*& fault) {
  builder build(element);
  // A stream with an end: the reader takes whole sequences, also where the text ends in one.
  rapidjson::MemoryStream stream(text, std::strlen(text));
  // The reader calls itself for each level; the builder allows few.
  const auto result = buffers_->json.Parse<rapidjson::kParseValidateEncodingFlag>(stream, build);
  fault = build.fault();
  return !result.IsError();
}

}  // namespace dm
