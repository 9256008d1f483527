#include "dict/plan/deploy.h"

#include "dd/call.h"
#include "vantor/binding.h"

namespace dict {

static constexpr char MODULE[] = "tav_dict";

bool can_deploy(const standing& now) {
  return !now.is_done && now.stale.empty();
}

bool results_fit(const plan& made, const dm::deployment_result& result, dm::problem& why) {
  const digests_of_things results = results_of(result);
  if (results.fields == made.results.fields && results.classes == made.results.classes) return true;
  why.sentence =
      "The definitions of the plan would come to something else than when it was made, by another "
      "version of this program: make it anew.";
  return false;
}

static bool commit(snapshot& on, const plan& made, const dm::deployment_result& result,
                   dm::problem& why) {
  const std::string detail = "{\"plan\":\"" + made.digest + "\"}";
  if (!dm::commit_write(on.session, dm::journal_kind::APPLY, made.database, why, detail))
    return false;
  for (const std::string& note : result.notes)
    tav_component_log(tav_component::DM, 1, note.c_str(), HERE);
  return true;
}

// Digests tell more than stamps, so what the session has fetched does not count.
bool deploy_plan(snapshot& on, const plan& made, const judged& files, standing& now,
                 dm::problem& why) {
  dm::deployment_result result;
  on.session.seen.clear();
  if (!dm::begin_write(on.session, why) || !choose_database(made.database, on, why) ||
      !find_standing(*on.session.store, on.database, made, now, why))
    return false;
  return !can_deploy(now) ||
         (dm::write_deployment(on.session, lists_of(files, made.database), result, why) &&
          results_fit(made, result, why) && commit(on, made, result, why));
}

}  // namespace dict
