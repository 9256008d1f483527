// The command upgrade: from an older schema version to this program's.
#include <iostream>
#include <memory>

#include "dict/backup.h"
#include "dict/commands.h"
#include "dict/database_files.h"
#include "dict/options.h"
#include "dict/terminal/progress.h"
#include "dict/terminal/visible.h"
#include "dm/journal/begin.h"
#include "dm/open.h"
#include "dm/schema.h"

namespace dict {

// Where the backup goes if nobody says: beside a file, else into the working folder.
static std::string backup_name(const dm::settings& settings, dm::store& store, int version) {
  const bool is_file = settings.dictionary.rfind("sqlite:", 0) == 0;
  const std::string place = is_file ? store.calls->name(&store) : "./dictionary";
  return place + ".version-" + std::to_string(version);
}

// The write lock is held from before the backup until the end, so that the backup is what is
// upgraded.
static int run(const std::string& chosen) {
  dm::settings settings;
  dm::problem why;
  dm::open_options options;
  options.may_upgrade = true;
  if (!spares_companions(chosen, why) || !dm::read_settings(settings, why)) return fail(why);
  const dm::store_owner store = dm::open_dictionary(settings, options, why);
  if (store == nullptr) return fail(why);
  const visible name{store->calls->name(store.get())};
  dm::find_out_who();
  if (!store->calls->begin(store.get(), true, why)) return fail(why);
  const int version = store->calls->schema_version(store.get());
  if (version == dm::SCHEMA_VERSION) {
    std::cout << "Dictionary " << name << " has schema version " << version << " already.\n";
    return DONE;
  }
  const std::string file = chosen.empty() ? backup_name(settings, *store, version) : chosen;
  progress shown("copying rows");
  const bool is_copied = write_backup(*store, file, shown, why);
  hide(shown);
  if (!is_copied) return fail(why);
  std::cout << "Wrote backup " << visible{file} << "." << std::endl;
  if (!dm::upgrade_dictionary(*store, why) || !store->calls->commit(store.get(), why)) {
    return fail(why);
  }
  std::cout << "Upgraded dictionary " << name << " from schema version " << version << " to "
            << dm::SCHEMA_VERSION << ".\n";
  return DONE;
}

void add_upgrade(CLI::App& app, int& result) {
  const auto file = std::make_shared<std::string>();
  auto* command = app.add_subcommand(
      "upgrade", "Bring a dictionary of an older schema version to this program's");
  command->add_option("--backup", *file,
                      "Where the backup goes, in place of NAME.version-N beside the dictionary");
  command->callback([file, &result] { result = run(*file); });
}

}  // namespace dict
