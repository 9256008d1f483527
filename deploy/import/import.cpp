// The modes `verify`, `create` and `replace`: a table of steps, and the loop that takes them.
#include "deploy/import/import.h"

#include <span>
#include <utility>

#include "dd/memory.h"
#include "deploy/report.h"

static constexpr char MODULE[] = "tav_deploy_import";

static int count_input(deploy::import_state& state) {
  tav_ebuf ebuf{};
  tav_deploy_fld_count = state.fields.count(at(&ebuf, HERE));
  tav_deploy_class_count = state.classes.count(at(&ebuf, HERE));
  return dd_failed(ebuf) ? deploy::call_failed(HERE, ebuf) : 1;
}

// A login without an identity leaves the buffer clear: the retrieval then tells what is missing.
static int log_in(deploy::import_state& state) {
  tav_ebuf ebuf{};
  tav_deploy_login(state.session, &ebuf);
  return dd_failed(ebuf) ? -1 : 1;
}

static int fetch_fields(deploy::import_state& state) {
  return tav_deploy_get_dd_fields(state.session, state.server_fields, state.ctx->database, nullptr);
}

static int fetch_classes(deploy::import_state& state) {
  return tav_deploy_get_dd_classes(state.session, state.server_classes, state.ctx->database,
                                   nullptr);
}

static int commit(deploy::import_state& state, uint32_t flags) {
  return tav_deploy_import_commit(state.session.connection, flags, state.session.identity.get(),
                                  state.fields.get(), state.classes.get(), state.ctx->database);
}

// The input's classes in the order in which the server takes them.
static int put_in_order(deploy::import_state& state) {
  tav_ebuf ebuf{};
  dd_list ordered(DD_CLASSES, dd_flist(tav_flist_create(at(&ebuf, HERE))));
  dd_list_walk walk(state.ordered_classes);
  while (tav_flist_t* storable = walk.next(at(&ebuf, HERE))) {
    dd_flist copy(tav_flist_copy(storable, at(&ebuf, HERE)));
    ordered.append(std::move(copy), at(&ebuf, HERE));
  }
  state.working_fields.give(nullptr);
  state.working_classes.give(nullptr);
  state.ordered_classes.give(nullptr);
  state.entries = {};
  state.classes.leave();
  state.classes = std::move(ordered);
  return dd_failed(ebuf) ? deploy::call_failed(HERE, ebuf) : 1;
}

static int try_commit(deploy::import_state& state) {
  if (put_in_order(state) < 1) return -1;
  return tav_deploy_get_error() >= 0 ? commit(state, TAV_DEPLOY_COMMIT_TRIAL) : 1;
}

static int judge(deploy::import_state&) {
  return tav_deploy_get_error();
}

namespace {

// What a mode does about an input with or without conflicts.
struct outcome {
  uint32_t mode;
  bool conflict;
  deploy::finding told;
  bool commits;
  int result;  // of an outcome that does not commit
};

constexpr outcome OUTCOMES[] = {
    {TAV_DEPLOY_MODE_VERIFY, false, "no-conflicts", false, 1},
    {TAV_DEPLOY_MODE_VERIFY, true, "conflicts", false, -1},
    {TAV_DEPLOY_MODE_CREATE, false, "no-conflicts", true, 1},
    {TAV_DEPLOY_MODE_CREATE, true, "conflicts-not-committed", false, 1},
    {TAV_DEPLOY_MODE_REPLACE, false, {}, true, 1},
    {TAV_DEPLOY_MODE_REPLACE, true, "conflicts-committed", true, 1},
};

}  // namespace

static int conclude(deploy::import_state& state) {
  const bool conflict = tav_deploy_get_conflict() < 1;
  for (const outcome& o : OUTCOMES) {
    if (o.mode != state.ctx->mode || o.conflict != conflict) continue;
    if (o.told) deploy::report(HERE, o.told);
    return o.commits ? commit(state, TAV_DEPLOY_COMMIT_REAL) : o.result;
  }
  return -1;
}

static bool always() {
  return true;
}
static bool has_input() {
  return tav_deploy_fld_count > 0 || tav_deploy_class_count > 0;
}
static bool has_classes() {
  return tav_deploy_class_count > 0;
}

namespace {

struct step {
  bool (*applies)();
  int (*run)(deploy::import_state& state);
  bool ends_with_errors_detected;
  deploy::finding failures[2];
};

constexpr step STEPS[] = {
    {always, deploy::import_read, false, {"files-not-read"}},
    {always, count_input, true, {}},
    {has_input, log_in, true, {"login-failed"}},
    {has_input, fetch_fields, true, {"server-fields-not-retrieved"}},
    {has_classes, fetch_classes, true, {"server-classes-not-retrieved"}},
    {always, deploy::import_fields, true, {"fields-not-checked"}},
    {has_classes,
     deploy::import_classes,
     true,
     {"conflicting-classes-not-checked", "classes-not-checked"}},
    {has_classes, deploy::import_order, true, {"superclasses-not-checked", "classes-not-checked"}},
    {has_classes,
     deploy::import_structure,
     true,
     {"superclasses-not-checked", "classes-not-checked"}},
    {has_classes, deploy::import_storage, true, {"storage-not-checked"}},
    {always, try_commit, true, {}},
    {always, judge, true, {}},
    {always, conclude, false, {}},
};

}  // namespace

// A step whose memory runs out ends like one of whose calls that is told.
static int take(const step& s, deploy::import_state& state) {
  tav_ebuf ebuf{};
  int result = -1;
  dd_with_memory(at(&ebuf, HERE), [&] { result = s.run(state); });
  return dd_failed(ebuf) ? deploy::call_failed(HERE, ebuf) : result;
}

static const step* first_failing(deploy::import_state& state, std::span<const step> steps) {
  for (const step& s : steps) {
    if (s.applies() && take(s, state) < 1) return &s;
  }
  return nullptr;
}

static int tell_failure(const step& failed) {
  for (const deploy::finding failure : failed.failures) {
    if (failure) deploy::report(HERE, failure);
  }
  return -1;
}

static int step_failed(const step& failed) {
  tell_failure(failed);
  return failed.ends_with_errors_detected ? deploy::report(HERE, "errors") : -1;
}

static int run(deploy::import_state& state) {
  const step* failed = first_failing(state, STEPS);
  return failed != nullptr ? step_failed(*failed) : 1;
}

static void leave_lists(deploy::import_state& state) {
  for (dd_list* list :
       {&state.fields, &state.classes, &state.working_fields, &state.working_classes}) {
    list->leave();
  }
}

int deploy::import_try(deploy::import_state& state) {
  static_assert(STEPS[0].run == deploy::import_read && std::end(STEPS)[-1].run == conclude);
  const step* failed = first_failing(state, std::span(STEPS).subspan(1, std::size(STEPS) - 2));
  const int result = failed != nullptr ? tell_failure(*failed) : 1;
  leave_lists(state);
  return result;
}

int tav_deploy_import(tav_deploy_ctx_t* ctx) {
  deploy::import_state state{.ctx = ctx};
  const int result = run(state);
  if (result >= 1 && tav_deploy_get_error() >= 1) deploy::log_out(state.session);
  leave_lists(state);
  return result;
}
