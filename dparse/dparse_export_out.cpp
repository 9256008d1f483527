#include "dparse/dparse_export_out.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cstring>

#include "dd/report.h"
#include "dparse/dparse_export.h"
#include "dparse/dparse_state.h"

static constexpr size_t LARGE = 1 << 15;

void dparse_flush(dparse_out& out) {
  if (out.stream != nullptr) std::fwrite(out.text.data(), 1, out.text.size(), out.stream);
  out.text.clear();
}

void dparse_flush_large(dparse_out& out) {
  if (out.text.size() >= LARGE) dparse_flush(out);
}

static void put_repeated(dparse_out& out, char c, int count) {
  if (count > 0) out.text.append(static_cast<size_t>(count), c);
}

void dparse_put_tabs(dparse_out& out, int count) {
  put_repeated(out, '\t', count);
}

void dparse_put_number(dparse_out& out, int32_t number) {
  char digits[16];
  const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
  out.text.append(digits, end);
}

static void append_escaped(std::string& text, std::string_view value) {
  for (;;) {
    const size_t plain = std::min(value.find('\t'), value.find('\n'));
    text.append(value.substr(0, plain));
    if (plain == value.npos) return;
    text.append(value[plain] == '\t' ? "\\t" : "\\n");
    value.remove_prefix(plain + 1);
  }
}

void dparse_put_escaped(dparse_out& out, const char* text) {
  append_escaped(out.text, text);
}

int dparseEncodeTabsNewlines(char** text) {
  if (text == nullptr || *text == nullptr) return -1;
  std::string escaped;
  append_escaped(escaped, *text);
  char* grown = static_cast<char*>(std::realloc(*text, escaped.size() + 10));
  if (grown == nullptr) return -1;
  std::memcpy(grown, escaped.c_str(), escaped.size() + 1);
  *text = grown;
  return 1;
}

static void put_rule(dparse_out& out, int width, int indent) {
  dparse_put_tabs(out, indent);
  out.text += '#';
  put_repeated(out, '=', width - 1);
  out.text += '\n';
}

// The blank before an absent second text is part of the format.
void dparse_put_banner(dparse_out& out, int width, int indent, const char* text1,
                       const char* text2) {
  put_rule(out, width, indent);
  dparse_put_tabs(out, indent);
  out.text.append("#  ").append(text1 != nullptr ? text1 : "").append(" ");
  out.text.append(text2 != nullptr ? text2 : "").append("\n");
  put_rule(out, width, indent);
}

void dparse_put_bare(dparse_out& out, std::string_view keyword, int indent) {
  dparse_put_tabs(out, indent);
  out.text.append(keyword).append(" = ");
}

void dparse_end_bare(dparse_out& out) {
  out.text.append(";\n");
}

void dparse_put_quoted(dparse_out& out, std::string_view keyword, const char* value, int indent) {
  if (value == nullptr || value[0] == '\0') return;
  dparse_put_bare(out, keyword, indent);
  out.text += '"';
  dparse_put_escaped(out, value);
  out.text += '"';
  dparse_end_bare(out);
}

int dparseExportComment(FILE* stream, int width, int indent, const char* text1, const char* text2) {
  dparse_out out{stream, {}};
  dparse_put_banner(out, width, indent, text1, text2);
  dparse_flush(out);
  return 1;
}

int dparseExportString(FILE* stream, const char* keyword, const char* value, int indent) {
  dparse_out out{stream, {}};
  dparse_put_quoted(out, keyword != nullptr ? keyword : "", value, indent);
  dparse_flush(out);
  return 1;
}

int dparse_export_fail_as(dparse_out& out, dd_site site, const char* text, const char* record) {
  dparse_flush(out);
  dd_print_error("%s", text);
  dd_log(site, record);
  return -1;
}

int dparse_export_fail(dparse_out& out, dd_site site, const char* text) {
  return dparse_export_fail_as(out, site, text, text + std::strlen("Error: "));
}

int dparse_export_list_failed(dparse_out& out, dd_site site, const tav_ebuf& ebuf) {
  dparse_flush(out);
  dd_print_error("%s", DPARSE_INTERNAL_ERROR);
  dd_log(site, "flist error", ebuf);
  return -1;
}

int dparse_export_no_buffer(dparse_out& out) {
  dparse_flush(out);
  dd_print_error("\n*** Error buffer not initialized ***\n");
  return -1;
}
