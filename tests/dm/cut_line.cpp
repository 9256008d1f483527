#include "cut_line.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdlib>

static int socket_in(const std::string& folder, int (*use)(int, const sockaddr*, socklen_t)) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  (folder + "/.s.PGSQL.5432").copy(address.sun_path, sizeof address.sun_path - 1);
  const int fd = socket(AF_UNIX, SOCK_STREAM, 0);
  if (use(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) std::abort();
  return fd;
}

// Passes on what has come; gives how much.
static ssize_t pass(int from, int to) {
  static thread_local char bytes[1 << 16];
  const ssize_t size = read(from, bytes, sizeof bytes);
  return size > 0 ? write(to, bytes, static_cast<size_t>(size)) : 0;
}

cut_line::cut_line(const std::string& folder, int message, bool delivered)
    : listening_(socket_in(folder, bind)) {
  listen(listening_, 1);
  thread_ = std::thread([=, this] { carry(message, delivered); });
}

cut_line::~cut_line() {
  shutdown(listening_, SHUT_RDWR);
  thread_.join();
  close(listening_);
}

void cut_line::carry(int left, bool delivered) const {
  const int client = accept(listening_, nullptr, nullptr);
  if (client < 0) return;
  const int server = socket_in(std::getenv("PGHOST"), connect);
  pollfd ends[] = {{client, POLLIN, 0}, {server, POLLIN, 0}};
  while (poll(ends, 2, -1) > 0) {
    if (ends[1].revents != 0 && pass(server, client) <= 0) break;
    if (ends[0].revents == 0) continue;
    if (--left == 0 && !delivered) break;
    if (pass(client, server) <= 0) break;
    if (left == 0) {
      poll(ends + 1, 1, 1000);  // until it has answered
      break;
    }
  }
  close(client);
  close(server);
}
