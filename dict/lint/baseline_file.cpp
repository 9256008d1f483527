#include "dict/lint/baseline_file.h"

#include <filesystem>

#include "dict/files.h"

namespace dict {

// What to do about a file over which --write-baseline would not write.
static constexpr char REMEDY[] =
    " Restore it, or remove it and have --write-baseline write a new one.";

static std::string fault_of(const std::string& name, uint64_t line) {
  if (line != lint::NO_HEAD)
    return dm::join({"File ", name, " is no baseline: line ", std::to_string(line),
                     " is none of its lines.", REMEDY});
  return dm::join({"File ", name,
                   " is no baseline: the line is missing that begins with \"# Findings that\".",
                   REMEDY});
}

bool read_baseline_file(const std::string& file, lint::baseline& known, dm::problem& why) {
  file_content content;
  if (!read_file(file, file, content, why)) return false;
  const uint64_t line = lint::read_baseline(content.text, known);
  if (line == 0) return true;
  const std::string name = dm::quoted(file);
  why.sentence =
      content.text.empty()
          ? dm::join(
                {"File ", name, " is no baseline: it is empty. --write-baseline writes one there."})
          : fault_of(name, line);
  return false;
}

bool takes_baseline(const std::string& file, dm::problem& why) {
  std::error_code error;
  file_content content;
  lint::baseline known;
  if (!std::filesystem::is_regular_file(file, error)) return true;
  if (!read_file(file, file, content, why)) return false;
  if (content.text.empty() || lint::read_baseline(content.text, known) == 0) return true;
  why.sentence = dm::join({"File ", dm::quoted(file),
                           " is no baseline, and --write-baseline replaces nothing else: name "
                           "another file, or remove this one."});
  return false;
}

}  // namespace dict
