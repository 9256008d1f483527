#include "dict/diff/losses.h"

#include <cstdlib>

#include "lint/losses.h"

namespace dict {

static int32_t number_in(const std::string& text) {
  return static_cast<int32_t>(std::strtol(text.c_str(), nullptr, 10));
}

bool is_loss(const value_change& value) {
  return value.attribute == "LENGTH" && !value.is_kept &&
         lint::is_narrower(number_in(value.before), number_in(value.after));
}

bool is_loss(const difference& d) {
  return d.kind == change::MISSING && d.what == std::string_view("entry");
}

// `around` names the class, or the class and the entries around it.
static std::string subject_of(const difference& d, const std::string& around, int depth) {
  if (depth == 0) return std::string(d.what) + " " + d.name;
  return around + (depth == 1 ? ", entry " : "/") + d.name;
}

static void add_losses(const difference& d, const std::string& around, int depth,
                       std::vector<std::string>& losses) {
  const std::string subject = subject_of(d, around, depth);
  if (is_loss(d)) losses.push_back(subject);
  for (const value_change& value : d.values) {
    if (!is_loss(value)) continue;
    losses.push_back(subject + ", attribute " + std::string(value.attribute));
  }
  for (const difference& entry : d.entries) add_losses(entry, subject, depth + 1, losses);
}

std::vector<std::string> losses_of(const std::vector<difference>& found) {
  std::vector<std::string> losses;
  for (const difference& d : found) add_losses(d, "", 0, losses);
  return losses;
}

}  // namespace dict
