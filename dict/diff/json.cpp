// The differences as JSON, for programs. Its form, described in docs/comparing.md, is part of the
// interface.
#include "dict/diff/json.h"

namespace dict {

// In the order of the enumeration.
static constexpr const char* CHANGES[] = {"new", "changed", "missing", "kept"};

static void put_value(json_writer& out, const value_change& value) {
  out.StartObject();
  put_member(out, "attribute", std::string(value.attribute));
  put_member(out, "before", value.before);
  put_member(out, "after", value.after);
  put_flag(out, "kept", value.is_kept);
  out.EndObject();
}

static void put(json_writer& out, const difference& d) {
  out.StartObject();
  put_member(out, "change", CHANGES[static_cast<size_t>(d.kind)]);
  put_member(out, "what", d.what);
  put_member(out, "name", d.name);
  put_member(out, "type", d.type);
  put_array(out, "attributes", d.values, put_value);
  put_array(out, "entries", d.entries, put);
  out.EndObject();
}

// The member "refused": null where it is not known.
static void put_refused(json_writer& out, const trial_result& tried) {
  out.Key("refused");
  if (tried.given == answer::UNKNOWN) {
    out.Null();
  } else {
    out.Bool(tried.given == answer::REFUSED);
  }
  put_texts(out, "messages", tried.messages);
}

static void put_counts(json_writer& out, bool is_same, const difference_counts& counts) {
  put_flag(out, "same", is_same);
  put_number(out, "new", static_cast<int64_t>(counts.added));
  put_number(out, "changed", static_cast<int64_t>(counts.changed));
  put_number(out, "missing", static_cast<int64_t>(counts.missing));
}

void put_differences(json_writer& out, const std::vector<difference>& found) {
  const difference_counts counts = count(found);
  put_counts(out, counts.added + counts.changed + counts.missing == 0, counts);
  put_array(out, "differences", found, put);
}

void put_refused_differences(json_writer& out, const std::vector<difference>* found) {
  put_counts(out, false, found != nullptr ? count(*found) : difference_counts{});
  if (found != nullptr) return put_array(out, "differences", *found, put);
  out.Key("differences");
  out.Null();
}

std::string as_json(const std::vector<difference>& found, const trial_result& tried) {
  json_page page;
  page.out.StartObject();
  put_differences(page.out, found);
  put_refused(page.out, tried);
  page.out.EndObject();
  return text_of(page);
}

}  // namespace dict
