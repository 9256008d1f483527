// For Prometheus. The names of the metrics are part of the interface.
#include <ctime>
#include <iostream>

#include "dict/status/status.h"
#include "dict/terminal/json.h"
#include "dict/terminal/visible.h"

namespace dict {

// Seconds since 1970 of a record's time; 0 where there is none.
static int64_t seconds_of(const std::string& time) {
  std::tm utc{};
  return strptime(time.c_str(), "%Y-%m-%dT%H:%M:%S", &utc) != nullptr ? timegm(&utc) : 0;
}

namespace {

// A metric of the dictionary, and one of each database.
struct metric {
  const char *name, *help;
  int64_t (*value)(const dictionary_status& found);
};
struct database_metric {
  const char *name, *help;
  int64_t database_status::*value;
};

constexpr metric METRICS[] = {
    {"tav_dictionary_schema_version", "Version of the dictionary's schema.",
     [](const dictionary_status& found) { return int64_t{found.schema_version}; }},
    {"tav_dictionary_size_bytes", "What the dictionary takes.",
     [](const dictionary_status& found) { return found.bytes; }},
    {"tav_dictionary_writeable", "Whether the store takes writes of this user.",
     [](const dictionary_status& found) { return int64_t{found.is_writeable}; }},
    {"tav_dictionary_accepts_fields", "Whether fields can be deployed.",
     [](const dictionary_status& found) { return int64_t{found.accepts_fields}; }},
    {"tav_dictionary_accepts_classes", "Whether classes can be deployed.",
     [](const dictionary_status& found) { return int64_t{found.accepts_classes}; }},
    {"tav_dictionary_databases", "Databases in the dictionary.",
     [](const dictionary_status& found) { return static_cast<int64_t>(found.databases.size()); }},
    {"tav_dictionary_journal_record", "Number of the journal's last record; 0: no journal.",
     [](const dictionary_status& found) { return found.head.number; }},
    {"tav_dictionary_last_deployment", "Number of the last deployment; 0: none.",
     [](const dictionary_status& found) { return found.deployment; }},
    {"tav_dictionary_last_deployment_time_seconds", "When it ended, in Unix time; 0: none.",
     [](const dictionary_status& found) { return seconds_of(found.deployment_time); }},
};
constexpr database_metric DATABASE_METRICS[] = {
    {"tav_dictionary_fields", "Fields in a database.", &database_status::fields},
    {"tav_dictionary_classes", "Classes in a database.", &database_status::classes},
};

}  // namespace

// A label's value: UTF-8, with backslash, quote and line end escaped.
static std::string label_value(const std::string& text) {
  std::string value;
  for (const char c : as_utf8(text)) {
    if (c == '\\' || c == '"') value += '\\';
    value += c == '\n' ? std::string("\\n") : std::string(1, c);
  }
  return value;
}

static void put_head(const char* name, const char* help) {
  std::cout << "# HELP " << name << ' ' << help << "\n# TYPE " << name << " gauge\n";
}

static void put_labelled(const char* name, const char* label, const std::string& text,
                         int64_t value) {
  std::cout << name << '{' << label << "=\"" << visible{label_value(text)} << "\"} " << value
            << '\n';
}

void print_metrics(const dictionary_status& found) {
  put_head("tav_dictionary_info", "The dictionary that tav.conf names.");
  put_labelled("tav_dictionary_info", "dictionary", found.name, 1);
  for (const metric& row : METRICS) {
    put_head(row.name, row.help);
    std::cout << row.name << ' ' << row.value(found) << '\n';
  }
  for (const database_metric& row : DATABASE_METRICS) {
    put_head(row.name, row.help);
    for (const database_status& one : found.databases) {
      put_labelled(row.name, "database", one.number, one.*row.value);
    }
  }
}

}  // namespace dict
