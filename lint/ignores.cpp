#include "lint/ignores.h"

#include <algorithm>
#include <tuple>

#include "lint/gaps.h"
#include "lint/rules.h"
#include "syntax/scan.h"

namespace lint {

static constexpr std::string_view MARK = "tav-lint:";
static constexpr std::string_view IGNORE = "ignore=";
static constexpr char BLANKS[] = " \t\r";
static constexpr size_t MOST_IDS = 100;     // of a comment
static constexpr auto MOST_COMMENTS = 100;  // below each other, on lines of their own

namespace {

struct comment {
  uint64_t start, end;  // from "#" on; the line end is not part of it
};

}  // namespace

// The comment in which the byte stands; of no length where it stands in none. `reached` is a place
// between two pieces of a gap, at most the byte, from which the same gap need not be gone through
// again.
static comment comment_at(const syntax::tree& tree, uint64_t byte, uint64_t& reached) {
  const uint64_t gap = gap_before(tree, byte);
  if (gap == std::string::npos) return {byte, byte};
  for (reached = std::max(reached, gap); reached <= byte;) {
    const syntax::gap_piece piece = syntax::next_in_gap(tree.text, reached);
    if (piece.kind == syntax::gap_kind::NONE) break;
    if (piece.end > byte) {
      const bool is_comment = piece.kind == syntax::gap_kind::COMMENT;
      return is_comment ? comment{reached, piece.end} : comment{byte, byte};
    }
    reached = piece.end;
  }
  return {byte, byte};
}

static std::string_view trimmed(std::string_view text) {
  const size_t first = std::min(text.find_first_not_of(BLANKS), text.size());
  return text.substr(first, text.find_last_not_of(BLANKS) + 1 - first);
}

static uint64_t line_start(std::string_view text, uint64_t byte) {
  return byte == 0 ? 0 : text.rfind('\n', byte - 1) + 1;  // npos + 1 is 0
}

static uint64_t line_end(std::string_view text, uint64_t byte) {
  return std::min(text.find('\n', byte), text.size());
}

static bool is_only_comment(std::string_view line) {
  return trimmed(line).starts_with('#');
}

// The bytes that the comment is about: its line, and what follows where it stands alone.
static void set_range(std::string_view text, const comment& comment, ignore& row) {
  row.first = line_start(text, comment.start);
  row.last = line_end(text, comment.start);
  const uint64_t start = row.first == 0 ? syntax::mark_size(text) : row.first;
  bool goes_on = is_only_comment(text.substr(start, row.last - start));
  for (int i = 0; i < MOST_COMMENTS && goes_on && row.last < text.size(); ++i) {
    const uint64_t next = row.last + 1;
    row.last = line_end(text, next);
    goes_on = is_only_comment(text.substr(next, row.last - next));
  }
}

static size_t blanks_at(std::string_view text) {
  return std::min(text.find_first_not_of(BLANKS), text.size());
}

// Takes "ID,ID", in which blanks may stand around a comma; false where an id is missing, or there
// are too many.
static bool take_ids(std::string_view& text, std::vector<std::string_view>& ids) {
  for (bool goes_on = true; goes_on;) {
    text.remove_prefix(ids.empty() ? 0 : blanks_at(text));
    const std::string_view id = text.substr(0, text.find_first_of(", \t\r"));
    if (id.empty() || ids.size() == MOST_IDS) return false;
    ids.push_back(id);
    text.remove_prefix(id.size());
    const std::string_view behind = text.substr(blanks_at(text));
    goes_on = behind.starts_with(',');
    if (goes_on) text = behind.substr(1);
  }
  return true;
}

// Reads "ID,ID reason" at the place; false where it is none.
static bool read_rules(const syntax::tree& tree, uint32_t source, const comment& comment,
                       uint64_t at, ignores& result) {
  std::string_view rest = std::string_view(tree.text).substr(at, comment.end - at);
  std::vector<std::string_view> ids;
  if (!take_ids(rest, ids)) return false;
  const std::string_view reason = trimmed(rest);
  const uint64_t end = comment.end - rest.size();
  if (reason.empty())
    result.faults.push_back({{source, comment.start, end - comment.start}, false});
  ignore row{.rule = {}, .first = 0, .last = 0, .reason = std::string(reason)};
  set_range(tree.text, comment, row);
  for (const std::string_view id : ids) {
    row.rule = {source, static_cast<uint64_t>(id.data() - tree.text.data()), id.size()};
    result.rows.push_back(row);
  }
  return true;
}

// The mark counts where nothing but "#" and blanks stands before it.
static bool may_begin_comment(std::string_view text, size_t mark) {
  const size_t before = mark == 0 ? text.npos : text.find_last_not_of(" \t", mark - 1);
  return before != text.npos && text[before] == '#';
}

static void read_comment(const syntax::tree& tree, uint32_t source, const comment& comment,
                         uint64_t mark, ignores& result) {
  const std::string_view text = tree.text;
  const auto before = text.substr(comment.start, mark - comment.start);
  if (comment.end <= mark || before.find_first_not_of("# \t") != before.npos) return;
  uint64_t at = mark + MARK.size();
  while (at < comment.end && (text[at] == ' ' || text[at] == '\t')) ++at;
  const std::string_view order = text.substr(at, comment.end - at);
  const bool is_order = order.starts_with(IGNORE);
  if (is_order && read_rules(tree, source, comment, at + IGNORE.size(), result)) return;
  const auto shown = trimmed(text.substr(comment.start, comment.end - comment.start));
  result.faults.push_back({{source, comment.start, shown.size()}, true});
}

ignores read_ignores(const syntax::tree& tree, uint32_t source) {
  ignores result;
  const std::string_view text = tree.text;
  uint64_t reached = 0;
  for (size_t at = text.find(MARK), next; at != text.npos; at = text.find(MARK, next)) {
    next = at + MARK.size();
    if (!may_begin_comment(text, at)) continue;
    const comment comment = comment_at(tree, at, reached);
    read_comment(tree, source, comment, at, result);
    next = std::max<size_t>(next, comment.end);
  }
  return result;
}

// --- Hiding --------------------------------------------------------------------------------------

static bool is_called(const finding& found, std::string_view id) {
  return found.rule == id ||
         std::ranges::find(found.aliases, id, &alias::rule) != found.aliases.end();
}

static bool is_about(const ignore& row, std::string_view id, const outcome& one) {
  return one.found.where.source == row.rule.source && one.found.where.start >= row.first &&
         one.found.where.start <= row.last && is_called(one.found, id);
}

static void hide(const std::vector<source>& sources, ignore& row, std::vector<outcome>& findings) {
  const std::string_view id =
      std::string_view(sources[row.rule.source].tree.text).substr(row.rule.start, row.rule.length);
  const auto is_before = [](const outcome& one, const ignore& ignore) {
    return std::tie(one.found.where.source, one.found.where.start) <
           std::tie(ignore.rule.source, ignore.first);
  };
  auto at = std::lower_bound(findings.begin(), findings.end(), row, is_before);
  for (; at != findings.end() && at->found.where.source == row.rule.source &&
         at->found.where.start <= row.last;
       ++at) {
    if (!is_about(row, id, *at)) continue;
    row.is_used = true;
    at->hidden = hidden_by::COMMENT;
    at->reason = row.reason;
  }
}

static void tell(comment_findings& to, std::string_view id, const span& where, std::string subject,
                 std::string sentence) {
  const rule& row = *find_rule(id);
  if (to.told.size() >= MOST_TOLD) {
    ++to.untold;
  } else {
    to.told.push_back({row.id, row.normal, where, std::move(sentence), std::move(subject)});
  }
}

static void tell_fault(const ignore_fault& fault, comment_findings& told) {
  if (fault.is_malformed) {
    tell(told, "ignore-malformed", fault.where, "comment",
         "This comment is no order to lint: write \"# tav-lint: ignore=RULE, RULE reason\".");
  } else {
    tell(told, "ignore-unexplained", fault.where, "comment",
         "This comment gives no reason: say behind the rules why they may be broken here.");
  }
}

// What would be found in what is broken, or with a dictionary at hand, nobody knows.
static void tell_unused(const ignore& row, const std::string& id, const hiding& how,
                        comment_findings& told) {
  const rule* known = find_rule(id);
  if (known == nullptr) {
    tell(told, "ignore-unknown", row.rule, id,
         "No rule is called \"" + id + "\": 'tav_dict lint --list-rules' lists them.");
  } else if (!row.is_used && how.is_checked(*known)) {
    tell(told, "ignore-unused", row.rule, id,
         "Nothing here breaks the rule " + id + ": remove it from the comment.");
  }
}

comment_findings hide_ignored(const std::vector<source>& sources, const hiding& how,
                              std::vector<outcome>& findings) {
  comment_findings told;
  const bool is_read = !has_syntax_errors(findings);
  for (uint32_t source = 0; source < sources.size(); ++source) {
    const syntax::tree& tree = sources[source].tree;
    ignores all = read_ignores(tree, source);
    for (const ignore_fault& fault : all.faults) tell_fault(fault, told);
    for (ignore& row : all.rows) {
      hide(sources, row, findings);
      row.is_used = row.is_used || !is_read;
      tell_unused(row, tree.text.substr(row.rule.start, row.rule.length), how, told);
    }
  }
  return told;
}

}  // namespace lint
