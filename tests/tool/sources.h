// The texts in the project's sources.
#ifndef TESTS_TOOL_SOURCES_H
#define TESTS_TOOL_SOURCES_H

#include <filesystem>
#include <string>
#include <vector>

std::string slurp_source(const std::filesystem::path& path);

// A string literal, with \n, \t and \" made real, and the code of the statement it stands in.
struct source_text {
  std::string text;
  std::string statement;
};

// Those of a folder's .h and .cpp files whose names begin so; raw strings are left out.
std::vector<source_text> texts_in(const std::string& folder, const std::string& file_name = "");

#endif
