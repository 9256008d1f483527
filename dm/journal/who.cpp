#include "dm/journal/who.h"

#include <pwd.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <climits>
#include <ctime>

#include "dd/utf8.h"
#include "dm/json_memory.h"
#include "dm/open.h"
#include "vantor/binding.h"

namespace dm {

std::string made_fit(std::string_view text, size_t longest) {
  static constexpr std::string_view NO_CHARACTER = "\xef\xbf\xbd", CUT = "...";
  std::string fit;
  while (!text.empty()) {
    const size_t length = dd_utf8_length(text.data(), text.size());
    const bool is_bad = length == 0 || text.front() == '\0';
    const std::string_view next = is_bad ? NO_CHARACTER : text.substr(0, length);
    if (fit.size() + next.size() + CUT.size() > longest) return fit.append(CUT);
    fit += next;
    text.remove_prefix(is_bad ? 1 : length);
  }
  return fit;
}

// A text that somebody typed, without what may be a password.
static std::string without_secret(const std::string& text, size_t longest) {
  return is_misplaced_secret(text) ? "***" : made_fit(text, longest);
}

static std::string user_name() {
  std::array<char, 16384> space;
  passwd entry{};
  passwd* found = nullptr;
  const uid_t id = getuid();
  const bool is_known =
      getpwuid_r(id, &entry, space.data(), space.size(), &found) == 0 && found != nullptr;
  return is_known ? made_fit(entry.pw_name, LONGEST_WHO) : "uid " + std::to_string(id);
}

static std::string host_name() {
  std::array<char, HOST_NAME_MAX + 1> name{};
  gethostname(name.data(), name.size() - 1);
  return made_fit(name.data(), LONGEST_WHO);
}

// The word that says what to do: the first argument, unless it is an option or a file.
static std::string mode_of(const tav_caller& caller) {
  if (caller.arguments.empty()) return "";
  const std::string& word = caller.arguments.front();
  const bool is_word =
      word.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz-") == word.npos;
  return is_word && !word.empty() && word.front() != '-' ? made_fit(word, LONGEST_WHO) : "";
}

// All arguments as a JSON array. Where they are too many the last text says how many more.
static std::string call_of(const tav_caller& caller) {
  using buffer = rapidjson::GenericStringBuffer<rapidjson::UTF8<>, json_memory>;
  buffer text;
  rapidjson::Writer<buffer, rapidjson::UTF8<>, rapidjson::UTF8<>, json_memory> writer(text);
  writer.StartArray();
  size_t told = 0;
  for (; told < caller.arguments.size() && text.GetSize() < LONGEST_CALL - LONGEST_ARGUMENT;
       ++told) {
    const std::string argument = without_secret(caller.arguments[told], LONGEST_ARGUMENT);
    writer.String(argument.c_str(), static_cast<rapidjson::SizeType>(argument.size()));
  }
  if (told < caller.arguments.size()) {
    const std::string more = "... " + std::to_string(caller.arguments.size() - told) + " more";
    writer.String(more.c_str(), static_cast<rapidjson::SizeType>(more.size()));
  }
  writer.EndArray();
  return text.GetString();
}

static journal_record who_is_it() {
  const tav_caller caller = tav_caller_of_process();
  journal_record record;
  record.os_user = user_name();
  record.os_host = host_name();
  record.program = made_fit(caller.program, LONGEST_WHO);
  record.version = caller.version;
  record.mode = mode_of(caller);
  record.called = call_of(caller);
  record.reason = without_secret(caller.reason, LONGEST_REASON);
  return record;
}

void fill_who(journal_record& record) {
  static const journal_record KNOWN = who_is_it();
  for (const auto text : {&journal_record::os_user, &journal_record::os_host,
                          &journal_record::program, &journal_record::version, &journal_record::mode,
                          &journal_record::called, &journal_record::reason}) {
    record.*text = KNOWN.*text;
  }
}

std::string time_now() {
  using namespace std::chrono;
  const auto now = duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
  const std::time_t seconds = now / 1000;
  std::tm utc{};
  gmtime_r(&seconds, &utc);
  std::array<char, 64> text{};
  const size_t length = std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S.", &utc);
  const std::string milli = std::to_string(1000 + now % 1000);
  return std::string(text.data(), length) + milli.substr(1) + "Z";
}

}  // namespace dm
