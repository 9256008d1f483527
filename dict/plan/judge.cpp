// One snapshot, and what lint and the data manager say of definition files in it.
#include <algorithm>
#include <new>
#include <set>

#include "dd/database_number.h"
#include "dd/values.h"
#include "dict/diff/losses.h"
#include "dict/lint/refusals.h"
#include "dict/plan/plan.h"
#include "dm/folded.h"
#include "dm/open.h"
#include "lint/lint.h"
#include "lint/rules.h"

namespace dict {

// --- One snapshot --------------------------------------------------------------------------------

bool open_snapshot(snapshot& on, dm::problem& why) {
  dm::session& session = on.session;
  if (!dm::read_settings(session.settings, why)) return false;
  session.store = dm::open_dictionary(session.settings, {}, why);
  return session.store != nullptr && begin_snapshot(on, why);
}

bool begin_snapshot(snapshot& on, dm::problem& why) {
  dm::store* store = on.session.store.get();
  if (!dm::begin_read(on.session, why)) return false;
  return !dm::has_journal(*store) || (store->calls->identity(store, on.identity, why) &&
                                      store->calls->journal_end(store, on.head, why));
}

bool choose_database(uint64_t number, snapshot& on, dm::problem& why) {
  return dm::find_database(*on.session.store, number, 0, on.database, why);
}

bool fetch_held(snapshot& on, dm::problem& why) {
  return fetch(on.session, on.database.number, on.held, why);
}

// --- Judging -------------------------------------------------------------------------------------

namespace {

// Whether this user may write is asked when a plan is applied.
struct as_if_writeable {
  dm::settings& settings;
  dm::settings before = settings;

  explicit as_if_writeable(dm::settings& changed) : settings(changed) {
    settings.fields_writeable = settings.objects_writeable = true;
  }
  ~as_if_writeable() {
    settings.fields_writeable = before.fields_writeable;
    settings.objects_writeable = before.objects_writeable;
  }
  as_if_writeable(const as_if_writeable&) = delete;
  as_if_writeable& operator=(const as_if_writeable&) = delete;
};

}  // namespace

static void take(const lint::deployment& sent, definitions& to) {
  tav_ebuf ebuf{};
  dd_flist classes(tav_flist_create(&ebuf));
  for (tav_flist_t* storable : sent.classes) {
    dd_append(classes.get(), TAV_FLD_OBJ_DESC, dd_flist(tav_flist_copy(storable, &ebuf)), &ebuf);
  }
  to.fields.give(dd_flist(tav_flist_copy(sent.fields, &ebuf)));
  to.classes.give(std::move(classes));
  if (dd_failed(ebuf)) throw std::bad_alloc();
}

dm::deployment_lists lists_of(const judged& files, uint64_t database) {
  return {database, files.sent.fields.get(), files.sent.classes.get()};
}

bool try_lists(snapshot& on, judged& files, dm::problem& why) {
  const as_if_writeable allowed(on.session.settings);
  return dm::try_deployment(on.session, lists_of(files, on.database.number), files.result, why);
}

// The data manager tells its first refusal; which others there are, its rules are asked only then.
static std::vector<lint::refusal> refused(snapshot& on, const lint::deployment& sent,
                                          judged& result) {
  take(sent, result.sent);
  if (try_lists(on, result, result.refusal)) return {};
  return refusals_of(on.held.fields.get(), on.held.classes.get(), sent);
}

static bool is_syntax(const lint::finding& found) {
  return lint::find_rule(found.rule)->from == lint::origin::SYNTAX;
}

void judge(snapshot& on, const std::vector<lint::source>& sources, judged& result) {
  const lint::world world{
      .fields = on.held.fields.get(),
      .classes = on.held.classes.get(),
      .refuse = [&](const lint::deployment& sent) { return refused(on, sent, result); },
      .ends_soon = true};
  lint::result found = lint::lint(sources, world);
  std::erase_if(found.told, [](const auto& each) { return each.told != lint::level::ERROR; });
  result.untold = found.untold[static_cast<size_t>(lint::level::ERROR)];
  result.is_readable =
      result.sent.fields.get() != nullptr && std::ranges::none_of(found.told, is_syntax);
  result.errors = lint::outcomes_of(std::move(found.told), sources);
  // It is one of these, or was asked of what the reader left.
  if (!result.errors.empty() || result.untold > 0) result.refusal = {};
}

bool is_refused(const judged& files) {
  return !files.errors.empty() || files.untold > 0 || dm::failed(files.refusal);
}

// --- Differences ---------------------------------------------------------------------------------

static bool find_differences(snapshot& on, judged& files, std::vector<difference>& found,
                             dm::problem& why) {
  if (!files.is_readable) return true;
  progress shown("comparing");
  return compare(on.held, files.sent, {true, false, shown}, found, why);
}

static std::vector<std::string> rewritten(const judged& files,
                                          const std::vector<difference>& found) {
  std::set<std::string> differing;
  for (const difference& d : found) {
    if (d.kind != change::KEPT) differing.insert(dm::folded(d.name));
  }
  std::vector<std::string> names;
  for (const dm::outcome& one : files.result.changes) {
    if (differing.count(dm::folded(one.name)) == 0) names.push_back(one.name);
  }
  return names;
}

bool judge_and_tell(snapshot& on, judged& files, told_plan& told, dm::problem& why) {
  judge(on, told.sources, files);
  if (!find_differences(on, files, told.found, why)) return false;
  if (!is_refused(files)) told.rewritten = rewritten(files, told.found);
  told.losses = losses_of(told.found);
  if (on.database.number != on.session.settings.database)
    told.database = dd_database_text(on.database.number);
  return true;
}

}  // namespace dict
