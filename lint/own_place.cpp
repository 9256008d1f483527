#include "lint/own_place.h"

#include <algorithm>

#include "lint/index.h"
#include "syntax/scan.h"

namespace lint {

using dparse::message;
using syntax::tree;

namespace {

// A token of a tree; the last one of the definition before counts as the one before the first.
struct token_place {
  const tree& in;
  size_t definition;
  size_t token;

  const syntax::definition& around() const { return in.definitions[definition]; }
  const syntax::token& get() const { return tokens_of(around())[token]; }
  int kind() const { return get().kind(); }
  uint64_t start() const { return syntax::place_of(around(), get()); }
  uint64_t end() const { return start() + syntax::text_of(in.text, around(), get()).size(); }
  bool is_first() const { return definition == 0 && token == 0; }

  void step_back() {
    if (token == 0) token = tokens_of(in.definitions[--definition]).size();
    --token;
  }
};

}  // namespace

// The last token that begins before the byte; there is one.
static token_place last_before(const tree& in, uint64_t byte) {
  const auto behind = std::ranges::partition_point(in.definitions, [&](const auto& each) {
    return syntax::place_of(each, tokens_of(each)[0]) < byte;
  });
  const auto definition = static_cast<size_t>(behind - in.definitions.begin()) - 1;
  const auto tokens = syntax::tokens_of(in.definitions[definition]);
  const auto end = std::ranges::partition_point(tokens, [&](const syntax::token& each) {
    return syntax::place_of(in.definitions[definition], each) < byte;
  });
  return {in, definition, static_cast<size_t>(end - tokens.begin()) - 1};
}

static bool is_expectation(message told) {
  switch (told) {
    case message::EQUALS_EXPECTED:
    case message::SEMICOLON_EXPECTED:
    case message::SEMICOLON_EXPECTED_AFTER_STRING:
    case message::OPENING_BRACE_EXPECTED:
    case message::FIELD_BRACE_EXPECTED:
    case message::CLOSING_BRACE_EXPECTED:
      return true;
    default:
      return false;
  }
}

static bool is_about_a_class(message told) {
  return told == message::DUPLICATE_CLASS || told == message::DUPLICATE_INTERFACE ||
         told == message::DUPLICATE_IMPLEMENTATION;
}

static span whole(uint32_t source, const token_place& at) {
  return {source, at.start(), at.end() - at.start()};
}

static span behind(uint32_t source, const token_place& at) {
  return {source, at.end(), 0};
}

// The word or strings in front of this ";".
static span value_before(uint32_t source, token_place at) {
  at.step_back();
  const uint64_t end = at.end();
  while (at.kind() == DPARSE_TOKEN_STRING) {
    token_place before = at;
    before.step_back();
    if (before.kind() != DPARSE_TOKEN_STRING) break;
    at.step_back();
  }
  return {source, at.start(), end - at.start()};
}

// The word may stand in front of what failed: it is told with the first failure of the file. One
// that fills the reader's text is read whole, and told.
static span long_word(uint32_t source, token_place at) {
  for (const token_place failed = at;; at.step_back()) {
    const bool is_string = at.kind() == DPARSE_TOKEN_STRING || at.kind() == DPARSE_TOKEN_BAD_STRING;
    if (!is_string && at.end() - at.start() >= dparse::TEXT_SIZE - 1) return whole(source, at);
    if (at.is_first()) return whole(source, failed);
  }
}

static span class_name(uint32_t source, token_place at) {
  while (at.token > 0 && at.kind() != DPARSE_TOKEN_WORD) at.step_back();
  return whole(source, at);
}

// The end of the first token; that of the text where there is none.
static uint64_t first_end(const tree& in) {
  return in.definitions.empty() ? in.text.size() : token_place{in, 0, 0}.end();
}

span own_place(std::span<const source> sources, uint32_t source, message told, uint64_t taken,
               bool ended) {
  const tree& in = sources[source].tree;
  const size_t mark = syntax::mark_size(in.text);
  // The mark is a part of the reader's first word.
  if (mark > 0 && told == message::INVALID_TOKEN && taken <= first_end(in))
    return {source, 0, mark};
  if (in.definitions.empty() || token_place{in, 0, 0}.start() >= taken) return {source, 0, 0};
  token_place at = last_before(in, taken);
  if (told == message::WORD_TOO_LONG) return long_word(source, at);
  if (told == message::STRING_NOT_CLOSED) return whole(source, at);
  if (ended) return behind(source, at);
  if (is_about_a_class(told)) return class_name(source, at);
  if (at.is_first()) return whole(source, at);
  token_place before = at;
  before.step_back();
  if (is_expectation(told)) return behind(source, before);
  if (at.kind() == DPARSE_KEY_SEMICOLON && holds_value(before.kind()))
    return value_before(source, at);
  return whole(source, at);
}

}  // namespace lint
