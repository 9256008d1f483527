// The command.
#include "dict/status/status.h"

#include <memory>

#include "dd/database_number.h"
#include "dict/commands.h"
#include "dict/options.h"
#include "dict/reading.h"
#include "dm/journal/read.h"
#include "dm/open.h"

namespace dict {

namespace {

struct request {
  bool is_json = false;
  bool is_metrics = false;
};

}  // namespace

static bool count(dm::store& store, dictionary_status& found, dm::problem& why) {
  std::vector<dm::database_row> rows;
  auto note = [&](const dm::database_row& row) { return rows.push_back(row), true; };
  if (!store.calls->databases(&store, dm::visit<dm::database_row>(note), why)) return false;
  for (const dm::database_row& row : rows) {
    database_status& one = found.databases.emplace_back();
    one.number = dd_database_text(row.number);
    if (!store.calls->count(&store, row.id, dm::counted::FIELDS, one.fields, why) ||
        !store.calls->count(&store, row.id, dm::counted::CLASSES, one.classes, why)) {
      return false;
    }
  }
  return true;
}

static bool read_journal(dm::store& store, dictionary_status& found, dm::problem& why) {
  if (!dm::has_journal(store)) return true;
  const auto look = [&](const dm::journal_record& record) {
    if (!dm::is_deployment(record.kind)) return true;
    found.deployment = record.deployment;
    found.deployment_time = record.time;
    return false;
  };
  dm::journal_range backwards;
  backwards.newest_first = true;
  return store.calls->identity(&store, found.identity, why) &&
         store.calls->journal_end(&store, found.head, why) &&
         dm::walk_records(store, backwards, look, why);
}

static int run(const request& asked) {
  dm::settings settings;
  dm::problem why;
  if (asked.is_json && asked.is_metrics) {
    why.sentence = "'status' writes either JSON or metrics, not both.";
    return fail(why);
  }
  if (!dm::read_settings(settings, why)) return fail(why);
  tell_unknown_entries();
  const dm::store_owner store = dm::open_dictionary(settings, {}, why);
  if (store == nullptr || !store->calls->begin(store.get(), false, why)) return fail(why);
  const bool is_writeable = store->calls->writeable(store.get());
  dictionary_status found{
      store->calls->name(store.get()), store->calls->schema_version(store.get()), is_writeable,
      is_writeable && settings.fields_writeable, is_writeable && settings.objects_writeable};
  if (!count(*store, found, why) || !read_journal(*store, found, why)) return fail(why);
  const bool is_for_people = !asked.is_json && !asked.is_metrics;
  if (!is_for_people && !store->calls->size(store.get(), found.bytes, why)) return fail(why);
  if (is_for_people) print_text(found);
  if (asked.is_json) print_json(found);
  if (asked.is_metrics) print_metrics(found);
  return DONE;
}

void add_status(CLI::App& app, int& result) {
  const auto asked = std::make_shared<request>();
  auto* command =
      app.add_subcommand("status", "Say what the dictionary holds and whether it can be written");
  add_json_option(*command, asked->is_json);
  command->add_flag("--metrics", asked->is_metrics, "Write metrics in Prometheus' text format");
  command->callback([asked, &result] { result = run(*asked); });
}

}  // namespace dict
