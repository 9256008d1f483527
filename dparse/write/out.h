// An output buffer before a stream, and the pieces of text that definitions are made of.
//
// Each call that prints to standard error flushes first, so that output and messages keep their
// order where both go to the same file or terminal.
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
  ~dparse_out();  // flushes

  FILE* stream;                   // null: the text is only gathered, for dparse_gathered
  std::unique_ptr<char[]> bytes;  // the buffer; null until something is put
  char* next = nullptr;           // where the next byte goes
  char* end = nullptr;            // of the buffer
};

// What is in the buffer; valid until more is put.
inline std::string_view dparse_gathered(const dparse_out& out) {
  return {out.bytes.get(), static_cast<size_t>(out.next - out.bytes.get())};
}
// Writes the buffer to the stream and empties it.
void dparse_flush(dparse_out& out);

// Makes room for `size` bytes at `next`, by writing to the stream or by a larger buffer.
void dparse_make_room(dparse_out& out, size_t size);
// The same where there is no room yet; gives `next`. The caller writes there and advances `next`.
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
// "text", with tabs and newlines as \t and \n.
void dparse_put_quoted(dparse_out& out, const char* text);
// A line "KEYWORD = value;": begin_line puts "KEYWORD = ", the caller the value, end_line ";".
void dparse_begin_line(dparse_out& out, int keyword, int indent);
inline void dparse_end_line(dparse_out& out) {
  dparse_put(out, ";\n");
}

// --- Failing: each prints to standard error, logs, and gives -1 ----------------------------------
// Prints a text that begins with "Error: ", and logs what follows that.
int dparse_export_fail(dparse_out& out, dd_site site, const char* text);
// Prints `text` and logs `record`.
int dparse_export_fail_as(dparse_out& out, dd_site site, const char* text, const char* record);
// A client-library call failed.
int dparse_export_list_failed(dparse_out& out, dd_site site, const tav_ebuf& ebuf);
// A call got no error buffer.
int dparse_export_no_buffer();

#endif
