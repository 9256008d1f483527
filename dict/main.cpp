// tav_dict: makes and looks after the dictionary that tav.conf names.
#include <CLI/CLI.hpp>

#include "dict/commands.h"
#include "dm/schema.h"

static constexpr char DESCRIPTION[] =
    "Makes and looks after the dictionary that tav.conf names.\n"
    "tav.conf is found at $TAV_CONF, else in the working folder, else in /etc/tav.\n"
    "Exit status: 0, 1 when 'check' found something, 2 for wrong usage or a failure.";

int main(int argc, char** argv) {
  CLI::App app(DESCRIPTION, "tav_dict");
  app.set_version_flag("--version", "tav_dict " TAV_DICT_VERSION ", schema version " +
                                        std::to_string(dm::SCHEMA_VERSION));
  app.require_subcommand(1);
  std::string number;
  int result = dict::FAILED;
  app.add_subcommand("init", "Make the dictionary, with the database of 'userid'")->callback([&] {
    result = dict::init();
  });
  auto* add = app.add_subcommand("add-database", "Add a database to the dictionary");
  add->add_option("number", number, "Its number, N.N.N.N")->required();
  add->callback([&] { result = dict::add_database(number); });
  app.add_subcommand("status", "Say what the dictionary holds and whether it can be written")
      ->callback([&] { result = dict::status(); });
  app.add_subcommand("check", "Verify the dictionary's integrity and every rule of its content")
      ->callback([&] { result = dict::check(); });
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? dict::DONE : dict::FAILED;
  } catch (const std::exception& error) {
    std::cerr << "tav_dict: " << error.what() << '\n';
    return dict::FAILED;
  }
  std::cout.flush();
  return std::cout.good() ? result : static_cast<int>(dict::FAILED);
}
