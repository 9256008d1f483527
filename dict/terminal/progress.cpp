#include "dict/terminal/progress.h"

#include <unistd.h>

#include <cstdio>
#include <string>

namespace dict {

using clock = std::chrono::steady_clock;

static constexpr auto SILENT_FOR = std::chrono::seconds(1);
static constexpr auto REDRAWN_EVERY = std::chrono::milliseconds(100);
static constexpr auto NEVER = clock::time_point::max();
static constexpr char START_OF_EMPTY_LINE[] = "\r\033[K";

// 10000 as 10,000.
static std::string grouped(uint64_t number) {
  std::string text = std::to_string(number);
  for (size_t at = text.size(); at > 3;) text.insert(at -= 3, 1, ',');
  return text;
}

static void draw(progress& shown) {
  std::string line = shown.what;
  line.append(" ").append(grouped(shown.done));
  if (shown.total != 0) line.append(" of ").append(grouped(shown.total));
  std::fprintf(stderr, "%s%s", START_OF_EMPTY_LINE, line.c_str());
  std::fflush(stderr);
  shown.is_drawn = true;
}

progress::progress(const char* part, uint64_t count)
    : what(part), total(count), due(isatty(STDERR_FILENO) ? clock::now() + SILENT_FOR : NEVER) {}

progress::~progress() {
  hide(*this);
}

void step(progress& shown, uint64_t count) {
  shown.done += count;
  if (shown.due == NEVER) return;
  const auto now = clock::now();
  if (now < shown.due) return;
  shown.due = now + REDRAWN_EVERY;
  draw(shown);
}

void next(progress& shown, const char* what, uint64_t total) {
  shown.what = what;
  shown.total = total;
  shown.done = 0;
}

void hide(progress& shown) {
  if (!shown.is_drawn) return;
  std::fputs(START_OF_EMPTY_LINE, stderr);
  shown.is_drawn = false;
}

}  // namespace dict
