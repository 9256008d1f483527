// Rules for bytes and texts: what the data manager refuses in every text.
#include <cstring>

#include "dd/longest_text.h"
#include "dd/utf8.h"
#include "lint/gaps.h"
#include "lint/rules/own.h"
#include "syntax/scan.h"

namespace lint {

// Eight bytes at a time: nearly all text is ASCII.
static size_t behind_ascii(std::string_view text, size_t at) {
  uint64_t bytes;
  for (; at + sizeof bytes <= text.size(); at += sizeof bytes) {
    std::memcpy(&bytes, text.data() + at, sizeof bytes);
    if ((bytes & 0x8080808080808080u) != 0) break;
  }
  return at;
}

// Where the first byte is that is no UTF-8; npos where all are.
static size_t first_bad_byte(std::string_view text, size_t at = 0) {
  while ((at = behind_ascii(text, at)) < text.size()) {
    const size_t size = dd_utf8_length(text.data() + at, text.size() - at);
    if (size == 0) return at;
    at += size;
  }
  return text.npos;
}

void check_bytes(own_run& run, uint32_t source) {
  const syntax::tree& tree = run.all.sources[source].tree;
  const size_t mark = syntax::mark_size(tree.text);
  if (mark > 0) {
    report(
        run, "byte-order-mark", {source, 0, mark}, "file",
        "The file begins with a byte order mark, which is read as a part of its first word: save "
        "it as UTF-8 without one.");
  }
  size_t at = first_bad_byte(tree.text);
  run.sound_up_to[source] = std::min(at, tree.text.size());
  while (at != std::string::npos && gap_before(tree, at) == std::string::npos) {
    at = first_bad_byte(tree.text, at + 1);
  }
  if (at == std::string::npos) return;
  report(run, "comment-not-utf8", {source, at, 1}, "file",
         "This comment is not UTF-8, as other tools expect: save the file as UTF-8.");
}

static bool is_utf8(own_run& run, const visit& visited, const span& where) {
  if (where.start + where.length <= run.sound_up_to[where.source]) return true;
  const std::string_view text = text_of(run.all, where);
  const size_t at = first_bad_byte(text);
  if (at == text.npos) return true;
  report(
      run, "not-utf8", {where.source, where.start + at, 1}, subject_of(run.all, visited.way),
      thing_of(run.all, visited.way) +
          " is not UTF-8 from here on, and the data manager refuses it: save the file as UTF-8.");
  return false;
}

// Of several attributes of one keyword the last counts, but for those that may be repeated.
static bool counts(const own_run& run, const visit& visited) {
  const int keyword = keyword_of(run.all, visited.at());
  node_place last = visited.at();
  if (keyword == DPARSE_KEY_ATTRVAL || keyword == DPARSE_KEY_OBJECTCLASS) return true;
  find_attribute(run.all, *(visited.way.end() - 2), name_of(run.all, visited.at()), last);
  return last.node == visited.at().node;
}

// Of a field that is defined again, the reader drops what is repeated.
static bool is_repeat(const own_run& run, const visit& visited) {
  const node_place& top = visited.way.front();
  if (kind_of(run.all, top) != syntax::node_kind::FIELD) return false;
  const defined* first = find(run.all, syntax::node_kind::FIELD, name_of(run.all, top));
  return first->where.source != top.source || first->where.definition != top.definition;
}

// As the data manager counts: a tab takes two bytes, since an export writes it as "\t".
static size_t size_in_language(std::string_view text) {
  size_t size = text.size();
  for (const char c : text) size += c == '\t' ? 1 : 0;
  return size;
}

void check_text(own_run& run, const visit& visited) {
  const bool is_attribute = kind_of(run.all, visited.at()) == syntax::node_kind::ATTRIBUTE;
  if (!is_attribute && visited.way.size() > 1) return;
  const span where =
      is_attribute ? value_span(run.all, visited.at()) : name_span(run.all, visited.at());
  const bool is_sound = where.start + where.length <= run.sound_up_to[where.source];
  if ((is_sound && where.length <= DD_LONGEST_TEXT / 2) || is_repeat(run, visited)) return;
  if (!is_attribute) return void(is_utf8(run, visited, where));
  std::string text;
  if (!counts(run, visited)) return;
  if (!read_text(run.all, visited.at(), text) || first_bad_byte(text) != text.npos) {
    if (!text.empty()) is_utf8(run, visited, where);
    return;
  }
  const size_t size = size_in_language(text);
  // What is longer as it stands is told as an error of syntax.
  if (size <= DD_LONGEST_TEXT || text.size() > DD_LONGEST_TEXT) return;
  report(run, "text-too-long", where, subject_of(run.all, visited.way),
         thing_of(run.all, visited.way) + " has " + std::to_string(size) +
             " bytes, a tab counting two; a text has at most " + std::to_string(DD_LONGEST_TEXT) +
             ": shorten it.");
}

}  // namespace lint
