#include <algorithm>

#include "dd/database_number.h"
#include "dict/files.h"
#include "dict/parsed_json.h"
#include "dict/plan/form.h"
#include "dict/plan/plan.h"

namespace dict {

// --- Members -------------------------------------------------------------------------------------
// Each gives whether the member is there, and as it should be.

static bool take(const json_value* from, std::string& text) {
  if (from == nullptr || !(from->IsString() || from->IsNull())) return false;
  text = from->IsString() ? std::string(from->GetString(), from->GetStringLength()) : "";
  return true;
}

static bool take(const json_value* from, std::vector<std::string>& texts) {
  if (from == nullptr || !from->IsArray()) return false;
  return std::all_of(from->Begin(), from->End(),
                     [&](const json_value& each) { return take(&each, texts.emplace_back()); });
}

static bool take(const json_value* from, digests& all) {
  if (from == nullptr || !from->IsObject()) return false;
  for (const auto& each : from->GetObject()) {
    std::string name;
    if (!take(&each.name, name) || !take(&each.value, all[name])) return false;
  }
  return true;
}

static bool take(const json_value* from, int64_t& number) {
  if (from == nullptr || !from->IsInt64()) return false;
  number = from->GetInt64();
  return true;
}

static bool take(const json_value* from, digests_of_things& things) {
  return from != nullptr && take(find_member(*from, FORM.fields), things.fields) &&
         take(find_member(*from, FORM.classes), things.classes);
}

static bool take_dictionary(const json_value* from, plan& result) {
  std::string database;
  return from != nullptr && take(find_member(*from, FORM.name), result.name) &&
         take(find_member(*from, FORM.identity), result.identity) &&
         take(find_member(*from, FORM.database), database) &&
         dd_read_database(database.c_str(), result.database) &&
         take(find_member(*from, FORM.record), result.record) &&
         take(find_member(*from, FORM.hash), result.hash);
}

static bool take_definitions(const json_value* from, std::string& text) {
  std::vector<std::string> lines;
  if (!take(from, lines)) return false;
  for (const std::string& line : lines) text.append(line).append("\n");
  return true;
}

static bool take_plan(const json_value& from, plan& result) {
  const json_value* looked_at = find_member(from, FORM.looked_at);
  return take_dictionary(find_member(from, FORM.dictionary), result) &&
         take(find_member(from, FORM.time), result.time) &&
         take(find_member(from, FORM.user), result.user) &&
         take(find_member(from, FORM.changes), result.changes) &&
         take(find_member(from, FORM.losses), result.losses) &&
         take_definitions(find_member(from, FORM.definitions), result.definitions) &&
         take(find_member(from, FORM.results), result.results) && take(looked_at, result.known) &&
         take(find_member(*looked_at, FORM.numbers), result.numbers) &&
         take(find_member(*looked_at, FORM.tables), result.tables) &&
         take(find_member(*looked_at, FORM.complete), result.complete);
}

// --- Files ---------------------------------------------------------------------------------------

static bool is_plan(const json_value& read) {
  return find_member(read, FORM.version) != nullptr;
}

static bool refuse(const std::string& file, std::string_view fault, dm::problem& why) {
  why.sentence = dm::join({"File ", dm::quoted(file), " ", fault});
  return false;
}

// A pipe might never be opened by anybody else, and a device never end.
static bool is_other_than_file(const std::string& name) {
  struct stat status;
  return ::stat(name.c_str(), &status) == 0 && !S_ISREG(status.st_mode);
}

bool read_plan(const std::string& file, plan& result, dm::problem& why) {
  file_content content;
  int64_t version = 0;
  if (file != STANDARD_INPUT && is_other_than_file(file))
    return refuse(file, "is no regular file, and a plan is always one; - is standard input.", why);
  if (!read_file(file, file, content, why)) return false;
  const parsed_json read = parse_json(content.text);
  if (!is_plan(read)) return refuse(file, "is no plan; 'tav_dict plan --output' makes one.", why);
  if (!take(find_member(read, FORM.version), version) || version != PLAN_VERSION)
    return refuse(file, "is a plan in a form that this program does not know; make it anew.", why);
  result.digest = sound_digest(content.text);
  if (!result.digest.empty() && take_plan(read, result)) return true;
  return refuse(file,
                "was changed after it was made: its digest does not fit. What was reviewed is not "
                "what it holds; make the plan anew.",
                why);
}

bool takes_plan(const std::string& file, dm::problem& why) {
  if (file == STANDARD_INPUT) {
    why.sentence = "--output names the file for the plan, and standard output is none.";
    return false;
  }
  if (is_other_than_file(file))
    return refuse(file, "is no regular file, and a plan is always one.", why);
  struct stat status;
  if (::stat(file.c_str(), &status) != 0) return true;
  file_content content;
  if (!read_file(file, file, content, why)) return false;
  const parsed_json read = parse_json(content.text);
  if (is_plan(read) && !sound_digest(content.text).empty()) return true;
  return refuse(file,
                "is no plan, or was changed after it was made, and --output replaces nothing else: "
                "name another file, or remove this one.",
                why);
}

}  // namespace dict
