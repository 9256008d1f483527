#include "dd/descriptors.h"

#include <fcntl.h>
#include <unistd.h>

bool dd_fill_descriptors() {
  static constexpr struct {
    int descriptor;
    int flags;  // the way in which it is not used
  } standard[] = {{STDIN_FILENO, O_WRONLY}, {STDOUT_FILENO, O_RDONLY}, {STDERR_FILENO, O_RDONLY}};
  for (const auto& row : standard) {
    if (fcntl(row.descriptor, F_GETFD) >= 0) continue;
    // The lowest free descriptor is given: those below are open by now.
    if (open("/dev/null", row.flags) != row.descriptor) return false;
  }
  return true;
}
