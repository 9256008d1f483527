// Stored class definitions: any text gives a definition or a refusal, and what was read is written
// and reads back as the same.
#include "dm/class_json.h"
#include "dm/rules/class_rules.h"
#include "tests/dparse/language.h"
#include "tests/fuzz/target.h"

struct stored {
  dd_flist list{tav_flist_create(nullptr)};
  dm::class_def definition{};
  const char* fault = nullptr;

  bool read(const std::string& text) {
    dm::class_reader reader;
    const tav_flist_t* element = reader.read(text.c_str(), list.get(), 0, fault);
    if (element == nullptr) return false;
    dm::read_class(tav_node_of(element), 0, definition);
    return true;
  }
  std::string written() const { return std::string(dm::class_writer().write(definition)); }
};

// Empty storage texts are none.
static std::string values_of(const stored& read) {
  std::string values = text_of(read.list.get());
  for (const char* name : {"SQL_TABLE", "SQL_STORAGE"}) lose(values, name, "\"\"");
  return values;
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
  claim(values_of(first) == values_of(second), "no value is lost", text + "\n" + values_of(first));
  return 0;
}
