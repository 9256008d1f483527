// What `replace` would say of the files: the import's own checks, and its trial.
#include <algorithm>
#include <new>

#include "dd/report.h"
#include "deploy/import/import.h"
#include "dict/diff/diff.h"
#include "dm/data_manager.h"

namespace dict {

// Whether a text that the import prints is an error to be shown: warnings stop nothing, and the
// display of an error buffer only refers to a log record, whose sentence is shown instead.
static bool is_error(const std::string& text) {
  const auto begins = [&](const char* start) { return text.rfind(start, 0) == 0; };
  return begins("Error: ") && !begins("Error: [location=");
}

// Whether the problem is in reaching or writing the dictionary, not in the files.
static bool is_about_the_dictionary(const dm::problem& why) {
  static constexpr int32_t CODES[] = {TAV_ERR_WRITE_REFUSED, TAV_ERR_NOT_FOUND, TAV_ERR_BAD_CONF,
                                      TAV_ERR_UNKNOWN_DATABASE};
  return why.is_unreachable || is_of_the_system(why) ||
         std::find(std::begin(CODES), std::end(CODES), why.code) != std::end(CODES);
}

// Whether memory ran out in the import or the data manager, which says nothing about the files. The
// import shows it only by displaying its error buffer.
static bool lacks_memory(const std::vector<std::string>& texts,
                         const std::vector<dm::problem>& problems) {
  const std::string sign = tav_taverr_to_str(TAV_ERR_NO_MEM);
  return std::any_of(problems.begin(), problems.end(),
                     [](const dm::problem& why) { return why.code == TAV_ERR_NO_MEM; }) ||
         std::any_of(texts.begin(), texts.end(), [&](const std::string& text) {
           return text.rfind("Error: [location=", 0) == 0 && text.find(sign) != text.npos;
         });
}

static answer judge(bool is_connected, const std::vector<dm::problem>& problems) {
  const bool is_open = problems.empty()
                           ? !is_connected
                           : std::all_of(problems.begin(), problems.end(), is_about_the_dictionary);
  return is_open ? answer::UNKNOWN : answer::REFUSED;
}

static void put_messages(const std::vector<std::string>& texts,
                         const std::vector<dm::problem>& problems,
                         std::vector<std::string>& messages) {
  for (const std::string& text : texts) {
    if (is_error(text)) messages.push_back(text.substr(0, text.find_last_not_of('\n') + 1));
  }
  for (const dm::problem& why : problems) messages.push_back(why.sentence);
}

trial_result try_replace(definitions& files, uint64_t database) {
  static tav_deploy_ctx_t ctx;
  ctx.mode = TAV_DEPLOY_MODE_REPLACE;
  ctx.database = database;
  deploy::import_state state{.ctx = &ctx};
  state.fields = std::move(files.fields);
  state.classes = std::move(files.classes);
  state.entries = std::move(files.entries);
  std::vector<std::string> texts;
  std::vector<dm::problem> problems;
  tav_err_set_level(0);  // no log records: logs are about deployments, and this only tries one
  dd_take_errors(&texts);
  dm::note_problems(&problems);
  const bool is_taken = deploy::import_try(state) >= 1;
  dm::note_problems(nullptr);
  dd_take_errors(nullptr);
  if (is_taken) return {answer::TAKEN};
  if (lacks_memory(texts, problems)) throw std::bad_alloc();
  trial_result refused{judge(state.session.connection != nullptr, problems)};
  put_messages(texts, problems, refused.messages);
  return refused;
}

}  // namespace dict
