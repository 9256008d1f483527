#include "dict/lint/config.h"

#include <fnmatch.h>

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <sstream>

#include "dict/files.h"
#include "dict/lint/forms.h"
#include "lint/rules.h"
#include "syntax/scan.h"
#include "vantor/conf/conf_file.h"

namespace dict {

namespace fs = std::filesystem;

// --- Values --------------------------------------------------------------------------------------

// These give what the value must be, or null where it is that.
using reader = const char* (*)(const vantor::conf_entry& entry, lint_config& config);

static std::vector<std::string> words_of(const std::string& text) {
  std::istringstream in(text);
  std::vector<std::string> words;
  for (std::string word; in >> word;) words.push_back(word);
  return words;
}

static const char* read_exclude(const vantor::conf_entry& entry, lint_config& config) {
  config.exclude = words_of(entry.value);
  return config.exclude.empty() ? "patterns of file names" : nullptr;
}

static bool read_number(std::string_view text, int64_t& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size() && number > 0;
}

static const char* read_range(const vantor::conf_entry& entry, lint_config& config) {
  const std::string_view text = entry.value;
  const size_t dash = text.find('-');
  const bool is_read = dash != text.npos &&
                       read_number(text.substr(0, dash), config.own.first_number) &&
                       read_number(text.substr(dash + 1), config.own.last_number) &&
                       config.own.first_number <= config.own.last_number;
  return is_read ? nullptr : "two numbers, as in 20000-29999";
}

template <lint::named KIND>
static const char* read_patterns(const vantor::conf_entry& entry, lint_config& config) {
  auto& patterns = config.own.patterns[static_cast<size_t>(KIND)];
  bool is_read = true;
  for (const std::string& word : words_of(entry.value))
    is_read = lint::read_pattern(word, patterns.emplace_back()) && is_read;
  return is_read && !patterns.empty() ? nullptr
                                      : "extended regular expressions, as docs/lint.md tells them";
}

static const char* read_level(const vantor::conf_entry& entry, lint_config& config) {
  const auto place = std::ranges::find(lint::RULES, entry.name, &lint::rule::id);
  auto& level = config.levels[static_cast<size_t>(place - lint::RULES.begin())];
  return level_of(entry.value, level) ? nullptr : "error, warning, note or off";
}

// --- Entries -------------------------------------------------------------------------------------

namespace {

struct entry_row {
  std::string_view section, name;  // "": the id of a rule
  reader read;
};

constexpr entry_row ENTRIES[] = {
    {"levels", "", read_level},
    {"files", "exclude", read_exclude},
    {"numbers", "fields", read_range},
    {"names", "fields", read_patterns<lint::named::FIELD>},
    {"names", "classes", read_patterns<lint::named::CLASS>},
    {"names", "tables", read_patterns<lint::named::TABLE>},
    {"names", "columns", read_patterns<lint::named::COLUMN>},
};

}  // namespace

static bool refuse(const lint_config& config, const vantor::conf_entry& entry,
                   std::string_view fault, dm::problem& why) {
  why.sentence =
      dm::join({config.path, ":", std::to_string(entry.line), ": \"", entry.name, fault, "."});
  return false;
}

static bool take(const vantor::conf_entry& entry, lint_config& config, dm::problem& why) {
  const auto fits = [&entry](const entry_row& row) {
    const bool is_rule = row.name.empty() && lint::find_rule(entry.name) != nullptr;
    return row.section == entry.section && (is_rule || row.name == entry.name);
  };
  const auto* row = std::find_if(std::begin(ENTRIES), std::end(ENTRIES), fits);
  if (row == std::end(ENTRIES)) {
    return refuse(config, entry,
                  entry.section == "levels"
                      ? "\" is no rule; 'tav_dict lint --list-rules' lists them"
                      : "\" is no entry of this section; tav_dict(1) lists them",
                  why);
  }
  const char* wanted = row->read(entry, config);
  return wanted == nullptr || refuse(config, entry, dm::join({"\" must be ", wanted}), why);
}

static bool has_section(std::string_view name) {
  return std::ranges::find(ENTRIES, name, &entry_row::section) != std::end(ENTRIES);
}

// inih tells nothing of a section without entries.
static bool check_sections(std::string_view text, const std::string& path, dm::problem& why) {
  for (uint64_t number = 1; !text.empty(); ++number) {
    std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    if (number == 1) line.remove_prefix(syntax::mark_size(line));
    line.remove_prefix(std::min(line.find_first_not_of(" \t\r\v\f"), line.size()));
    const std::string_view name = line.substr(0, line.find(']'));
    if (!name.starts_with('[') || has_section(name.substr(1))) continue;
    why.sentence = dm::join({path, ":", std::to_string(number), ": ", name,
                             "] is no section; tav_dict(1) lists them."});
    return false;
  }
  return true;
}

// --- Files ---------------------------------------------------------------------------------------

static std::string nearest() {
  std::error_code error;
  fs::path folder = fs::current_path(error);
  for (std::string path = LINT_CONFIG; !error; path.insert(0, "../")) {
    const fs::file_type type = fs::status(path, error).type();
    const bool leads_nowhere = type == fs::file_type::not_found && fs::is_symlink(path, error);
    if (type == fs::file_type::regular || leads_nowhere) return path;
    if (folder == folder.parent_path()) break;
    folder = folder.parent_path();
    error.clear();
  }
  return "";
}

bool read_config(const std::string& name, lint_config& config, dm::problem& why) {
  for (const lint::rule& rule : lint::RULES) config.levels.push_back(rule.normal);
  config.path = name.empty() ? nearest() : name;
  if (config.path.empty()) return true;
  file_content content;
  if (!read_file(config.path, config.path, content, why)) return false;
  vantor::conf_file parsed;
  parsed.path = config.path;
  vantor::parse_conf(content.text, parsed);
  why.sentence = parsed.problem;
  const auto take_one = [&](const vantor::conf_entry& entry) { return take(entry, config, why); };
  return parsed.error == 0 && check_sections(content.text, config.path, why) &&
         std::ranges::all_of(parsed.entries, take_one);
}

lint::level level_of(const lint_config& config, std::string_view rule) {
  const auto place = std::ranges::find(lint::RULES, rule, &lint::rule::id);
  return config.levels[static_cast<size_t>(place - lint::RULES.begin())];
}

bool is_excluded(const lint_config& config, const std::string& file) {
  std::error_code error;
  const fs::path home = fs::absolute(config.path, error).lexically_normal().parent_path();
  const std::string path = fs::absolute(file, error).lexically_normal().lexically_relative(home);
  return std::ranges::any_of(config.exclude, [&path](const std::string& pattern) {
    return ::fnmatch(pattern.c_str(), path.c_str(), FNM_LEADING_DIR) == 0;
  });
}

}  // namespace dict
