#include "dict/history/moments.h"

#include <array>
#include <cctype>
#include <cstring>
#include <ctime>

namespace dict {

static constexpr const char* FORMS[] = {"%Y-%m-%dT%H:%M:%S", "%Y-%m-%d %H:%M:%S", "%Y-%m-%dT%H:%M",
                                        "%Y-%m-%d %H:%M", "%Y-%m-%d"};
static constexpr size_t LENGTH_OF_DAY = 10;  // the library would take 2026-1-1, too

template <size_t size = 64>
static std::string written(const char* form, const std::tm& time) {
  std::array<char, size> text{};
  return {text.data(), std::strftime(text.data(), text.size(), form, &time)};
}

std::string local_time(const std::string& utc) {
  std::tm parts{};
  const char* end = strptime(utc.c_str(), "%Y-%m-%dT%H:%M:%S", &parts);
  if (end == nullptr || *end != '.') return utc;
  const std::time_t seconds = timegm(&parts);
  std::tm local{};
  if (localtime_r(&seconds, &local) == nullptr) return utc;
  return written("%Y-%m-%d %H:%M:%S %z", local);
}

// Takes ".123" off the text: the milliseconds, with three digits.
static std::string take_fraction(const char*& text) {
  std::string digits;
  if (*text == '.') {
    while (std::isdigit(static_cast<unsigned char>(*++text)) != 0) digits += *text;
  }
  digits.resize(3, '0');
  return digits;
}

// The seconds since 1970 of a time whose zone, if any, stands in `zone`. False for one that is not
// in the calendar.
static bool find_seconds(std::tm parts, const char* zone, std::time_t& seconds) {
  const std::tm typed = parts;
  std::tm offset{};
  const bool has_zone = *zone != '\0';
  if (has_zone) {
    const char* end = strptime(zone, "%z", &offset);
    if (end == nullptr || *end != '\0') return false;
  }
  parts.tm_isdst = -1;
  seconds = has_zone ? timegm(&parts) - offset.tm_gmtoff : mktime(&parts);
  return parts.tm_mday == typed.tm_mday && parts.tm_mon == typed.tm_mon;
}

static std::string kept_form(std::time_t seconds, const std::string& milliseconds) {
  std::tm utc{};
  if (gmtime_r(&seconds, &utc) == nullptr) return "";
  return written("%Y-%m-%dT%H:%M:%S.", utc) + milliseconds + "Z";
}

static std::string day_before(int days) {
  const std::time_t now = std::time(nullptr);
  std::tm parts{};
  if (localtime_r(&now, &parts) == nullptr) return "";
  parts.tm_mday -= days;
  parts.tm_hour = parts.tm_min = parts.tm_sec = 0;
  parts.tm_isdst = -1;
  return kept_form(mktime(&parts), "000");
}

static std::string read(const std::string& text) {
  if (text == "today") return day_before(0);
  if (text == "yesterday") return day_before(1);
  for (const char* form : FORMS) {
    std::tm parts{};
    const char* rest = strptime(text.c_str(), form, &parts);
    if (rest == nullptr || static_cast<size_t>(rest - text.c_str()) < LENGTH_OF_DAY) continue;
    const std::string milliseconds = take_fraction(rest);
    while (*rest == ' ') ++rest;
    std::time_t seconds = 0;
    return find_seconds(parts, rest, seconds) ? kept_form(seconds, milliseconds) : "";
  }
  return "";
}

bool read_moment(const std::string& text, std::string& utc, dm::problem& why) {
  utc = read(text.substr(text.rfind('@', 0) == 0 ? 1 : 0));
  if (!utc.empty()) return true;
  why.sentence = dm::join({dm::quoted(text),
                           " is no time: expected such as @2026-11-01, @2026-11-01T10:00, "
                           "@2026-11-01T09:00Z, @today or @yesterday."});
  return false;
}

}  // namespace dict
