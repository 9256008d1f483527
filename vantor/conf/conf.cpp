#include <cstring>

#include "vantor/conf/conf_file.h"
#include "vantor/conf/conf_value.h"
#include "vantor/guard.h"

using namespace vantor;

static constexpr char MODULE[] = "conf";

namespace {

// One sentence per process: the file is read once.
void report_file(const conf_file& conf) {
  static bool reported = false;
  if (conf.error == TAV_ERR_NONE || reported) return;
  reported = true;
  tav_component_log(tav_component::CM, 1, conf.problem.c_str(), HERE);
}

void report_value(const conf_file& conf, const conf_entry& entry, const char* wanted) {
  const std::string sentence = conf.path + ":" + std::to_string(entry.line) + ": \"" + entry.name +
                               "\" must be " + wanted + ".";
  tav_component_log(tav_component::CM, 1, sentence.c_str(), HERE);
}

// Gives an allocated value of the type, or null for a malformed one.
void* value_from(const std::string& text, int32_t type) {
  if (type == TAV_FLDT_POID) return poid_from(text);
  if (type == TAV_FLDT_STRING) return heap_copy(text.c_str(), text.size() + 1);
  int32_t number = 0;
  return number_from(text, number) ? heap_copy(&number, sizeof number) : nullptr;
}

const char* wanted(int32_t type) {
  return type == TAV_FLDT_POID ? "an object id, DATABASE TYPE ID, such as \"0.0.0.1 /admin 1\""
                               : "a whole number";
}

int32_t look_up(const char* program, const char* key, int32_t type, void** value) {
  if (type != TAV_FLDT_POID && type != TAV_FLDT_STRING && type != TAV_FLDT_INT) {
    return TAV_ERR_WRONG_TYPE;
  }
  const conf_file& conf = process_conf();
  report_file(conf);
  if (conf.error != TAV_ERR_NONE) return conf.error;
  const conf_entry* entry = find_entry(conf, program, key);
  if (entry == nullptr) return TAV_ERR_NOT_FOUND;
  *value = value_from(entry->value, type);
  if (*value != nullptr) return TAV_ERR_NONE;
  report_value(conf, *entry, wanted(type));
  return TAV_ERR_BAD_CONF;
}

}  // namespace

void tav_conf(const char* program, const char* key, int32_t type, void** value, int32_t* error) {
  tav_ebuf ebuf{};
  if (value != nullptr) *value = nullptr;
  guarded<void>({&ebuf}, [&] {
    const bool asked = program != nullptr && key != nullptr && value != nullptr;
    ebuf.err_code = asked ? look_up(program, key, type, value) : TAV_ERR_BAD_ARG;
  });
  if (error != nullptr) *error = ebuf.err_code;
}

static const char* text_or_none(const char* text) {
  return text != nullptr ? text : "";
}

const char* tav_conf_file() {
  return text_or_none(guarded<const char*>({nullptr}, [] { return process_conf().path.c_str(); }));
}

const char* tav_conf_folder() {
  return text_or_none(
      guarded<const char*>({nullptr}, [] { return process_conf().folder.c_str(); }));
}

int tav_conf_line(const char* program, const char* key) {
  return guarded<int>({nullptr}, [&] {
    const conf_entry* entry = find_entry(process_conf(), program, key);
    return entry != nullptr ? entry->line : 0;
  });
}

const char* tav_conf_problem() {
  const char* problem =
      guarded<const char*>({nullptr}, [] { return process_conf().problem.c_str(); });
  return problem != nullptr ? problem : "";
}

bool tav_conf_entry_at(size_t place, tav_conf_entry& entry) {
  return guarded<bool>({nullptr}, [&] {
    const std::vector<conf_entry>& entries = process_conf().entries;
    if (place >= entries.size()) return false;
    const conf_entry& found = entries[place];
    entry = {found.section.c_str(), found.name.c_str(), found.line};
    return true;
  });
}
