// tav-lint.ini: what an administrator wants of lint.
#ifndef DICT_LINT_CONFIG_H
#define DICT_LINT_CONFIG_H

#include <string>
#include <vector>

#include "dm/problem.h"
#include "lint/rule.h"
#include "lint/rules/own.h"

namespace dict {

inline constexpr char LINT_CONFIG[] = "tav-lint.ini";

struct lint_config {
  std::string path{};                 // empty where there is none
  std::vector<lint::level> levels{};  // by the rules' places in lint::RULES
  std::vector<std::string> exclude{};
  lint::own_options own{};
};

// Reads the file of that name; without a name, the one that stands in the working folder or the
// nearest folder above it, if any. False with the reason.
bool read_config(const std::string& name, lint_config& config, dm::problem& why);

lint::level level_of(const lint_config& config, std::string_view rule);

// Whether a file that was found in a folder is left out.
bool is_excluded(const lint_config& config, const std::string& file);

}  // namespace dict

#endif
