// Stored class definitions: any text gives a definition or a refusal, and what was read is written
// and reads back as the same.
#include "dd/walk.h"
#include "dm/class_json.h"
#include "dm/class_rules.h"
#include "tests/dparse/language.h"
#include "tests/fuzz/target.h"

struct stored {
  dd_flist list{tav_flist_create(nullptr)};
  dm::class_def definition{};
  const char* fault = nullptr;

  bool read(const std::string& text) {
    dm::class_reader reader;
    if (!reader.read(text.c_str(), list.get(), fault)) return false;
    dm::read_class(tav_node_of(list.get()), 0, definition);
    return true;
  }
  std::string written() const { return std::string(dm::class_writer().write(definition)); }
};

// Empty storage texts are none.
static void drop_empty(tav_flist_t* list) {
  for (const uint32_t field : {TAV_FLD_SQL_TABLE, TAV_FLD_SQL_STORAGE}) {
    const void* text = tavi_flist_get(list, field, 0, 1, 0, nullptr);
    if (text != nullptr && *static_cast<const char*>(text) == '\0') {
      tavi_flist_drop(list, field, 0, nullptr);
    }
  }
  dd_walk entries(list, TAV_FLD_OBJ_ELEM);
  tav_ebuf ebuf{};
  while (tav_flist_t* entry = entries.next(&ebuf)) drop_empty(entry);
}

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  stored first;
  if (!first.read(std::string(reinterpret_cast<const char*>(data), size))) {
    claim(first.fault != nullptr && *first.fault != '\0', "a refusal says why");
    return 0;
  }
  dm::findings found;
  dm::check_texts(first.definition, found);
  dm::check_structure(first.definition, found);
  const std::string text = first.written();
  stored second;
  claim(second.read(text), "what was written can be read", text);
  claim(second.written() == text, "what was read is written the same", text);
  drop_empty(first.list.get());
  claim(text_of(first.list.get()) == text_of(second.list.get()), "no value is lost", text);
  return 0;
}
