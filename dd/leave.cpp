#include "dd/leave.h"

#include <vector>

void dd_leave(dd_flist list) {
  // Never destroyed, but reachable: leak checkers know it for what it is.
  static auto& left = *new std::vector<tav_flist_t*>;
  left.push_back(list.get());
  (void)list.release();
}
