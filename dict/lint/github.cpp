// Workflow commands, which GitHub shows as annotations: one a line.
#include "dict/lint/excerpt.h"
#include "dict/lint/forms.h"
#include "dict/lint/places.h"
#include "dict/terminal/json.h"

namespace dict {

static constexpr char IN_MESSAGE[] = "%\r\n";
static constexpr char IN_PROPERTY[] = "%\r\n:,";

static std::string escaped(const std::string& text, std::string_view signs) {
  std::string result;
  for (const char c : as_utf8(text)) {
    char code[4];
    std::snprintf(code, sizeof code, "%%%02X", static_cast<unsigned char>(c));
    if (signs.find(c) == signs.npos) {
      result += c;
    } else {
      result += code;
    }
  }
  return written_out(result);  // there are no codes for other signs
}

static const char* command_of(lint::level level) {
  return level == lint::level::NOTE ? "notice" : name_of(level);
}

static std::string line_of(const lint::finding& found, const region& at, places& there) {
  std::string message = written_out(found.sentence);
  for (const lint::related_place& each : found.related) {
    const region other = region_of(there, each.where);
    message.append("\n").append(written_out(other.file)).append(":");
    message.append(std::to_string(other.line)).append(": ").append(written_out(each.sentence));
  }
  std::string line = std::string("::") + command_of(found.told) +
                     " file=" + escaped(lint::stable_name(at.file), IN_PROPERTY) +
                     ",line=" + std::to_string(at.line) + ",endLine=" + std::to_string(at.end_line);
  if (at.line == at.end_line)  // columns are shown on one line only
    line += ",col=" + std::to_string(at.column) + ",endColumn=" + std::to_string(at.end_column);
  return line + ",title=" + escaped(std::string(found.rule), IN_PROPERTY) +
         "::" + escaped(message, IN_MESSAGE) + "\n";
}

void as_github(const lint_report& report, const text_sink& to) {
  places here{report.sources}, there{report.sources};
  for (const lint::outcome& each : report.findings) {
    if (each.hidden != lint::hidden_by::NOTHING) continue;
    to(line_of(each.found, region_of(here, each.found.where), there));
  }
}

}  // namespace dict
