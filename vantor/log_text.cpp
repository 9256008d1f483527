#include "vantor/log_text.h"

#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <ctime>

#include "vantor/list_text.h"

namespace vantor {

namespace {

bool is_control(char c) {
  return static_cast<unsigned char>(c) < 0x20 || c == 0x7f;
}

void append_code(std::string& out, char c) {
  char code[8];
  std::snprintf(code, sizeof code, "\\x%02x", static_cast<unsigned>(static_cast<unsigned char>(c)));
  out += code;
}

// UTC, with milliseconds.
void append_time(std::string& out) {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
  const auto seconds = static_cast<std::time_t>(ms / 1000);
  std::tm utc{};
  gmtime_r(&seconds, &utc);
  char text[32];
  const size_t length = std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &utc);
  std::snprintf(text + length, sizeof text - length, ".%03dZ", static_cast<int>(ms % 1000));
  out += text;
}

// Appends one word of the first line: nothing in it ends the word.
void append_word(std::string& out, const char* word) {
  if (word == nullptr || *word == '\0') word = "-";
  for (; *word != '\0'; ++word) out += is_control(*word) || *word == ' ' ? '_' : *word;
}

void append_host(std::string& out) {
  char host[256] = "";
  gethostname(host, sizeof host - 1);
  append_word(out, host);
}

void append_message(std::string& out, const char* message) {
  size_t length = message != nullptr ? std::strlen(message) : 0;
  while (length > 0 && message[length - 1] == '\n') --length;
  for (size_t i = 0; i < length; ++i) {
    if (message[i] == '\n') {
      out += '\n';
      out.append(2 * INDENT, ' ');
    } else if (is_control(message[i]) && message[i] != '\t') {
      append_code(out, message[i]);
    } else {
      out += message[i];
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

void append_escaped(std::string& out, const char* text) {
  for (; *text != '\0'; ++text) {
    if (*text == '\n') {
      out += "\\n";
    } else if (*text == '\t') {
      out += "\\t";
    } else if (*text == '\\') {
      out += "\\\\";
    } else if (is_control(*text)) {
      append_code(out, *text);
    } else {
      out += *text;
    }
  }
}

void append_head(std::string& out, int32_t level, const char* message, const char* source,
                 int32_t line) {
  append_time(out);
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
