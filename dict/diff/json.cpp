// The differences as JSON, for programs. Its form, described in docs/comparing.md, is part of the
// interface.
#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include "dict/diff/diff.h"
#include "dm/json_memory.h"

namespace dict {

using utf8 = rapidjson::UTF8<>;
using sink = rapidjson::GenericStringBuffer<utf8, dm::json_memory>;
using writer = rapidjson::PrettyWriter<sink, utf8, utf8, dm::json_memory>;

// In the order of the enumeration.
static constexpr const char* CHANGES[] = {"new", "changed", "missing", "kept"};

static bool is_utf8(const std::string& text) {
  rapidjson::StringStream from(text.c_str());
  unsigned code = 0;
  while (from.Peek() != '\0') {
    if (!rapidjson::UTF8<>::Decode(from, &code)) return false;
  }
  return true;
}

// JSON must be UTF-8. In a text that is not, which a file may hold, each byte above 127 becomes
// '?'.
static void put_text(writer& out, std::string text) {
  if (!is_utf8(text)) {
    for (char& c : text) {
      if (static_cast<unsigned char>(c) > 127) c = '?';
    }
  }
  out.String(text.c_str());
}

static void put_member(writer& out, const char* key, const std::string& text) {
  out.Key(key);
  if (!text.empty()) return put_text(out, text);
  out.Null();
}

static void put_value(writer& out, const value_change& value) {
  out.StartObject();
  put_member(out, "attribute", std::string(value.attribute));
  put_member(out, "before", value.before);
  put_member(out, "after", value.after);
  out.Key("kept");
  out.Bool(value.is_kept);
  out.EndObject();
}

static void put(writer& out, const difference& d) {
  out.StartObject();
  put_member(out, "change", CHANGES[static_cast<size_t>(d.kind)]);
  put_member(out, "what", d.what);
  put_member(out, "name", d.name);
  put_member(out, "type", d.type);
  out.Key("attributes");
  out.StartArray();
  for (const value_change& value : d.values) put_value(out, value);
  out.EndArray();
  out.Key("entries");
  out.StartArray();
  for (const difference& entry : d.entries) put(out, entry);
  out.EndArray();
  out.EndObject();
}

static void put_count(writer& out, const char* key, size_t number) {
  out.Key(key);
  out.Uint64(number);
}

// The member "refused": null where it is not known.
static void put_refused(writer& out, const trial_result& tried) {
  out.Key("refused");
  if (tried.given == answer::UNKNOWN) {
    out.Null();
  } else {
    out.Bool(tried.given == answer::REFUSED);
  }
  out.Key("messages");
  out.StartArray();
  for (const std::string& message : tried.messages) put_text(out, message);
  out.EndArray();
}

std::string as_json(const std::vector<difference>& found, const trial_result& tried) {
  sink text;
  writer out(text);
  out.SetIndent(' ', 2);
  const difference_counts counts = count(found);
  out.StartObject();
  out.Key("same");
  out.Bool(counts.added + counts.changed + counts.missing == 0);
  put_count(out, "new", counts.added);
  put_count(out, "changed", counts.changed);
  put_count(out, "missing", counts.missing);
  out.Key("differences");
  out.StartArray();
  for (const difference& d : found) put(out, d);
  out.EndArray();
  put_refused(out, tried);
  out.EndObject();
  return std::string(text.GetString(), text.GetSize()) + "\n";
}

}  // namespace dict
