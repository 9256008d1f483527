#include "dm/journal/change.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "dm/journal/hash.h"

namespace dm {

static bool continues(char c) {
  return (static_cast<unsigned char>(c) & 0xc0) == 0x80;
}

// How many bytes both begin with, never ending within a character: the parts must be UTF-8 because
// servers take nothing else.
static size_t common_head(std::string_view a, std::string_view b) {
  const size_t most = std::min(a.size(), b.size());
  auto head = static_cast<size_t>(
      std::mismatch(a.begin(), a.begin() + static_cast<ptrdiff_t>(most), b.begin()).first -
      a.begin());
  while (head > 0 &&
         ((head < a.size() && continues(a[head])) || (head < b.size() && continues(b[head]))))
    --head;
  return head;
}

static size_t common_tail(std::string_view a, std::string_view b) {
  const auto most = static_cast<ptrdiff_t>(std::min(a.size(), b.size()));
  auto tail = static_cast<size_t>(std::mismatch(a.rbegin(), a.rbegin() + most, b.rbegin()).first -
                                  a.rbegin());
  while (tail > 0 && continues(a[a.size() - tail])) --tail;
  return tail;
}

// "WHAT HOW NAME-BYTES HEAD TAIL MIDDLE-BYTES DIGEST", a line end, name, middle, a line end.
static void pack(std::string& packed, const journal_change& change) {
  packed += static_cast<char>(change.what);
  packed += static_cast<char>(change.how);
  for (const size_t number : {change.name.size(), change.head, change.tail, change.middle.size()}) {
    char digits[24];
    const auto end = std::to_chars(std::begin(digits), std::end(digits), number).ptr;
    packed += ' ';
    packed.append(digits, end);
  }
  packed += ' ';
  packed += change.digest;
  packed += '\n';
  packed += change.name;
  packed += change.middle;
  packed += '\n';
}

static void pack_changed(std::string& packed, change_of what, std::string_view name,
                         std::string_view before, std::string_view after) {
  journal_change change{what, change_how::CHANGED, name, common_head(before, after), 0, {}, {}};
  const std::string_view rest = before.substr(change.head);
  change.tail = common_tail(rest, after.substr(change.head));
  change.middle = rest.substr(0, rest.size() - change.tail);
  const std::string digest = hash_of(after);
  change.digest = digest;
  pack(packed, change);
}

static void pack_present(std::string& packed, change_of what, change_how how, std::string_view name,
                         std::string_view state) {
  const std::string digest = hash_of(state);
  pack(packed, {what, how, name, 0, 0, {}, digest});
}

void pack_found(std::string& packed, change_of what, std::string_view name,
                std::string_view state) {
  pack_present(packed, what, change_how::FOUND, name, state);
}

bool pack_change(std::string& packed, change_of what, std::string_view name,
                 const journal_states& states) {
  const auto [before, after] = states;
  if (before == nullptr) return pack_present(packed, what, change_how::ADDED, name, *after), true;
  if (after == nullptr) {
    return pack(packed, {what, change_how::DELETED, name, 0, 0, *before, {}}), true;
  }
  if (*before == *after) return false;
  return pack_changed(packed, what, name, *before, *after), true;
}

// Takes a number and the character behind it.
static bool take_number(std::string_view& text, size_t& number, char behind) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end == text.data() + text.size() || *end != behind) return false;
  text.remove_prefix(static_cast<size_t>(end - text.data()) + 1);
  return true;
}

static bool take_text(std::string_view& text, size_t size, std::string_view& part) {
  if (size > text.size()) return false;
  part = text.substr(0, size);
  text.remove_prefix(size);
  return true;
}

static bool take_end(std::string_view& text) {
  const bool is_there = !text.empty() && text.front() == '\n';
  if (is_there) text.remove_prefix(1);
  return is_there;
}

bool unpack_change(std::string_view& packed, journal_change& change) {
  static constexpr std::string_view WHATS = "fc", HOWS = "ncdp";
  size_t name = 0;
  size_t middle = 0;
  if (packed.size() < 3 || WHATS.find(packed[0]) == WHATS.npos ||
      HOWS.find(packed[1]) == HOWS.npos || packed[2] != ' ') {
    return false;
  }
  change.what = change_of{packed[0]};
  change.how = change_how{packed[1]};
  packed.remove_prefix(3);
  return take_number(packed, name, ' ') && take_number(packed, change.head, ' ') &&
         take_number(packed, change.tail, ' ') && take_number(packed, middle, ' ') &&
         take_text(packed, change.how == change_how::DELETED ? 0 : HASH_LENGTH, change.digest) &&
         take_end(packed) && take_text(packed, name, change.name) &&
         take_text(packed, middle, change.middle) && take_end(packed);
}

bool has_left(const journal_change& change, const std::string* after) {
  if (change.how == change_how::DELETED || after == nullptr) {
    return change.how == change_how::DELETED && after == nullptr;
  }
  return hash_of(*after) == change.digest;
}

bool state_before(const journal_change& change, std::string_view after, std::string& before) {
  if (change.head > after.size() || change.tail > after.size() - change.head) return false;
  before = after.substr(0, change.head);
  before += change.middle;
  before += after.substr(after.size() - change.tail);
  return true;
}

std::string field_state(const field_row& row) {
  std::string state;
  state.reserve(96);
  for (const int32_t number : {row.number, row.type, row.flags}) {
    char digits[16];
    state.append(digits, std::to_chars(std::begin(digits), std::end(digits), number).ptr);
    state += ' ';
  }
  state += row.name;
  if (row.descr != nullptr) {
    state += ' ';
    state += row.descr;
  }
  return state;
}

static bool take_number(std::string_view& text, int32_t& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end == text.data() + text.size() || *end != ' ') return false;
  text.remove_prefix(static_cast<size_t>(end - text.data()) + 1);
  return true;
}

bool read_field_state(std::string& state, field_row& row) {
  std::string_view rest = state;
  row = {};
  if (!take_number(rest, row.number) || !take_number(rest, row.type) ||
      !take_number(rest, row.flags)) {
    return false;
  }
  const size_t name = state.size() - rest.size();
  const size_t blank = state.find(' ', name);
  row.name = state.c_str() + name;
  if (blank == state.npos) return true;
  state[blank] = '\0';
  row.descr = state.c_str() + blank + 1;
  return true;
}

}  // namespace dm
