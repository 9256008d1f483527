// Options that several commands take.
#ifndef DICT_OPTIONS_H
#define DICT_OPTIONS_H

#include <CLI/CLI.hpp>
#include <string>

namespace dict {

inline void add_database_option(CLI::App& command, std::string& database) {
  command.add_option("-d,--database", database, "The database, N.N.N.N, in place of the login's");
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
