#include "dict/lint/against.h"

#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

#include "dict/lint/listed_store.h"
#include "dict/lint/refusals.h"
#include "dict/reading.h"
#include "dm/open.h"
#include "lint/held.h"
#include "vantor/binding.h"

namespace dict {

// No dictionary holds two fields of one number. Empty where there are none.
static std::string shared_number(const definitions& held) {
  const listed_store store(held.fields.get(), held.classes.get());
  std::map<int64_t, const char*> known;
  for (const dm::field_row& field : store.fields) {
    const auto [first, is_new] = known.try_emplace(field.number, field.name);
    if (!is_new)
      return dm::join({"fields ", first->second, " and ", field.name, " have the same ID, ",
                       std::to_string(field.number)});
  }
  return "";
}

static bool read_export(const std::string& file, against& to, dm::problem& why) {
  std::ifstream stream(file, std::ios::binary);
  std::ostringstream text;
  text << stream.rdbuf();
  std::string fault;
  if (!stream) {
    why.sentence = dm::join({"The file ", dm::quoted(file), " cannot be read."});
  } else if (!lint::read_held(std::move(text).str(), to.held.fields, to.held.classes, fault)) {
    why.sentence = dm::join({"The file ", dm::quoted(file), " is no sound export: ", fault});
  } else if (fault = shared_number(to.held); !fault.empty()) {
    why.sentence = dm::join({"The file ", dm::quoted(file), " is no sound export: ", fault, "."});
  }
  return why.sentence.empty();
}

static bool read_dictionary(const std::string& named, const std::string& database, against& to,
                            dm::problem& why) {
  dm::settings settings;
  uint64_t number = 0;
  if (tav_text_holds_password(named)) {
    why.sentence =
        "--against holds a password, and everybody can read command lines: change it, and keep the "
        "new one in PostgreSQL's own password file.";
    return false;
  }
  if (!dm::read_settings(settings, why)) return false;
  if (!choose_database(database, settings, number, why)) return false;
  if (named != ".") settings.dictionary = dm::seen_from_working_folder(named);
  if (fetch(settings, number, to.held, why)) return true;
  // A text that names no dictionary may hold a password.
  if (named != "." && why.code == TAV_ERR_BAD_CONF) why.sentence = dm::NAMES_NO_DICTIONARY;
  return false;
}

bool read_against(const std::string& named, const std::string& database, against& to,
                  dm::problem& why) {
  std::error_code ignored;
  const bool is_path = named.find(':') == named.npos && named.ends_with(".def");
  const bool is_file = is_path || std::filesystem::is_regular_file(named, ignored);
  return is_file ? read_export(named, to, why) : read_dictionary(named, database, to, why);
}

lint::world world_of(against& held) {
  tav_flist_t* fields = held.held.fields.get();
  tav_flist_t* classes = held.held.classes.get();
  return {
      .fields = fields,
      .classes = classes,
      .refuse = [fields, classes](
                    const lint::deployment& sent) { return refusals_of(fields, classes, sent); },
      .stays = leaves_as_it_is};
}

}  // namespace dict
