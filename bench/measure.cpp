// Runs a program and writes what it took: seconds by the clock, seconds of CPU time, peak memory in
// KB, page faults. The system counts what a process was before it became the program, and that
// should be as small as this.
//   bench_measure REPORT PROGRAM NAME [ARGUMENT...]
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>

static double seconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

int main(int argc, char** argv) {
  FILE* report = argc >= 4 ? std::fopen(argv[1], "we") : nullptr;
  if (report == nullptr) return 2;
  const auto begin = std::chrono::steady_clock::now();
  const pid_t child = fork();
  if (child == 0) {
    execv(argv[2], argv + 3);
    _exit(127);
  }
  rusage used{};
  if (child < 0 || wait4(child, nullptr, 0, &used) != child) return 2;
  const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - begin;
  std::fprintf(report, "%.6f %.6f %ld %ld\n", wall.count(),
               seconds(used.ru_utime) + seconds(used.ru_stime), used.ru_maxrss, used.ru_minflt);
  return std::fclose(report) == 0 ? 0 : 2;
}
