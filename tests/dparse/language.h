// Text in, text out: streams from texts, lists as texts, and what was logged.
#ifndef TESTS_DPARSE_LANGUAGE_H
#define TESTS_DPARSE_LANGUAGE_H

#include <cstdio>
#include <memory>
#include <string>

#include "dd/list.h"

struct close_file {
  void operator()(FILE* file) const { std::fclose(file); }
};
using file = std::unique_ptr<FILE, close_file>;

// A stream of that text, which stays the caller's; buffered, or character by character.
file stream_of(const std::string& text, bool buffered = true);

// NAME="/a" OBJ_ELEM[0]{...}: values in the order of their numbers, names without their prefix.
std::string text_of(tav_flist_t* list);

// The messages logged since the last call, joined by " | ".
std::string take_log();

// The three lists of a reader.
struct lists {
  dd_list fields{DD_FIELDS, dd_flist(tav_flist_create(nullptr))};
  dd_list classes{DD_CLASSES, dd_flist(tav_flist_create(nullptr))};
  dd_list impls{DD_CLASSES, dd_flist(tav_flist_create(nullptr))};

  int read(const std::string& text, const char* filter = nullptr);
  std::string text() const;
};

// "LINE: MESSAGE" of the reader's error state.
std::string reader_error();

#endif
