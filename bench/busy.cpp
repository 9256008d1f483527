// Walks memory until it is killed, or whoever started it ends: the neighbour on a busy machine. One
// random ring through all of 64 MB, so that every step waits for memory.
#include <sys/prctl.h>

#include <csignal>
#include <cstdio>
#include <numeric>
#include <random>
#include <vector>

static volatile unsigned seen;  // so that the walk has a purpose

int main() {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  std::vector<unsigned> next((64u << 20) / sizeof(unsigned));
  std::iota(next.begin(), next.end(), 0u);
  std::mt19937 chance(1);
  for (size_t i = next.size() - 1; i > 0; --i) std::swap(next[i], next[chance() % i]);
  unsigned at = 0;
  std::puts("ready");
  std::fflush(stdout);
  while (true) {
    for (int step = 0; step < 1000; ++step) at = next[at];
    seen = at;
  }
}
