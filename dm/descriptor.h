// An open file of the system, and writing all of a text into one.
#ifndef DM_DESCRIPTOR_H
#define DM_DESCRIPTOR_H

#include <unistd.h>

#include <cerrno>
#include <string_view>

namespace dm {

// Closes it. Below 0: none is open.
struct descriptor {
  explicit descriptor(int opened) : fd(opened) {}
  ~descriptor() {
    if (fd >= 0) close(fd);
  }
  descriptor(const descriptor&) = delete;
  descriptor& operator=(const descriptor&) = delete;

  int fd;
};

// False with errno.
inline bool write_all(int fd, std::string_view text) {
  while (!text.empty()) {
    const ssize_t size = write(fd, text.data(), text.size());
    if (size < 0 && errno == EINTR) continue;
    if (size < 0) return false;
    text.remove_prefix(static_cast<size_t>(size));
  }
  return true;
}

}  // namespace dm

#endif
