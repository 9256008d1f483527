#include "dm/settings.h"

#include <algorithm>
#include <charconv>
#include <cstring>

#include "dd/fold.h"
#include "dd/owners.h"
#include "vantor/binding.h"

namespace dm {

static constexpr char SECTION[] = "dm";

namespace {

struct setting {
  const char* key;
  bool (*read)(const char* text, settings& settings);
  const char* fault;  // of a text that cannot be read
};

bool read_yes(const char* text, bool& yes) {
  yes = dd_equal(text, "yes");
  return yes || dd_equal(text, "no");
}

bool read_seconds(const char* text, int& seconds) {
  static constexpr int LONGEST = 86400;  // a day
  const char* end = text + std::strlen(text);
  const auto [rest, error] = std::from_chars(text, end, seconds);
  return error == std::errc() && rest == end && seconds >= 1 && seconds <= LONGEST;
}

constexpr char NEITHER[] = "is neither yes nor no";

// The entries of the section; where one is missing, the settings have its default.
constexpr setting SETTINGS[] = {
    {"dictionary", [](const char* text, settings& s) { return s.dictionary = text, true; }, ""},
    {"fields_writeable",
     [](const char* text, settings& s) { return read_yes(text, s.fields_writeable); }, NEITHER},
    {"objects_writeable",
     [](const char* text, settings& s) { return read_yes(text, s.objects_writeable); }, NEITHER},
    {"answer_seconds",
     [](const char* text, settings& s) { return read_seconds(text, s.answer_seconds); },
     "is no number from 1 to 86400"},
};

}  // namespace

static std::string place_of(int line) {
  const std::string place = line > 0 ? join({", line ", std::to_string(line)}) : "";
  return join({"Configuration ", quoted(tav_conf_file()), place, ": "});
}

static bool bad_entry(const char* program, const char* key, int32_t code, const char* fault,
                      problem& why) {
  why.code = code;
  why.sentence = join({place_of(tav_conf_line(program, key)), "entry '", key, "' ", fault, "."});
  return false;
}

// Where tav.conf cannot be used at all, the sentence is the client library's.
static bool cannot_look_up(const char* key, int32_t code, problem& why) {
  if (*tav_conf_problem() == '\0') return bad_entry(SECTION, key, code, "cannot be read", why);
  why.code = code;
  why.sentence = tav_conf_problem();
  return false;
}

static bool read_setting(const setting& row, settings& settings, problem& why) {
  void* value = nullptr;
  int32_t error = TAV_ERR_NONE;
  tav_conf(SECTION, row.key, TAV_FLDT_STRING, &value, &error);
  const bool is_read = value == nullptr || row.read(static_cast<const char*>(value), settings);
  tavi_client_put_cleanup(value, TAV_FLD_NAME, 0);
  if (error != TAV_ERR_NONE && error != TAV_ERR_NOT_FOUND)
    return cannot_look_up(row.key, error, why);
  return is_read || bad_entry(SECTION, row.key, TAV_ERR_BAD_CONF, row.fault, why);
}

static bool read_login(settings& settings, problem& why) {
  const char* key = TAV_COMMON_ENTRIES[TAV_CONF_USERID];
  void* value = nullptr;
  int32_t error = TAV_ERR_NONE;
  tav_conf("-", key, TAV_FLDT_POID, &value, &error);
  const dd_poid login(static_cast<tav_poid_t*>(value));
  settings.has_login = login != nullptr;
  settings.database = tav_poid_get_db(login.get());
  if (error == TAV_ERR_NONE || error == TAV_ERR_NOT_FOUND) return true;
  return bad_entry("-", key, error, "is no identity (DATABASE TYPE ID)", why);
}

bool read_settings(settings& settings, problem& why) {
  for (const setting& row : SETTINGS) {
    if (!read_setting(row, settings, why)) return false;
  }
  return read_login(settings, why);
}

// The keys that are known where the entry stands. The data manager's own may also stand above any
// section.
static std::vector<const char*> known_in(const tav_conf_entry& entry) {
  std::vector<const char*> known;
  if (*entry.section == '\0') known.assign(TAV_COMMON_ENTRIES.begin(), TAV_COMMON_ENTRIES.end());
  for (const setting& row : SETTINGS) known.push_back(row.key);
  return known;
}

// Whether a message may repeat the name: a misplaced line may hold anything, even a password.
static bool is_word(const char* name) {
  return std::all_of(name, name + std::strlen(name),
                     [](char c) { return (dd_fold(c) >= 'a' && dd_fold(c) <= 'z') || c == '_'; });
}

static std::string unknown(const tav_conf_entry& entry, const std::vector<const char*>& known) {
  const std::string name = is_word(entry.name) ? join({" ", quoted(entry.name)}) : "";
  std::string keys;
  for (const char* key : known) keys.append(keys.empty() ? "" : ", ").append(key);
  return join({place_of(entry.line), "the entry", name,
               *entry.section == '\0'
                   ? " above any section is unknown and has no effect; known there are "
                   : " of section [dm] is unknown and has no effect; known there are ",
               keys, "."});
}

std::string writes_refused(const char* entry) {
  return join({"The dictionary takes no such writes: set '", entry, " = yes' in section [dm] of ",
               quoted(tav_conf_file()), "."});
}

std::vector<std::string> unknown_entries() {
  std::vector<std::string> sentences;
  tav_conf_entry entry{};
  for (size_t place = 0; tav_conf_entry_at(place, entry); ++place) {
    if (*entry.section != '\0' && std::strcmp(entry.section, SECTION) != 0) continue;
    const std::vector<const char*> known = known_in(entry);
    const auto is_name = [&](const char* key) { return std::strcmp(key, entry.name) == 0; };
    if (std::none_of(known.begin(), known.end(), is_name)) {
      sentences.push_back(unknown(entry, known));
    }
  }
  return sentences;
}

}  // namespace dm
