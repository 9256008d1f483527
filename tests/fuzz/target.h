// What every target has: the entry point of the fuzzing engine, and a claim that must hold.
#ifndef TESTS_FUZZ_TARGET_H
#define TESTS_FUZZ_TARGET_H

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

#endif
