// tav.conf: any text gives entries, or a sentence and none; entries written down read back.
#include "tests/fuzz/target.h"
#include "vantor/conf/conf_file.h"
#include "vantor/conf/conf_value.h"

using namespace vantor;

static conf_file parsed(const std::string& text) {
  conf_file conf;
  conf.path = "tav.conf";
  parse_conf(text, conf);
  return conf;
}

static std::string written(const conf_file& conf) {
  std::string text;
  for (const conf_entry& e : conf.entries) {
    text += "[" + (e.section.empty() ? "-" : e.section) + "]\n" + e.name + "=" + e.value + "\n";
  }
  return text;
}

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const conf_file conf = parsed(std::string(reinterpret_cast<const char*>(data), size));
  if (conf.error != 0) {
    claim(conf.entries.empty() && conf.problem.size() > 10, "a refused file has a sentence only");
    return 0;
  }
  for (const conf_entry& e : conf.entries) {
    claim(find_entry(conf, e.section.c_str(), e.name.c_str()) == &e, "an entry is found", e.name);
    int32_t number = 0;
    number_from(e.value, number);
    tav_poid_destroy(poid_from(e.value), nullptr);
  }
  const std::string text = written(conf);
  const conf_file again = parsed(text);
  claim(again.error == 0 && written(again) == text, "what was read reads back",
        text + again.problem);
  return 0;
}
