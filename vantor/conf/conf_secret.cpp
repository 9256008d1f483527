// Whether the entry `dictionary` may hold a password. This includes texts that the server's client
// library would refuse: the password stands there nevertheless.
#include <algorithm>
#include <string>

#include "vantor/binding.h"

namespace {

constexpr std::string_view BLANKS = " \t\n\v\f\r";  // as the client library has them
constexpr std::string_view DIGITS = "0123456789";
constexpr std::string_view WORD = "abcdefghijklmnopqrstuvwxyz0123456789_-";

bool begins(std::string_view text, std::string_view start) {
  return text.substr(0, start.size()) == start;
}

bool holds(std::string_view text, std::string_view part) {
  return text.find(part) != text.npos;
}

char folded(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

// In lower case and with %61 replaced by a, repeatedly: a result may form another such code.
std::string decoded(std::string_view text) {
  static constexpr std::string_view HEX = "0123456789abcdef";
  std::string result;
  for (const char c : text) {
    result += folded(c);
    while (result.size() >= 3 && result[result.size() - 3] == '%') {
      const size_t high = HEX.find(result[result.size() - 2]);
      const size_t low = HEX.find(result.back());
      if (high == HEX.npos || low == HEX.npos) break;
      result.resize(result.size() - 3);
      result += folded(static_cast<char>(high * 16 + low));
    }
  }
  return result;
}

// Whether the word is a key with a password as its value: "sslpassword = x", "password: x",
// "Pwd=x", "password x". `before` and `after` are the text on both sides of the word.
bool is_secret_key(std::string_view before, std::string_view word, std::string_view after) {
  if (word == "passfile" || (!holds(word, "pass") && !holds(word, "pwd"))) return false;
  const size_t next = after.find_first_not_of(BLANKS);
  if (next == after.npos) return false;
  if (after[next] == '=' || after[next] == ':') return true;
  const size_t last = before.find_last_not_of(BLANKS);
  const bool is_value = last != before.npos && before[last] == '=';
  return next > 0 && holds(word, "passw") && !is_value;
}

bool has_secret_key(std::string_view text) {
  for (size_t at = 0; (at = text.find_first_of(WORD, at)) != text.npos;) {
    const size_t end = std::min(text.find_first_not_of(WORD, at), text.size());
    if (is_secret_key(text.substr(0, at), text.substr(at, end - at), text.substr(end))) return true;
    at = end;
  }
  return false;
}

// "user:password@", with a password that may hold anything.
bool has_login(std::string_view text) {
  for (const std::string_view scheme : {"postgresql://", "postgres://"}) {
    if (begins(text, scheme)) text.remove_prefix(scheme.size());
  }
  const size_t at_sign = text.rfind('@');
  return at_sign != text.npos && text.find(':') < at_sign;
}

// Whether something other than digits stands where the port belongs, as in
// "postgresql://user:password/database".
bool has_odd_port(std::string_view text) {
  if (!begins(text, "postgres")) return false;
  text.remove_prefix(std::min(text.find(':'), text.size()));
  text.remove_prefix(std::min(text.find_first_not_of(":/"), text.size()));
  bool in_brackets = false;
  bool in_port = false;
  for (const char c : text.substr(0, text.find_first_of("/?"))) {
    if (in_port && c != ',' && !holds(DIGITS, {&c, 1})) return true;
    if (c == '[' || c == ']') in_brackets = c == '[';
    in_port = c != ',' && (in_port || (c == ':' && !in_brackets));
  }
  return false;
}

}  // namespace

bool tav_text_holds_password(std::string_view dictionary) {
  static constexpr std::string_view FILE_PREFIX = "sqlite:";
  const std::string text = decoded(dictionary);
  std::string_view where = text;
  if (begins(dictionary, FILE_PREFIX)) {
    // A path may look like nearly anything, so only the address of a server behind the prefix (an
    // administrator's slip) is examined further.
    where.remove_prefix(FILE_PREFIX.size());
    const std::string_view path =
        where.substr(std::min(where.find_first_not_of('/'), where.size()));
    const bool is_address = has_login(path.substr(0, path.find('/')));  // user:password@host
    if (!is_address && !holds(where, "://") && !begins(where, "postgres") &&
        !holds(where, "password")) {
      return false;
    }
  }
  return has_secret_key(where) || has_login(where) || has_odd_port(where);
}
