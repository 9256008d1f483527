#include "tests/tool/sources.h"

#include "tests/tool/workshop.h"

namespace fs = std::filesystem;

std::vector<std::string> matches_in(const std::string& text, const std::regex& pattern) {
  return {std::sregex_token_iterator(text.begin(), text.end(), pattern), {}};
}

static std::string plain(const std::string& text) {
  static const std::regex newline("\\\\n"), quote("\\\\\"");
  return std::regex_replace(std::regex_replace(text, newline, "\n"), quote, "\"");
}

static void add_texts(const std::string& source, std::vector<source_text>& texts) {
  static const std::regex noise(R"re(#include[^\n]*|(^|\s)//[^\n]*|'"'|R"\([^]*?\)")re");
  static const std::regex joined("([^\\\\])\"\\s*\\n\\s*\"");
  static const std::regex token("\"((?:[^\"\\\\\\n]|\\\\.)*)\"|;");
  const std::string code = std::regex_replace(std::regex_replace(source, noise, ""), joined, "$1");
  size_t first = texts.size();  // of the statement
  std::string statement;
  for (std::sregex_iterator it(code.begin(), code.end(), token), end; it != end; ++it) {
    statement += it->prefix();
    if (it->str() != ";") {
      texts.push_back({plain((*it)[1]), ""});
      continue;
    }
    for (; first < texts.size(); ++first) texts[first].statement = statement;
    statement.clear();
  }
}

std::vector<source_text> texts_in(const std::string& folder, const std::string& file_name) {
  std::vector<source_text> texts;
  for (const auto& entry : fs::recursive_directory_iterator(fs::path(TAV_ROOT) / folder)) {
    const bool is_source = entry.path().extension() == ".cpp" || entry.path().extension() == ".h";
    const std::string name = entry.path().filename().string();
    if (is_source && name.rfind(file_name, 0) == 0) add_texts(slurp(entry.path()), texts);
  }
  return texts;
}
