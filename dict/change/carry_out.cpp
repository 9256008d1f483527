#include <algorithm>
#include <iostream>

#include "dict/change/change.h"
#include "dict/diff/json.h"
#include "dict/history/moments.h"
#include "dict/terminal/question.h"
#include "dict/terminal/visible.h"
#include "dm/changes/back.h"

namespace dict {

namespace {

// What came of it.
struct outcome {
  const change_options& how;
  std::vector<difference> found{};
  dm::change_result result{};
  bool differs = false;  // what is wanted is not what is there, be it in spelling alone
  bool is_done = false;
};

}  // namespace

// --- What differs --------------------------------------------------------------------------------

static bool add_pair(intended_change& change, const dm::wanted_thing& thing,
                     definitions_maker& before, definitions_maker& after, bool& differs,
                     dm::problem& why) {
  std::optional<std::string> state;
  if (!dm::present_state(*change.from.store, change.from.database.id, thing.what, thing.name, state,
                         why)) {
    return false;
  }
  if (state == thing.state) return true;
  differs = true;
  return ((!state || before.add(thing.what, thing.name, *state, why)) &&
          (!thing.state || after.add(thing.what, thing.name, *thing.state, why)));
}

static bool compare_all(intended_change& change, outcome& all, dm::problem& why) {
  definitions before, after;
  definitions_maker make_before(before), make_after(after);
  for (const dm::wanted_thing& thing : change.wanted) {
    if (!add_pair(change, thing, make_before, make_after, all.differs, why)) return false;
  }
  progress shown("comparing");
  return make_before.finish(why) && make_after.finish(why) &&
         compare(before, after, {false, true, shown}, all.found, why);
}

// --- Telling -------------------------------------------------------------------------------------

// Whether anything would be changed, or was.
static bool is_changing(const outcome& all) {
  return all.result.changes != 0;
}

void put_refused(json_writer& out, const dm::refused_change& refused) {
  const char* what = refused.what == dm::change_of::FIELD ? "field" : "class";
  out.StartObject();
  put_member(out, "what", refused.name.empty() ? "" : what);
  put_member(out, "name", refused.name);
  put_member(out, "sentence", refused.why.sentence);
  put_number(out, "deployment", refused.by.deployment);
  out.EndObject();
}

static void put_told(json_writer& out, const intended_change& change, const outcome& all) {
  const bool is_told = is_changing(all);
  put_texts(out, "notes", is_told ? change.notes : std::vector<std::string>());
  out.Key("respelled");
  if (!is_told || change.respelled.first.empty()) return (void)out.Null();
  out.StartObject();
  put_member(out, "from", change.respelled.first);
  put_member(out, "to", change.respelled.second);
  out.EndObject();
}

static void print_json(const intended_change& change, const outcome& all) {
  json_page page;
  page.out.StartObject();
  put_flag(page.out, "dry_run", all.how.is_trial);
  put_flag(page.out, "done", all.is_done && !all.how.is_trial && all.result.record != 0);
  put_number(page.out, "deployment", all.how.is_trial ? 0 : all.result.record);
  put_array(page.out, "refused", all.result.refused, put_refused);
  put_told(page.out, change, all);
  put_differences(page.out, all.found);
  page.out.EndObject();
  print(page);
}

// With the time on the clock of whoever reads it.
static std::string sentence_of(const dm::refused_change& refused) {
  std::string sentence = refused.why.sentence;
  const std::string& time = refused.by.time;
  const size_t at = time.empty() ? sentence.npos : sentence.find(time);
  return at == sentence.npos ? sentence : sentence.replace(at, time.size(), local_time(time));
}

void print_refused(const std::vector<dm::refused_change>& all) {
  for (const dm::refused_change& refused : all) {
    std::cerr << "tav_dict: " << visible{sentence_of(refused)} << '\n';
  }
  std::cerr << "tav_dict: Refused: nothing was changed.\n";
}

static int tell_end(const intended_change& change, const outcome& all) {
  if (all.how.is_json) print_json(change, all);
  if (dm::failed(all.result.failure)) return fail(all.result.failure);
  if (!all.result.refused.empty()) {
    if (!all.how.is_json) print_refused(all.result.refused);
    return FOUND;
  }
  if (all.how.is_json) return DONE;
  if (!is_changing(all)) {
    std::cout << "There is nothing to do.\n";
  } else if (all.how.is_trial) {
    std::cout << "Nothing was changed: this was a dry run.\n";
  } else {
    std::cout << "Done: this is deployment " << all.result.record << ".\n";
  }
  return DONE;
}

// What is predefined is never compared; that it should go will be refused.
static bool anything_goes(const intended_change& change) {
  return std::any_of(change.wanted.begin(), change.wanted.end(),
                     [](const dm::wanted_thing& thing) { return !thing.state; });
}

// Where definitions would be told apart by nothing, that is said of it what can be said.
static void tell_differences(const intended_change& change, const outcome& all) {
  if (all.how.is_json || !all.differs) return;
  const auto& [old_name, new_name] = change.respelled;
  if (!all.found.empty()) {
    std::cout << as_text(all.found, {}, false);
  } else if (!old_name.empty()) {
    std::cout << "Only the spelling changes: " << visible{old_name} << " -> " << visible{new_name}
              << ".\n";
  } else if (!anything_goes(change)) {
    std::cout << "Only what is no difference between definitions changes, such as spelling.\n";
  }
  std::cout.flush();
}

static void tell_notes(const intended_change& change, const outcome& all) {
  if (all.how.is_json || !is_changing(all)) return;
  for (const std::string& note : change.notes) {
    std::cerr << "tav_dict: Note: " << visible{note} << '\n';
  }
}

// --- Doing ---------------------------------------------------------------------------------------

// Who made what stands against an undo.
static void find_makers(intended_change& change, outcome& all) {
  dm::store* store = change.from.store.get();
  dm::problem why;
  if (change.undone == 0 || all.result.refused.empty()) return;
  if (!store->calls->begin(store, false, why) ||
      !dm::find_makers(*store, change.from.database, change.undone, all.result.refused, why)) {
    all.result.failure = why;
  }
  store->calls->rollback(store);
}

static bool change_all(intended_change& change, bool is_trial, outcome& all) {
  dm::change_purpose purpose;
  purpose.detail = change.detail;
  purpose.is_trial = is_trial;
  purpose.seen_end = change.seen_end;
  const bool is_done =
      dm::change_things(*change.from.store, change.from.settings, change.from.database.number,
                        change.wanted, purpose, all.result);
  find_makers(change, all);
  return is_done;
}

// A person is asked only about what would be done. While one thinks nobody is kept waiting.
static int try_and_ask(intended_change& change, outcome& all) {
  if (!change_all(change, true, all) || all.result.changes == 0) return tell_end(change, all);
  tell_notes(change, all);
  if (!agrees("Do that?")) {
    dm::problem why;
    why.sentence = "Nothing was changed.";
    return fail(why);
  }
  all.is_done = change_all(change, false, all);
  return tell_end(change, all);
}

bool may_ask(const change_options& how, dm::problem& why) {
  if (how.is_json) {
    why.sentence = NOBODY_ASKED;
  } else if (!can_ask()) {
    why.sentence = "There is nobody to ask; --yes says that it is meant, --dry-run only tells.";
  }
  return why.sentence.empty();
}

int carry_out(intended_change& change, const change_options& how) {
  outcome all{how};
  dm::problem why;
  const bool asks = !how.is_trial && !how.is_sure;
  all.result.refused = change.refused;
  if (!change.refused.empty()) return tell_end(change, all);
  if (!compare_all(change, all, why)) return fail(why);
  if (!all.differs) return tell_end(change, all);
  if (asks && !may_ask(how, why)) return fail(why);
  tell_differences(change, all);
  if (asks) return try_and_ask(change, all);
  all.is_done = change_all(change, how.is_trial, all);
  tell_notes(change, all);
  return tell_end(change, all);
}

}  // namespace dict
