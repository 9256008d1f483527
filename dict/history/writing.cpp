#include "dict/history/writing.h"

#include "dm/journal/write.h"

namespace dict {

bool begin_event(reading& from, dm::problem& why) {
  if (!begin_history(from, why)) return false;
  from.store->calls->rollback(from.store.get());
  dm::find_out_who();
  return from.store->calls->begin(from.store.get(), true, why);
}

bool write_event(reading& from, const char* kind, const std::string& detail, dm::problem& why) {
  dm::journal_draft draft;
  dm::journal_run run;
  const uint64_t login = from.settings.has_login ? from.settings.database : 0;
  return dm::add_event(*from.store, draft, run, {kind, 0, detail, login}, why);
}

}  // namespace dict
