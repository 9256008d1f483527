#include "dict/definitions.h"

#include "dd/values.h"
#include "deploy/import/import.h"
#include "dm/open.h"
#include "dm/ops/operations.h"

namespace dict {

static dd_flist get(dm::session& session, uint64_t database, dd_flist (*fetch_all)(dm::operation&),
                    dm::problem& why) {
  tav_ebuf ebuf{};
  const dd_flist request(tav_flist_create(&ebuf));
  dd_poid target(tav_poid_create(database, "/dd", 1, &ebuf));
  dd_put(request.get(), TAV_FLD_POID, 0, std::move(target), &ebuf);
  dm::operation op{session, request.get(), tav_node_of(request.get()), 0, {}};
  dd_flist output = dd_failed(ebuf)
                        ? dm::refuse(op, ebuf.err_code, 0, "There is not enough memory.")
                        : fetch_all(op);
  why = std::move(op.why);
  return output;
}

bool fetch(dm::session& session, uint64_t database, definitions& result, dm::problem& why) {
  dd_flist fields = get(session, database, dm::get_fields, why);
  dd_flist classes = fields != nullptr ? get(session, database, dm::get_classes, why) : nullptr;
  if (classes == nullptr) return false;
  result.fields.give(std::move(fields));
  result.classes.give(std::move(classes));
  return true;
}

bool fetch(const dm::settings& settings, uint64_t database, definitions& result, dm::problem& why) {
  dm::session session;
  session.settings = settings;
  session.store = dm::open_dictionary(settings, {}, why);
  return session.store != nullptr && fetch(session, database, result, why);
}

bool read_files(const std::vector<std::string>& files, definitions& result) {
  static tav_deploy_ctx_t ctx;
  for (const std::string& file : files) ctx.names[ctx.name_count++] = file.c_str();
  return tav_deploy_read_import_files(result.fields, result.classes, result.entries, ctx) >= 1 &&
         tav_deploy_get_error() >= 0;
}

}  // namespace dict
