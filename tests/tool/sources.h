// The texts in the project's sources.
#ifndef TESTS_TOOL_SOURCES_H
#define TESTS_TOOL_SOURCES_H

#include <filesystem>
#include <regex>
#include <string>
#include <vector>

std::vector<std::string> matches_in(const std::string& text, const std::regex& pattern);

// A string literal, with \n and \" made real, and the code of the statement it stands in.
struct source_text {
  std::string text;
  std::string statement;
};

// Those of a folder's files whose names begin so; raw strings are left out.
std::vector<source_text> texts_in(const std::string& folder, const std::string& file_name = "");

#endif
