#include "dm/settings.h"

#include <charconv>

#include "dd/fold.h"
#include "dd/owners.h"
#include "vantor/data_manager.h"

namespace dm {

static constexpr char SECTION[] = "dm";

static bool bad_entry(const char* program, const char* key, int32_t code, const char* fault,
                      problem& why) {
  const int line = tav_conf_line(program, key);
  const std::string place = line > 0 ? join({", line ", std::to_string(line)}) : "";
  why.code = code;
  why.sentence =
      join({"Configuration ", quoted(tav_conf_file()), place, ": entry '", key, "' ", fault, "."});
  return false;
}

// Gives the entry's text, or leaves `text` as it is where there is none.
static bool read_text(const char* key, std::string& text, problem& why) {
  void* value = nullptr;
  int32_t error = TAV_ERR_NONE;
  tav_conf(SECTION, key, TAV_FLDT_STRING, &value, &error);
  if (value != nullptr) text = static_cast<const char*>(value);
  tavi_client_put_cleanup(value, TAV_FLD_NAME, 0);
  if (error == TAV_ERR_NONE || error == TAV_ERR_NOT_FOUND) return true;
  return bad_entry(SECTION, key, error, "cannot be read", why);
}

static bool read_yes(const char* key, bool& yes, problem& why) {
  std::string text = "no";
  if (!read_text(key, text, why)) return false;
  yes = dd_equal(text.c_str(), "yes");
  return yes || dd_equal(text.c_str(), "no") ||
         bad_entry(SECTION, key, TAV_ERR_BAD_CONF, "is neither yes nor no", why);
}

static bool read_seconds(const char* key, int& seconds, problem& why) {
  static constexpr int LONGEST = 86400;  // a day
  std::string text = std::to_string(seconds);
  if (!read_text(key, text, why)) return false;
  const char* end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, seconds);
  return (error == std::errc() && rest == end && seconds >= 1 && seconds <= LONGEST) ||
         bad_entry(SECTION, key, TAV_ERR_BAD_CONF, "is no number from 1 to 86400", why);
}

static bool read_login(settings& settings, problem& why) {
  void* value = nullptr;
  int32_t error = TAV_ERR_NONE;
  tav_conf("-", "userid", TAV_FLDT_POID, &value, &error);
  const dd_poid login(static_cast<tav_poid_t*>(value));
  settings.has_login = login != nullptr;
  settings.database = tav_poid_get_db(login.get());
  if (error == TAV_ERR_NONE || error == TAV_ERR_NOT_FOUND) return true;
  return bad_entry("-", "userid", error, "is no identity (DATABASE TYPE ID)", why);
}

bool read_settings(settings& settings, problem& why) {
  settings.dictionary = "sqlite:dictionary.db";
  return read_text("dictionary", settings.dictionary, why) &&
         read_yes("fields_writeable", settings.fields_writeable, why) &&
         read_yes("objects_writeable", settings.objects_writeable, why) &&
         read_seconds("answer_seconds", settings.answer_seconds, why) && read_login(settings, why);
}

}  // namespace dm
