// The rules of lint's own, which look at one definition after another.
#ifndef LINT_RULES_OWN_H
#define LINT_RULES_OWN_H

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "lint/lint.h"
#include "lint/rules/pattern.h"

namespace lint {

enum class named : uint8_t { FIELD, CLASS, TABLE, COLUMN };

// What an administrator has configured.
struct own_options {
  int64_t first_number = 10'000;  // numbers below are left to predefined fields
  int64_t last_number = 16'777'215;
  std::vector<name_pattern> patterns[4]{};  // by `named`; a name fits one of them
  // Of each source the first one that is the same file. May be empty: each is another file.
  std::vector<uint32_t> same_file{};
  // The level of a rule, where it is not the normal one. May be empty.
  std::function<level(std::string_view rule)> level_of{};
  // Whether a dictionary's classes use the field. May be empty.
  std::function<bool(std::string_view field)> is_used_elsewhere{};
};

struct own_findings {
  std::vector<finding> told;
  uint64_t untold[4] = {};  // of each level: those behind the first `most`
};
own_findings check_own(const index& all, const own_options& options, size_t most = MOST_TOLD);

// --- For the files beside this one ---------------------------------------------------------------

struct own_run {
  const index& all;
  const own_options& options;
  size_t most;  // that are told
  own_findings& found;
  bool has_class;
  const lint::defined* defined = nullptr;  // whose rules are checked
  // Of each source: the bytes before that are UTF-8.
  std::vector<uint64_t> sound_up_to{};
};

// A node and what it stands in, from the definition down to it.
struct visit {
  const std::vector<node_place>& way;
  const node_place& at() const { return way.back(); }
};

void report(own_run& run, std::string_view rule, const span& where, std::string subject,
            std::string sentence, std::vector<related_place> related = {});
// "field NAME", "class NAME, entry NAME, attribute KEYWORD"
std::string subject_of(const index& all, const std::vector<node_place>& way);
// "Field NAME", "DESCR of entry NAME in class NAME": the same as the beginning of a sentence.
std::string thing_of(const index& all, const std::vector<node_place>& way);

inline syntax::node_kind kind_of(const index& all, const node_place& at) {  // of what it is to be
  return node_of(all, at).meant;
}
bool is_predefined(std::string_view field);
// Whether the source's file stands among those before it, too.
bool is_read_again(const own_options& options, uint32_t source);
// The value of an attribute that is a string or several, without quotes and as it is written; false
// where it is none.
bool read_text(const index& all, const node_place& attribute, std::string& text);

void check_bytes(own_run& run, uint32_t source);
void check_names_of_files(own_run& run, uint32_t source);

void check_name(own_run& run, const visit& visited);
void check_description(own_run& run, const visit& visited);
void check_field_number(own_run& run, const visit& visited);
void check_use(own_run& run, const visit& visited);
void check_files(own_run& run, const visit& visited);
void check_implementation(own_run& run, const visit& visited);

void check_text(own_run& run, const visit& visited);
void check_storage_names(own_run& run, const visit& visited);
void check_order(own_run& run, const visit& visited);

}  // namespace lint

#endif
