#include "lint/rules/pattern.h"

#include <algorithm>

namespace lint {

// The compiled form may take the square of it.
static constexpr size_t LARGEST = 1000;

static bool is_digit(char c) {
  return c >= '0' && c <= '9';
}

static bool is_letter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

// The larger number of "{2,30}".
static size_t count_at(std::string_view text, size_t open) {
  size_t most = 1, number = 0;
  for (size_t at = open + 1; at < text.size() && text[at] != '}'; ++at) {
    number = is_digit(text[at]) ? number * 10 + static_cast<size_t>(text[at] - '0') : 0;
    number = std::min(number, LARGEST + 1);
    most = std::max(most, number);
  }
  return most;
}

// At least as many signs as the pattern has when its counted repetitions are written out. One of a
// group counts as one of everything.
static size_t size_written_out(std::string_view text) {
  static constexpr std::string_view BEHIND_MUCH = ")}*+?";
  size_t signs = text.size(), factor = 1;
  for (size_t at = 1; at < text.size() && signs <= LARGEST && factor <= LARGEST; ++at) {
    if (text[at] != '{') continue;
    const size_t count = count_at(text, at);
    if (BEHIND_MUCH.find(text[at - 1]) == BEHIND_MUCH.npos) {
      signs += count;
    } else {
      factor *= count;
    }
  }
  return signs * factor;
}

static bool has_other_dialect(std::string_view text) {
  for (size_t at = text.find('\\'); at < text.size() - 1 && at != text.npos;
       at = text.find('\\', at + 2)) {
    if (is_letter(text[at + 1]) || is_digit(text[at + 1])) return true;
  }
  return false;
}

static std::shared_ptr<regex_t> compile(const std::string& text) {
  auto made = std::make_unique<regex_t>();
  if (::regcomp(made.get(), text.c_str(), REG_EXTENDED | REG_NOSUB) != 0) return nullptr;
  const auto release = [](regex_t* one) {
    ::regfree(one);
    delete one;
  };
  return {made.release(), release};
}

bool read_pattern(const std::string& text, name_pattern& pattern) {
  if (size_written_out(text) > LARGEST || has_other_dialect(text)) return false;
  if (compile(text) == nullptr) return false;
  pattern.text = text;
  pattern.compiled = compile("^(" + text + ")$");
  return pattern.compiled != nullptr;
}

bool fits(const name_pattern& pattern, std::string_view name) {
  regmatch_t part{0, static_cast<regoff_t>(name.size())};
  return ::regexec(pattern.compiled.get(), name.data(), 1, &part, REG_STARTEND) == 0;
}

}  // namespace lint
