#include "language.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "dd/walk.h"
#include "dparse/read/reader.h"

file stream_of(const std::string& text, bool buffered) {
  file stream(fmemopen(const_cast<char*>(text.data()), text.size(), "r"));
  if (!buffered) std::setvbuf(stream.get(), nullptr, _IONBF, 0);
  return stream;
}

static std::string value_text(tav_flist_t* list, const char* name, uint32_t field) {
  std::string text;
  tav_ebuf ebuf{};
  if (DD_FIELD_ID_TYPE(field) == TAV_FLDT_ARRAY) {
    dd_walk walk(list, field);
    while (tav_flist_t* element = walk.next(&ebuf))
      text +=
          std::string(" ") + name + "[" + std::to_string(walk.id()) + "]{" + text_of(element) + "}";
    return text;
  }
  const void* value = tavi_flist_get(list, field, 0, 1, 0, &ebuf);
  if (value == nullptr) return "";
  char digits[dparse::TEXT_SIZE];
  switch (DD_FIELD_ID_TYPE(field)) {
    case TAV_FLDT_STRING:
      text = "\"" + std::string(static_cast<const char*>(value)) + "\"";
      break;
    case TAV_FLDT_DECIMAL:
      tav_decimal_to_str(static_cast<const tav_decimal_t*>(value), 0, digits, sizeof digits, &ebuf);
      text = digits;
      break;
    default:
      text = std::to_string(*static_cast<const int32_t*>(value));
  }
  return std::string(" ") + name + "=" + text;
}

std::string text_of(tav_flist_t* list) {
  std::string text;
#define VALUE_ROW(name, type, number, description) \
  text += value_text(list, &#name[sizeof "TAV_FLD_" - 1], name);
  DD_FIELD_IDS(VALUE_ROW)
#undef VALUE_ROW
  return text.empty() ? text : text.substr(1);
}

// The log of this process goes to a folder of its own, made before anything is logged.
static const struct log_folder {
  std::filesystem::path path;
  log_folder() {
    char name[] = "/tmp/dparse_test_XXXXXX";
    path = mkdtemp(name);
    std::ofstream(path / "tav.conf");
    setenv("TAV_CONF", (path / "tav.conf").c_str(), 1);
  }
  ~log_folder() { std::filesystem::remove_all(path); }
} folder;

// A record's first line is TIME HOST PROGRAM[PID] LEVEL SOURCE:LINE MESSAGE.
std::string take_log() {
  static std::streamoff taken = 0;
  std::ifstream log(folder.path / "tav_deploy.tavlog");
  log.seekg(taken);
  std::string text;
  for (std::string line; std::getline(log, line); taken = log.tellg()) {
    const size_t source = line.find("] 1 dparse");
    if (source == line.npos) continue;
    const size_t message = line.find(' ', source + 4) + 1;
    text += (text.empty() ? "" : " | ") + line.substr(message);
  }
  return text;
}

int lists::read(const std::string& text, const char* filter) {
  const file stream = stream_of(text);
  return dparseDefFileExt(stream.get(), &fields, &classes, &impls, filter);
}

std::string lists::text() const {
  std::string all;
  for (const auto* list : {&fields, &classes, &impls}) {
    const std::string one = text_of(list->get());
    all += (all.empty() || one.empty() ? "" : " ") + one;
  }
  return all;
}

std::string reader_error() {
  return std::to_string(dparseGetErrLine()) + ": " + dparseGetErrMsg();
}
