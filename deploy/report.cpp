#include "deploy/report.h"

#include <algorithm>
#include <cstdio>

#include "dd/report.h"
#include "deploy/modes.h"

namespace deploy {

namespace {

// The placeholders of texts.
enum class part { CLASS, RELATED, FIELD, TABLE, COLUMN, FILE, LINE, MESSAGE, WORD };

constexpr std::string_view PARTS[] = {"class", "related", "field",   "table", "column",
                                      "file",  "line",    "message", "word"};

constexpr size_t MOST_PARTS = 3;

// A text as a format, in which each part is a %s.
struct wording {
  char format[160] = {};
  part parts[MOST_PARTS] = {};
};

using values = std::array<const char*, MOST_PARTS>;

}  // namespace

// A name that is no part's is a mistake in the table, and fails the build; so is a text that is too
// long or has too many parts.
static constexpr part part_named(std::string_view name) {
  size_t place = 0;
  while (PARTS[place] != name) ++place;
  return static_cast<part>(place);
}

static constexpr wording word(std::string_view text) {
  wording result;
  size_t length = 0;
  size_t parts = 0;
  while (!text.empty()) {
    if (text[0] != '{') {
      result.format[length++] = text[0];
      text.remove_prefix(1);
      continue;
    }
    size_t end = 1;
    while (text[end] != '}') ++end;
    result.parts[parts++] = part_named(text.substr(1, end - 1));
    result.format[length++] = '%';
    result.format[length++] = 's';
    text.remove_prefix(end + 1);
  }
  return result;
}

static constexpr auto WORDINGS = [] {
  std::array<wording, FINDINGS.size()> result;
  for (size_t place = 0; place < result.size(); ++place) {
    const finding_row& row = FINDINGS[place];
    if (row.kind == finding_kind::DETAIL || *row.text == '\0') continue;
    result[place] = word(row.text);
  }
  return result;
}();

static struct {
  finding_sink sink;
  void* context;
} receiver;

void set_sink(finding_sink sink, void* context) {
  receiver = {sink, context};
}

bool has_sink() {
  return receiver.sink != nullptr;
}

static const char* value_of(part wanted, const subject& about, const finding_arguments& arguments,
                            const char* line) {
  switch (wanted) {
    case part::CLASS:
      return about.class_name;
    case part::RELATED:
      return about.related_class;
    case part::FIELD:
      return about.field;
    case part::TABLE:
      return about.table;
    case part::COLUMN:
      return about.column;
    case part::FILE:
      return arguments.file;
    case part::LINE:
      return line;
    case part::MESSAGE:
      return arguments.message;
    default:
      return arguments.word;
  }
}

static void print(const finding_row& row, const char* format, const values& with) {
  if (*row.text == '\0') return;
  if (row.kind != finding_kind::OUTCOME) return dd_print_error(format, with[0], with[1], with[2]);
  std::fputs(row.text, stdout);
  std::fflush(stdout);
}

static void log(dd_site site, const finding_row& row, const finding_arguments& arguments) {
  if (*row.log_text == '\0') return;
  const bool hands_on = std::string_view(row.log_text) == "{message}";
  const char* text = hands_on ? arguments.message : row.log_text;
  if (arguments.ebuf == nullptr) return dd_log(site, text);
  dd_log(site, text, *arguments.ebuf);
}

static void raise_flags(raising raises) {
  using enum raising;
  if (raises == CONFLICT || raises == CONFLICT_AND_ERROR) tav_deploy_raise_conflict();
  if (raises == ERROR || raises == CONFLICT_AND_ERROR) tav_deploy_raise_error();
}

static std::string sentence_of(const char* format, const values& with) {
  const int length = std::snprintf(nullptr, 0, format, with[0], with[1], with[2]);
  std::string text(length > 0 ? static_cast<size_t>(length) : 0, '\0');
  std::snprintf(text.data(), text.size() + 1, format, with[0], with[1], with[2]);
  const size_t first = std::min(text.find_first_not_of('\n'), text.size());
  return text.substr(first, text.find_last_not_of('\n') + 1 - first);
}

int report(dd_site site, finding found, const subject& about, const finding_arguments& arguments) {
  using enum telling;
  const finding_row& row = found.row();
  const wording& words = WORDINGS[found.place()];
  char line[16] = "";
  if (arguments.line != 0) std::snprintf(line, sizeof line, "%d", arguments.line);
  values with;
  for (size_t i = 0; i < with.size(); ++i) {
    with[i] = value_of(words.parts[i], about, arguments, line);
  }
  const bool logs_first = row.order == LOG_PRINT || row.order == LOG_PRINT_SHOW;
  if (logs_first) log(site, row, arguments);
  print(row, words.format, with);
  if (row.order == PRINT_SHOW_LOG || row.order == LOG_PRINT_SHOW) {
    tav_deploy_display_ebuf(arguments.ebuf);
  }
  if (!logs_first) log(site, row, arguments);
  raise_flags(row.raises);
  if (receiver.sink != nullptr) {
    const std::string sentence = sentence_of(words.format, with);
    receiver.sink(receiver.context, {row, about, arguments, site, sentence.c_str()});
  }
  return -1;
}

int call_failed(dd_site site, const tav_ebuf& ebuf) {
  return call_failed(site, ebuf, "list-failed");
}

int call_failed(dd_site site, const tav_ebuf& ebuf, finding failure) {
  return report(site, failure, {}, {.ebuf = &ebuf});
}

std::vector<std::string_view> path_of(const subject& about, size_t most) {
  std::vector<std::string_view> names;
  if (about.field != nullptr) names.emplace_back(about.field);
  for (const entry_path* upper = about.around; upper != nullptr; upper = upper->around) {
    if (names.size() == most) return {};
    names.emplace_back(upper->name);
  }
  std::reverse(names.begin(), names.end());
  return names;
}

static const char* hint(int32_t location) {
  switch (location) {
    case TAV_ERRLOC_DM:
      return finding("see-dm-log").row().text;
    case TAV_ERRLOC_CONNECTION:
    case TAV_ERRLOC_CM:
      return finding("see-cm-log").row().text;
    default:
      return finding("see-application-log").row().text;
  }
}

}  // namespace deploy

void tav_deploy_display_ebuf(const tav_ebuf* ebuf) {
  char text[2048];
  tav_snprintf(text, sizeof text, deploy::finding("error-buffer").row().text,
               tav_errloc_to_str(ebuf->location), ebuf->location,
               tav_errclass_to_str(ebuf->err_class), ebuf->err_class,
               tav_taverr_to_str(ebuf->err_code), ebuf->err_code, tav_name_of_field(ebuf->field),
               DD_FIELD_ID_TYPE(ebuf->field), DD_FIELD_ID_NUMBER(ebuf->field), ebuf->rec_id,
               ebuf->reserved);
  dd_print_error_text(text);
  dd_print_error_text(deploy::hint(ebuf->location));
}
