// What every target has: the entry point of the fuzzing engine, and a claim that must hold.
#ifndef TESTS_FUZZ_TARGET_H
#define TESTS_FUZZ_TARGET_H

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

inline void claim(bool holds, const char* what, const std::string& detail = "") {
  if (holds) return;
  std::fprintf(stderr, "It does not hold that %s.\n%s\n", what, detail.c_str());
  std::abort();
}

// Takes NAME=VALUE, or NAME[...]{} of an array, out of a list's text wherever it stands; with a
// value, where it has that one.
inline void lose(std::string& text, const std::string& name, const std::string& value = "") {
  for (size_t at = 0; (at = text.find(name, at)) != text.npos;) {
    const size_t start = at;
    const char next = text[at += name.size()];
    if (start > 0 && text[start - 1] != ' ' && text[start - 1] != '{') continue;
    if (next != '=' && next != '[') continue;
    const bool quoted = text[at + 1] == '"';
    const size_t end = next == '[' ? text.find('}', at) + 1
                       : quoted    ? text.find('"', at + 2) + 1
                                   : std::min(text.find_first_of(" }\n", at), text.size());
    if (!value.empty() && text.substr(at + 1, end - at - 1) != value) continue;
    at = start > 0 && text[start - 1] == ' ' ? start - 1 : start;
    text.erase(at, end - at + (at == start && text[end] == ' '));
  }
}

#endif
