#include "dm/ops/operations.h"

namespace dm {

dd_flist nothing_to_give(operation& op) {
  tav_ebuf ebuf{};
  dd_flist output(tav_flist_create(&ebuf));
  return output != nullptr ? std::move(output)
                           : refuse(op, ebuf.err_code, 0, "There is not enough memory.");
}

dd_flist refuse(operation& op, int32_t code, uint32_t field, std::string sentence) {
  op.why = {code, field, 0, 0, std::move(sentence)};
  return nullptr;
}

dd_flist refuse_writes(operation& op, const char* entry) {
  return refuse(op, TAV_ERR_WRITE_REFUSED, 0, writes_refused(entry));
}

}  // namespace dm
