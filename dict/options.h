// Options that several commands take.
#ifndef DICT_OPTIONS_H
#define DICT_OPTIONS_H

#include <CLI/CLI.hpp>
#include <string>

namespace dict {

inline void add_database_option(CLI::App& command, std::string& database) {
  command.add_option("-d,--database", database, "The database, N.N.N.N, in place of the login's");
}
// A point in the journal (dict/history/history.h).
inline void add_at_option(CLI::App& command, std::string& point) {
  command.add_option("--at", point,
                     "As it was after deployment N: its number, its tag, or a time such as "
                     "@2026-11-01, @2026-11-01T10:00 or @yesterday; 0: before the first");
}
inline void add_json_option(CLI::App& command, bool& is_json) {
  command.add_flag("--json", is_json, "Write JSON");
}
inline void add_colour_option(CLI::App& command, std::string& when) {
  command.add_option("--color", when, "auto, always or never")
      ->check(CLI::IsMember({"auto", "always", "never"}));
}

}  // namespace dict

#endif
