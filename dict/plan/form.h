// The members of a plan's file, and the digest at its end.
#ifndef DICT_PLAN_FORM_H
#define DICT_PLAN_FORM_H

#include <string>
#include <string_view>

namespace dict {

// Of the file's form; part of the interface, as the members' names.
inline constexpr int PLAN_VERSION = 1;

inline constexpr struct {
  const char* version = "tav_plan";
  const char* time = "made";
  const char* user = "by";
  const char* dictionary = "dictionary";
  const char* name = "name";
  const char* identity = "identity";
  const char* database = "database";
  const char* record = "record";
  const char* hash = "hash";
  const char* changes = "changes";
  const char* losses = "destructive";
  const char* definitions = "definitions";
  const char* looked_at = "looked_at";
  const char* results = "results";
  const char* fields = "fields";
  const char* classes = "classes";
  const char* numbers = "numbers";
  const char* tables = "tables";
  const char* complete = "no_other_subclasses";
} FORM;

// Puts the digest of the text, a JSON object, into it as its last member.
std::string with_digest(const std::string& text);
// The digest of such a text; "" where a byte of it was changed since.
std::string sound_digest(std::string_view text);

}  // namespace dict

#endif
