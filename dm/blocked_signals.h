// While something has a temporary name, signals wait: one that ends the process would leave it.
#ifndef DM_BLOCKED_SIGNALS_H
#define DM_BLOCKED_SIGNALS_H

#include <cerrno>
#include <csignal>
#include <initializer_list>

namespace dm {

// Leaves errno as it is.
struct blocked_signals {
  blocked_signals() {
    sigset_t all;
    sigfillset(&all);
    sigprocmask(SIG_BLOCK, &all, &before);
  }
  ~blocked_signals() {
    const int kept = errno;
    sigprocmask(SIG_SETMASK, &before, nullptr);
    errno = kept;
  }
  blocked_signals(const blocked_signals&) = delete;
  blocked_signals& operator=(const blocked_signals&) = delete;

  // Somebody asks the process to end, and it will as soon as signals are let through: long work
  // stops here. A blocked signal waits even where it will be ignored (nohup).
  bool is_asked_to_end() const {
    sigset_t waiting;
    if (sigpending(&waiting) != 0) return false;
    for (const int number : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) {
      struct sigaction action {};
      const bool comes = sigismember(&waiting, number) == 1 && sigismember(&before, number) == 0;
      if (comes && sigaction(number, nullptr, &action) == 0 && action.sa_handler != SIG_IGN) {
        return true;
      }
    }
    return false;
  }

  sigset_t before{};
};

}  // namespace dm

#endif
