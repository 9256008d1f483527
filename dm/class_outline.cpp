#include "dm/class_outline.h"

#include <rapidjson/reader.h>

#include "dm/class_def.h"
#include "dm/json_memory.h"
#include "dm/rules/class_rules.h"
#include "dm/rules/class_world.h"

namespace dm {

namespace {

using utf8 = rapidjson::UTF8<>;

// What comes next: the value of a key, or the objects of an array of entries.
enum class member { OTHER, NAME, TYPE, SQL_NAME, TABLE, ENTRIES, OBJECTS };

class outline_builder : public rapidjson::BaseReaderHandler<utf8, outline_builder> {
 public:
  explicit outline_builder(class_outline& result) : result_(result) {
    result_.table = "";
    result_.entries.clear();
  }

  bool Default() { return is_open_; }

  bool StartObject() {
    if (!is_open_) return is_open_ = true;
    if (next_ != member::OBJECTS || depth_ == DEEPEST_READ) return false;
    const int32_t parent = innermost();
    inside_[depth_++] = static_cast<int32_t>(result_.entries.size());
    result_.entries.push_back({.parent = parent});
    return true;
  }
  bool EndObject(rapidjson::SizeType) {
    if (depth_ > 0) --depth_;
    next_ = member::OBJECTS;
    return true;
  }
  // The reader calls itself for each level.
  bool StartArray() {
    if (!is_open_ || is_texts_ || next_ == member::OBJECTS) return false;
    is_texts_ = next_ != member::ENTRIES;
    next_ = member::OBJECTS;
    return true;
  }
  bool EndArray(rapidjson::SizeType) {
    is_texts_ = false;
    next_ = member::OTHER;
    return true;
  }
  bool Key(const char* key, rapidjson::SizeType length, bool) {
    next_ = member_of({key, length});
    return true;
  }
  bool String(const char* text, rapidjson::SizeType, bool) {
    if (next_ == member::TABLE) result_.table = text;
    if (next_ == member::NAME) entry().name = text;
    if (next_ == member::SQL_NAME) entry().sql_name = text;
    return is_open_;
  }
  bool Int(int number) {
    if (next_ == member::TYPE) entry().type = number;
    return is_open_;
  }
  bool Uint(unsigned number) { return Int(static_cast<int>(number)); }

 private:
  // NAME, TYPE and SQL_NAME come within an entry only.
  outline_entry& entry() { return result_.entries[static_cast<size_t>(innermost())]; }
  int32_t innermost() const { return depth_ > 0 ? inside_[depth_ - 1] : NO_PARENT; }

  member member_of(std::string_view key) const {
    if (key == ENTRIES_KEY) return member::ENTRIES;
    if (depth_ == 0)
      return key == CLASS_ATTRIBUTES[CLASS_TABLE].key ? member::TABLE : member::OTHER;
    if (key == ENTRY_ATTRIBUTES[ENTRY_NAME].key) return member::NAME;
    if (key == ENTRY_ATTRIBUTES[ENTRY_TYPE].key) return member::TYPE;
    return key == ENTRY_ATTRIBUTES[ENTRY_SQL_NAME].key ? member::SQL_NAME : member::OTHER;
  }

  class_outline& result_;
  bool is_open_ = false;   // the class's own object
  bool is_texts_ = false;  // inside an array of texts
  member next_ = member::OTHER;
  int depth_ = 0;  // of entries that are open
  int32_t inside_[DEEPEST_READ];
};

}  // namespace

struct outline_reader::buffers {
  rapidjson::GenericReader<utf8, utf8, json_memory> json;
  std::string text;  // what is read in place
  class_outline outline;
};

std::string_view table_of(const outline_entry& entry) {
  if (dd_is_container(entry.type)) return entry.sql_name;
  return entry.type == TAV_FLDT_BUF ? storage_of_buf(entry.sql_name).table : std::string_view();
}

outline_reader::outline_reader() : buffers_(std::make_unique<buffers>()) {}
outline_reader::~outline_reader() = default;

const class_outline* outline_reader::read(const class_row& row, problem& why) {
  buffers_->text = row.definition;
  outline_builder build(buffers_->outline);
  rapidjson::GenericInsituStringStream<utf8> stream(buffers_->text.data());
  const auto result = buffers_->json.Parse<rapidjson::kParseInsituFlag>(stream, build);
  if (!result.IsError()) return &buffers_->outline;
  why = damaged_class(row.name, "is no JSON text");
  return nullptr;
}

}  // namespace dm
