#include "lint/lint.h"

#include "deploy/modes.h"
#include "dparse/read/state.h"
#include "lint/check.h"
#include "lint/collect.h"
#include "lint/read.h"

namespace lint {

namespace {

// Reader and import keep their states for the whole process.
struct quiet_run {
  quiet_run() {
    tav_err_set_level(0);  // no log records: logs are about deployments
    reset();
  }
  ~quiet_run() { reset(); }
  quiet_run(const quiet_run&) = delete;
  quiet_run& operator=(const quiet_run&) = delete;

  static void reset() {
    dparse::reset();
    tav_deploy_verify_status = tav_deploy_conflict_status = 1;
    tav_deploy_fld_count = tav_deploy_class_count = 0;
  }
};

}  // namespace

result lint(const std::vector<source>& sources, const world& against) {
  const quiet_run run;
  const index all = index_of(sources);
  result found;
  found.is_off = against.is_off;
  reading read;
  read_sources(all, read, found);
  if (!sources.empty() && !is_full(found)) check_definitions(all, read, against, found);
  if (against.own)
    for (finding& each : against.own(all, room_in(found))) tell(found, std::move(each));
  put_in_order(found);
  found.is_off = nullptr;
  return found;
}

}  // namespace lint
