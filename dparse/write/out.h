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

namespace dparse {

struct output {
  explicit output(FILE* to) : stream(to) {}
  output(const output&) = delete;
  output& operator=(const output&) = delete;
  ~output();  // flushes

  FILE* stream;                   // null: the text is only gathered, for gathered_text
  std::unique_ptr<char[]> bytes;  // the buffer; null until something is put
  char* next = nullptr;           // where the next byte goes
  char* end = nullptr;            // of the buffer
};

// What is in the buffer; valid until more is put.
inline std::string_view gathered_text(const output& out) {
  return {out.bytes.get(), static_cast<size_t>(out.next - out.bytes.get())};
}
// Writes the buffer to the stream and empties it.
void flush(output& out);

// Makes room for `size` bytes at `next`, by writing to the stream or by a larger buffer.
void make_room(output& out, size_t size);
// The same where there is no room yet; gives `next`. The caller writes there and advances `next`.
inline char* room_for(output& out, size_t size) {
  if (static_cast<size_t>(out.end - out.next) < size) make_room(out, size);
  return out.next;
}

inline void put(output& out, std::string_view text) {
  char* at = room_for(out, text.size());
  out.next = at + text.copy(at, text.size());
}
void put_tabs(output& out, int count);
void put_number(output& out, int32_t number);
void put_banner(output& out, int width, int indent, const char* text1, const char* text2);
// "text", with tabs and newlines as \t and \n.
void put_quoted(output& out, const char* text);
// A line "KEYWORD = value;": begin_line puts "KEYWORD = ", the caller the value, end_line ";".
void begin_line(output& out, int keyword, int indent);
inline void end_line(output& out) {
  put(out, ";\n");
}

// --- Failing: each prints to standard error, logs, and gives -1 ----------------------------------
// Prints a text that begins with "Error: ", and logs what follows that.
int export_fail(output& out, dd_site site, const char* text);
// Prints `text` and logs `record`.
int export_fail_as(output& out, dd_site site, const char* text, const char* record);
// A client-library call failed.
int export_list_failed(output& out, dd_site site, const tav_ebuf& ebuf);
// A call got no error buffer.
int export_no_buffer();

}  // namespace dparse

#endif
