#include <charconv>

#include "dd/database_number.h"
#include "dict/history/history.h"
#include "dict/history/moments.h"
#include "dict/parsed_json.h"

namespace dict {

tag_detail read_tag(const std::string& detail) {
  const parsed_json read = parse_json(detail);
  const json_value* number = find_member(read, "number");
  const json_value* name = find_member(read, "name");
  if (number == nullptr || !number->IsInt64() || name == nullptr || !name->IsString()) return {};
  return {number->GetInt64(), name->GetString()};
}

static bool read_number(const std::string& text, int64_t& number) {
  const char* end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && rest == end && number >= 0;
}

static bool find_tag(dm::store& store, const std::string& name, int64_t& number, dm::problem& why) {
  number = 0;
  const auto look = [&](const dm::journal_record& record) {
    if (record.kind != dm::journal_kind::TAG) return true;
    const tag_detail tag = read_tag(record.detail);
    if (tag.name == name) number = tag.number;
    return number == 0;
  };
  dm::journal_range range;
  range.newest_first = true;
  if (!dm::walk_records(store, range, look, why)) return false;
  if (number != 0) return true;
  why.sentence = dm::join({"There is no tag ", dm::quoted(name),
                           "; 'tav_dict log' shows deployments and their tags. A time has a '@' "
                           "before it."});
  return false;
}

static bool find_moment(dm::store& store, const std::string& text, int64_t& record,
                        dm::problem& why) {
  std::string moment;
  if (!read_moment(text, moment, why)) return false;
  record = 0;
  const auto look = [&](const dm::journal_record& row) {
    if (row.time <= moment) record = row.number;
    return record == 0;
  };
  dm::journal_range range;
  range.newest_first = true;
  return dm::walk_records(store, range, look, why);
}

bool find_deployment(dm::store& store, const std::string& text, int64_t& number, dm::problem& why) {
  int64_t record = 0;
  const bool is_moment = text.rfind('@', 0) == 0;
  if (is_moment && !find_moment(store, text, record, why)) return false;
  if (!is_moment && !read_number(text, record) && !find_tag(store, text, record, why)) return false;
  bool is_there = false;
  const auto look = [&](const dm::journal_record& row) {
    return number = row.deployment, is_there = true, false;
  };
  if (!dm::walk_records(store, {record, record}, look, why)) return false;
  if (is_there) return true;
  if (is_moment) {
    why.sentence = dm::join({"There was no deployment by ", dm::quoted(text), "."});
    return false;
  }
  why.sentence = dm::join({"The journal has no deployment ", std::to_string(record),
                           "; 'tav_dict log' shows those that it has."});
  return false;
}

// Interrupted by others, a deployment's last record may stand well behind its first.
static bool find_last(dm::store& store, int64_t deployment, int64_t& record, dm::problem& why) {
  const auto look = [&](const dm::journal_record& row) {
    if (row.deployment == deployment) record = row.number;
    return true;
  };
  return dm::walk_records(store, {deployment}, look, why);
}

bool find_point(dm::store& store, const std::string& text, int64_t& record, dm::problem& why) {
  if (text.rfind('@', 0) == 0) return find_moment(store, text, record, why);
  int64_t deployment = 0;
  if (read_number(text, deployment) && deployment == 0) return record = 0, true;
  return find_deployment(store, text, deployment, why) && find_last(store, deployment, record, why);
}

// The end of the database that counts at the record: number 0 where it was there, or was not yet.
static bool find_end(reading& from, int64_t record, dm::journal_record& end, dm::problem& why) {
  const std::string about = dd_database_text(from.database.number);
  const auto look = [&](const dm::journal_record& row) {
    const bool is_end = row.kind == dm::journal_kind::DROP_DATABASE && row.database == about;
    if (is_end) end = row;
    return !is_end && (row.kind != dm::journal_kind::ADD_DATABASE || row.database != about);
  };
  return dm::walk_records(*from.store, {0, record, true}, look, why);
}

bool find_point_of(reading& from, const std::string& text, int64_t& record, dm::problem& why) {
  dm::journal_record end;
  if (!find_point(*from.store, text, record, why) || !find_end(from, record, end, why)) {
    return false;
  }
  if (end.number == 0) return true;
  why.sentence = dm::join({"Database ", end.database, " was not there any more: deployment ",
                           std::to_string(end.deployment), " deleted it."});
  return false;
}

}  // namespace dict
