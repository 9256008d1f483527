// The text on its way to the stream, and the pieces it is made of.
//
// Text is gathered and handed over in large pieces. Before anything is said on standard error it is
// handed over, so that both keep their order where they end in one place.
#ifndef DPARSE_WRITE_OUT_H
#define DPARSE_WRITE_OUT_H

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string_view>

#include "dd/call.h"

struct dparse_out {
  explicit dparse_out(FILE* to) : stream(to) {}
  dparse_out(const dparse_out&) = delete;
  dparse_out& operator=(const dparse_out&) = delete;
  ~dparse_out();  // hands over what is left

  FILE* stream;                   // null: nothing is handed over
  std::unique_ptr<char[]> bytes;  // none until something is put
  char* next = nullptr;           // where the next byte goes
  char* end = nullptr;
};

// What was gathered and not handed over yet; valid until more is put.
inline std::string_view dparse_gathered(const dparse_out& out) {
  return {out.bytes.get(), static_cast<size_t>(out.next - out.bytes.get())};
}
// Hands over what was gathered.
void dparse_flush(dparse_out& out);

// Makes room for that many bytes behind what was gathered.
void dparse_make_room(dparse_out& out, size_t size);
// Gives that room; who fills it moves `next`.
inline char* dparse_room(dparse_out& out, size_t size) {
  if (static_cast<size_t>(out.end - out.next) < size) dparse_make_room(out, size);
  return out.next;
}

inline void dparse_put(dparse_out& out, std::string_view text) {
  char* at = dparse_room(out, text.size());
  out.next = at + text.copy(at, text.size());
}
void dparse_put_tabs(dparse_out& out, int count);
void dparse_put_number(dparse_out& out, int32_t number);
void dparse_put_banner(dparse_out& out, int width, int indent, const char* text1,
                       const char* text2);
// A line "KEYWORD = value;" in two calls, with what the value is made of between them.
void dparse_begin_line(dparse_out& out, int keyword, int indent);
inline void dparse_end_line(dparse_out& out) {
  dparse_put(out, ";\n");
}
// KEYWORD = "value";  Nothing for a value that is null or empty.
void dparse_put_quoted(dparse_out& out, int keyword, const char* value, int indent);

// --- Failing: each prints to standard error, logs, and gives -1 ----------------------------------
// Prints a text that begins with "Error: ", and logs what follows that.
int dparse_export_fail(dparse_out& out, dd_site site, const char* text);
// Prints the one, logs the other.
int dparse_export_fail_as(dparse_out& out, dd_site site, const char* text, const char* record);
// A client-library call failed.
int dparse_export_list_failed(dparse_out& out, dd_site site, const tav_ebuf& ebuf);
// A call got no error buffer.
int dparse_export_no_buffer();

#endif
