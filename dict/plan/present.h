// The digests of fields and classes as they are.
#ifndef DICT_PLAN_PRESENT_H
#define DICT_PLAN_PRESENT_H

#include <string>

#include "dict/plan/plan.h"
#include "dm/folded.h"

namespace dict {

// Looks each up when it is asked for, or reads all at once where many will be. Needs an open
// transaction.
class present_digests {
 public:
  present_digests(dm::store& store, int64_t database, size_t expected);
  // ABSENT where the thing is not there. False when the store fails.
  bool find(dm::change_of what, const std::string& name, std::string& digest, dm::problem& why);

 private:
  bool read_all(dm::problem& why);

  dm::store& store_;
  int64_t database_;
  bool reads_all_;
  bool has_all_ = false;
  dm::key_map<std::string> all_{};  // by dm::thing_key
};

}  // namespace dict

#endif
