#include <rapidjson/document.h>

#include <algorithm>

#include "dd/database_number.h"
#include "dict/files.h"
#include "dict/plan/form.h"
#include "dict/plan/plan.h"
#include "dm/json_memory.h"

namespace dict {

using document =
    rapidjson::GenericDocument<rapidjson::UTF8<>, rapidjson::MemoryPoolAllocator<dm::json_memory>,
                               dm::json_memory>;
using value = document::ValueType;

// --- Members -------------------------------------------------------------------------------------
// Each gives whether the member is there, and as it should be.

static const value* member(const value& of_object, const char* key) {
  if (!of_object.IsObject()) return nullptr;
  const auto found = of_object.FindMember(key);
  return found != of_object.MemberEnd() ? &found->value : nullptr;
}

static bool take(const value* from, std::string& text) {
  if (from == nullptr || !(from->IsString() || from->IsNull())) return false;
  text = from->IsString() ? std::string(from->GetString(), from->GetStringLength()) : "";
  return true;
}

static bool take(const value* from, std::vector<std::string>& texts) {
  if (from == nullptr || !from->IsArray()) return false;
  return std::all_of(from->Begin(), from->End(),
                     [&](const value& each) { return take(&each, texts.emplace_back()); });
}

static bool take(const value* from, digests& all) {
  if (from == nullptr || !from->IsObject()) return false;
  for (const auto& each : from->GetObject()) {
    std::string name;
    if (!take(&each.name, name) || !take(&each.value, all[name])) return false;
  }
  return true;
}

static bool take(const value* from, int64_t& number) {
  if (from == nullptr || !from->IsInt64()) return false;
  number = from->GetInt64();
  return true;
}

static bool take(const value* from, digests_of_things& things) {
  return from != nullptr && take(member(*from, FORM.fields), things.fields) &&
         take(member(*from, FORM.classes), things.classes);
}

static bool take_dictionary(const value* from, plan& result) {
  std::string database;
  return from != nullptr && take(member(*from, FORM.name), result.name) &&
         take(member(*from, FORM.identity), result.identity) &&
         take(member(*from, FORM.database), database) &&
         dd_read_database(database.c_str(), result.database) &&
         take(member(*from, FORM.record), result.record) &&
         take(member(*from, FORM.hash), result.hash);
}

static bool take_definitions(const value* from, std::string& text) {
  std::vector<std::string> lines;
  if (!take(from, lines)) return false;
  for (const std::string& line : lines) text.append(line).append("\n");
  return true;
}

static bool take_plan(const value& from, plan& result) {
  const value* looked_at = member(from, FORM.looked_at);
  return take_dictionary(member(from, FORM.dictionary), result) &&
         take(member(from, FORM.time), result.time) && take(member(from, FORM.user), result.user) &&
         take(member(from, FORM.changes), result.changes) &&
         take(member(from, FORM.losses), result.losses) &&
         take_definitions(member(from, FORM.definitions), result.definitions) &&
         take(member(from, FORM.results), result.results) && take(looked_at, result.known) &&
         take(member(*looked_at, FORM.numbers), result.numbers) &&
         take(member(*looked_at, FORM.tables), result.tables) &&
         take(member(*looked_at, FORM.complete), result.complete);
}

// --- Files ---------------------------------------------------------------------------------------

// Nesting needs no room on the stack.
static void parse(const std::string& text, document& read) {
  read.Parse<rapidjson::kParseIterativeFlag>(text.data(), text.size());
}

static bool is_plan(const document& read) {
  return !read.HasParseError() && member(read, FORM.version) != nullptr;
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
  document read;
  int64_t version = 0;
  if (file != STANDARD_INPUT && is_other_than_file(file))
    return refuse(file, "is no regular file, and a plan is always one; - is standard input.", why);
  if (!read_file(file, file, content, why)) return false;
  parse(content.text, read);
  if (!is_plan(read)) return refuse(file, "is no plan; 'tav_dict plan --output' makes one.", why);
  if (!take(member(read, FORM.version), version) || version != PLAN_VERSION)
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
  document read;
  if (!read_file(file, file, content, why)) return false;
  parse(content.text, read);
  if (is_plan(read) && !sound_digest(content.text).empty()) return true;
  return refuse(file,
                "is no plan, or was changed after it was made, and --output replaces nothing else: "
                "name another file, or remove this one.",
                why);
}

}  // namespace dict
