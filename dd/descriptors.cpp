#include "dd/descriptors.h"

#include <fcntl.h>
#include <unistd.h>

bool dd_fill_descriptors() {
  static constexpr struct {
    int descriptor;
    int flags;  // opened only for what it is not used for, so that using it fails
  } standard[] = {{STDIN_FILENO, O_WRONLY}, {STDOUT_FILENO, O_RDONLY}, {STDERR_FILENO, O_RDONLY}};
  for (const auto& row : standard) {
    if (fcntl(row.descriptor, F_GETFD) >= 0) continue;
    // open gives the lowest free number, and those below this one are in use by now.
    if (open("/dev/null", row.flags) != row.descriptor) return false;
  }
  return true;
}
