// The text on its way to the stream, and the pieces it is made of.
//
// Text is gathered and handed over in large pieces. Before anything is said on standard error it is
// handed over, so that both keep their order where they end in one place.
#ifndef DPARSE_DPARSE_EXPORT_OUT_H
#define DPARSE_DPARSE_EXPORT_OUT_H

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

#include "dd/call.h"

struct dparse_out {
  FILE* stream;  // null: nothing is handed over
  std::string text;
};

// Hands over what was gathered.
void dparse_flush(dparse_out& out);
// The same, once there is much of it.
void dparse_flush_large(dparse_out& out);

void dparse_put_tabs(dparse_out& out, int count);
void dparse_put_number(dparse_out& out, int32_t number);
// The text with tabs and newlines as two characters each.
void dparse_put_escaped(dparse_out& out, const char* text);
void dparse_put_banner(dparse_out& out, int width, int indent, const char* text1,
                       const char* text2);
// keyword = "value";  Nothing for a value that is null or empty.
void dparse_put_quoted(dparse_out& out, std::string_view keyword, const char* value, int indent);
// keyword = value;  Value and end are two calls.
void dparse_put_bare(dparse_out& out, std::string_view keyword, int indent);
void dparse_end_bare(dparse_out& out);

// --- Failing: each prints to standard error, logs, and gives -1 ----------------------------------
// Prints a text that begins with "Error: ", and logs what follows that.
int dparse_export_fail(dparse_out& out, dd_site site, const char* text);
// Prints the one, logs the other.
int dparse_export_fail_as(dparse_out& out, dd_site site, const char* text, const char* record);
// A client-library call failed.
int dparse_export_list_failed(dparse_out& out, dd_site site, const tav_ebuf& ebuf);
// A call got no error buffer.
int dparse_export_no_buffer(dparse_out& out);

#endif
