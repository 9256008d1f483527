#include "vantor/log/log_text.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <ctime>

#include "dd/visible.h"
#include "vantor/log/list_text.h"

namespace vantor {

namespace {

// Appends one word of the first line, with blanks and characters that are not shown as '_'.
void append_word(std::string& out, const char* word) {
  if (word == nullptr || *word == '\0') word = "-";
  const size_t start = out.size();
  for (std::string_view rest = word; !rest.empty();) {
    const dd_visible_piece piece = dd_take_visible(rest);
    out += piece.plain;
    if (piece.code[0] != '\0') out += '_';
  }
  std::replace(out.begin() + static_cast<std::ptrdiff_t>(start), out.end(), ' ', '_');
}

void append_host(std::string& out) {
  char host[256] = "";
  gethostname(host, sizeof host - 1);
  append_word(out, host);
}

// Messages may have several lines and tabs, which are kept; further lines are indented. All other
// control characters are made visible: messages contain names and descriptions.
void append_message(std::string& out, const char* message) {
  std::string_view rest = message != nullptr ? message : "";
  rest = rest.substr(0, rest.find_last_not_of('\n') + 1);
  while (!rest.empty()) {
    const dd_visible_piece piece = dd_take_visible(rest);
    out += piece.plain;
    const std::string_view code = piece.code;
    if (code == "\\n") {
      out += '\n';
      out.append(2 * INDENT, ' ');
    } else {
      out += code == "\\t" ? "\t" : code;
    }
  }
  out += '\n';
}

void append_format(std::string& out, const char* format, ...) TAV_PRINTF(2, 3);
void append_format(std::string& out, const char* format, ...) {
  char text[256];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  out += text;
}

void append_code_member(std::string& out, const char* name, int32_t code, const char* meaning) {
  append_format(out, "%*s%s = %d %s\n", static_cast<int>(INDENT), "", name, code, meaning);
}

void append_member(std::string& out, const char* name, int32_t value) {
  append_format(out, "%*s%s = %d\n", static_cast<int>(INDENT), "", name, value);
}

}  // namespace

void append_time(std::string& out, std::chrono::milliseconds since_1970) {
  const auto whole = std::chrono::floor<std::chrono::seconds>(since_1970);
  const auto seconds = static_cast<std::time_t>(whole.count());
  std::tm utc{};
  gmtime_r(&seconds, &utc);
  char text[32];
  const size_t length = std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &utc);
  std::snprintf(text + length, sizeof text - length, ".%03dZ",
                static_cast<int>((since_1970 - whole).count()));
  out += text;
}

void append_escaped(std::string& out, const char* text) {
  for (std::string_view rest = text; !rest.empty();) {
    const dd_visible_piece piece = dd_take_visible(rest);
    for (const char c : piece.plain) out.append(c == '\\' ? 2 : 1, c);
    out += piece.code;
  }
}

void append_head(std::string& out, int32_t level, const char* message, const char* source,
                 int32_t line) {
  append_time(out, std::chrono::duration_cast<std::chrono::milliseconds>(
                       std::chrono::system_clock::now().time_since_epoch()));
  out += ' ';
  append_host(out);
  out += ' ';
  append_word(out, program_invocation_short_name);
  append_format(out, "[%d] %d ", static_cast<int>(getpid()), level);
  append_word(out, source);
  append_format(out, ":%d ", line);
  append_message(out, message);
}

void append_ebuf(std::string& out, const tav_ebuf& ebuf) {
  append_code_member(out, "location", ebuf.location, tav_errloc_to_str(ebuf.location));
  append_code_member(out, "class", ebuf.err_class, tav_errclass_to_str(ebuf.err_class));
  append_code_member(out, "errno", ebuf.err_code, tav_taverr_to_str(ebuf.err_code));
  append_format(out, "%*sfield = %d,%d %s\n", static_cast<int>(INDENT), "",
                DD_FIELD_ID_TYPE(ebuf.field), DD_FIELD_ID_NUMBER(ebuf.field),
                ebuf.field != 0 ? tav_name_of_field(ebuf.field) : "none");
  append_member(out, "rec_id", ebuf.rec_id);
  append_member(out, "reserved", ebuf.reserved);
  append_member(out, "line_no", ebuf.line_no);
  out.append(INDENT, ' ');
  out += "filename = ";
  append_escaped(out, ebuf.filename != nullptr ? ebuf.filename : "");
  out += '\n';
}

}  // namespace vantor
