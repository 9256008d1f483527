// The command apply: carries out a plan exactly, or not at all.
#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>

#include "dd/database_number.h"
#include "dict/change/change.h"
#include "dict/diff/json.h"
#include "dict/options.h"
#include "dict/plan/deploy.h"
#include "dict/terminal/colour.h"
#include "dict/terminal/question.h"
#include "dict/terminal/visible.h"

namespace dict {

namespace {

struct request {
  std::string file;
  std::string database;
  bool allows_losses = false;
  bool is_sure = false;
  bool is_dry = false;
  bool is_json = false;
  std::string colour = "auto";
};

// What the command is at.
struct applying {
  const request& asked;
  plan made{};
  snapshot on{};
  std::vector<lint::source> sources{};
  judged files{};
};

}  // namespace

// --- For programs --------------------------------------------------------------------------------

// Where nothing was judged, there is no `told`.
static void print_json(const applying& in, const standing& now, const told_plan* told) {
  json_page page;
  const int64_t deployment = in.on.session.run.deployment;
  page.out.StartObject();
  put_flag(page.out, "dry_run", in.asked.is_dry);
  put_flag(page.out, "done", deployment != 0);
  put_number(page.out, "deployment", deployment);
  put_number(page.out, "applied_by", now.application);
  put_array(page.out, "refused", now.stale, put_refused);
  if (told != nullptr) {
    put_told(page.out, *told);
  } else if (now.is_done) {
    put_differences(page.out, {});
  } else {
    put_refused_differences(page.out, nullptr);
  }
  page.out.EndObject();
  print(page);
}

// --- Where there is nothing to deploy ------------------------------------------------------------

static int tell_stale(const standing& now) {
  if (now.application != 0)
    std::cout << "The plan was applied by deployment " << now.application
              << ", and what it changed was changed again since:\n";
  for (const dm::refused_change& each : now.stale) std::cout << visible{each.why.sentence} << '\n';
  std::cout << "Nothing was deployed: make the plan anew.\n";
  return FOUND;
}

static int tell(const applying& in, const standing& now) {
  if (in.asked.is_json) return print_json(in, now, nullptr), now.is_done ? DONE : FOUND;
  if (!now.is_done) return tell_stale(now);
  std::cout << "Nothing to do: ";
  if (now.application == 0) {
    std::cout << "everything is as the plan would make it.\n";
  } else {
    std::cout << "the plan was applied by deployment " << now.application << ".\n";
  }
  return DONE;
}

// --- Before anything is asked --------------------------------------------------------------------

static bool is_chosen(const applying& in, dm::problem& why) {
  uint64_t number = 0;
  if (in.asked.database.empty()) return true;
  if (!read_database(in.asked.database, number, why)) return false;
  if (number == in.made.database) return true;
  why.sentence = dm::join({"The plan is for database ", dd_database_text(in.made.database),
                           ", not for ", dd_database_text(number), "."});
  return false;
}

// Begins to write only where the store will refuse that, before it locks anything: it says why.
static bool is_store_writeable(applying& in, dm::problem& why) {
  dm::store* store = in.on.session.store.get();
  return store->calls->writeable(store) || dm::begin_write(in.on.session, why);
}

static bool is_writeable(applying& in, dm::problem& why) {
  const dm::settings& settings = in.on.session.settings;
  const bool needs_fields = !in.made.results.fields.empty();
  const bool needs_classes = !in.made.results.classes.empty();
  const char* entry = needs_fields && !settings.fields_writeable     ? "fields_writeable"
                      : needs_classes && !settings.objects_writeable ? "objects_writeable"
                                                                     : nullptr;
  if (entry == nullptr) return is_store_writeable(in, why);
  why.code = TAV_ERR_WRITE_REFUSED;
  why.sentence = dm::join({"The entry '", entry, "' of tav.conf does not allow to write."});
  return false;
}

static bool open(applying& in, dm::problem& why) {
  return read_plan(in.asked.file, in.made, why) && is_chosen(in, why) &&
         open_snapshot(in.on, why) && is_of(in.made, in.on, why) &&
         choose_database(in.made.database, in.on, why);
}

// --- What it would do ----------------------------------------------------------------------------

static bool is_allowed(const applying& in, const told_plan& told, dm::problem& why) {
  if (told.losses.empty() || in.asked.allows_losses) return true;
  why.sentence = dm::join({"The plan is destructive (", told.losses.front(),
                           told.losses.size() > 1 ? ", and more" : "",
                           "): --allow-destructive says that this is meant."});
  return false;
}

// --- Doing it ------------------------------------------------------------------------------------

// Asks a person. A script must say --yes.
static bool is_meant(const applying& in, dm::problem& why) {
  if (in.asked.is_sure) return true;
  if (in.asked.is_json) {
    why.sentence = NOBODY_ASKED;
    return false;
  }
  if (!can_ask()) {
    why.sentence = "There is nobody to ask whether to deploy this; --yes says that it is meant.";
    return false;
  }
  if (agrees("Deploy this?")) return true;
  why.sentence = "Nothing was deployed.";
  return false;
}

// While a person thinks nobody is kept waiting: what the plan saw must be so under the lock.
static int deploy(applying& in, const told_plan& told) {
  dm::problem why;
  standing now;
  if (!deploy_plan(in.on, in.made, in.files, now, why)) return fail(why);
  if (!can_deploy(now)) return tell(in, now);
  if (in.asked.is_json) return print_json(in, now, &told), DONE;
  std::cout << "Deployed as deployment " << in.on.session.run.deployment << ".\n";
  return DONE;
}

// --- The command ---------------------------------------------------------------------------------

static int show_and_deploy(applying& in) {
  dm::problem why;
  told_plan told{in.sources, in.files};
  if (!fetch_held(in.on, why) || !judge_and_tell(in.on, in.files, told, why)) return fail(why);
  const bool is_json = in.asked.is_json;
  if (!is_json) std::cout << as_text(told, is_coloured(in.asked.colour));
  if (is_json && is_refused(in.files)) print_json(in, {}, &told);
  if (is_refused(in.files)) return FAILED;
  if (!results_fit(in.made, in.files.result, why) || !is_allowed(in, told, why) ||
      !is_writeable(in, why))
    return fail(why);
  if (in.asked.is_dry && is_json) return print_json(in, {}, &told), DONE;
  if (in.asked.is_dry) return std::cout << "Nothing was deployed (--dry-run).\n", DONE;
  return is_meant(in, why) ? deploy(in, told) : fail(why);
}

static int run(const request& asked) {
  applying in{asked};
  dm::problem why;
  standing now;
  if (!open(in, why) || !find_standing(*in.on.session.store, in.on.database, in.made, now, why))
    return fail(why);
  if (!can_deploy(now)) return tell(in, now);
  in.sources.push_back({asked.file, syntax::read(in.made.definitions)});
  const int status = show_and_deploy(in);
  in.on.held.fields.leave();
  in.on.held.classes.leave();
  return status;
}

void add_apply(CLI::App& app, int& result) {
  const auto asked = std::make_shared<request>();
  auto* command =
      app.add_subcommand("apply", "Deploy a plan: exactly what it says, or nothing at all");
  command->add_option("PLAN", asked->file, "The file that 'plan --output' wrote")->required();
  command->add_option("-d,--database", asked->database, "The database that the plan must be for");
  command->add_flag("--allow-destructive", asked->allows_losses,
                    "Take a plan that drops entries or makes a LENGTH shorter");
  command->add_flag("--yes", asked->is_sure, "Do not ask");
  command->add_flag("--dry-run", asked->is_dry, "Show what it would do and whether it would");
  add_json_option(*command, asked->is_json);
  add_colour_option(*command, asked->colour);
  command->callback([asked, &result] { result = run(*asked); });
}

}  // namespace dict
