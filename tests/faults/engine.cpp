// The engine of the fault tests: one call of it, or one message to the server, fails and does
// nothing.
#include <execinfo.h>
#include <sqlite3.h>
#include <sys/socket.h>

#include <cstring>
#include <set>
#include <string_view>

#include "tests/faults/plan.h"

static bool is_under_plan = false;

void put_engine_under_plan() {
  is_under_plan = true;
}

// Whether nobody has come this way to a call of the engine yet.
static bool is_new_way() {
  constexpr int FRAMES = 32;
  static std::set<size_t> known;
  void* frames[FRAMES];
  size_t way = 0;
  for (int i = backtrace(frames, FRAMES); i > 0; --i) {
    way = way * 31 + reinterpret_cast<size_t>(frames[i - 1]);
  }
  return known.insert(way).second;
}

static bool fails() {
  if (!is_under_plan) return false;
  const long n = ++plan().engine_calls;
  constexpr size_t ROOM = sizeof(plan().ways_to_engine) / sizeof(plan().ways_to_engine[0]);
  if (plan().failing_engine_call == 0 && plan().way_count < ROOM && is_new_way()) {
    plan().ways_to_engine[plan().way_count++] = n;
  }
  return n == plan().failing_engine_call;
}

extern "C" {
int __real_sqlite3_step(sqlite3_stmt* statement);
int __wrap_sqlite3_step(sqlite3_stmt* statement) {
  return fails() ? SQLITE_IOERR : __real_sqlite3_step(statement);
}

int __real_sqlite3_exec(sqlite3* db, const char* sql, sqlite3_callback call, void* to, char** why);
int __wrap_sqlite3_exec(sqlite3* db, const char* sql, sqlite3_callback call, void* to, char** why) {
  // Whatever fails in it, a transaction that is rolled back is at its end.
  const bool is_end = std::strcmp(sql, "ROLLBACK") == 0;
  return !is_end && fails() ? SQLITE_IOERR : __real_sqlite3_exec(db, sql, call, to, why);
}

int __real_sqlite3_prepare_v2(sqlite3* db, const char* sql, int size, sqlite3_stmt** made,
                              const char** rest);
int __wrap_sqlite3_prepare_v2(sqlite3* db, const char* sql, int size, sqlite3_stmt** made,
                              const char** rest) {
  if (!fails()) return __real_sqlite3_prepare_v2(db, sql, size, made, rest);
  return *made = nullptr, SQLITE_IOERR;
}

int __real_sqlite3_prepare_v3(sqlite3* db, const char* sql, int size, unsigned flags,
                              sqlite3_stmt** made, const char** rest);
int __wrap_sqlite3_prepare_v3(sqlite3* db, const char* sql, int size, unsigned flags,
                              sqlite3_stmt** made, const char** rest) {
  if (!fails()) return __real_sqlite3_prepare_v3(db, sql, size, flags, made, rest);
  return *made = nullptr, SQLITE_IOERR;
}

// Of the messages of PostgreSQL's protocol those that carry statements begin with one of two
// letters.
ssize_t send(int fd, const void* bytes, size_t size, int flags) {
  static constexpr char FAILING[] = "Q\0\0\0\x0fSELECT 1/0";
  const std::string_view message(static_cast<const char*>(bytes), size);
  const bool is_statement = message.starts_with('Q') || message.starts_with('P');
  const bool is_end = message.find("ROLLBACK") != message.npos;
  if (!is_statement || is_end || !fails()) return sendto(fd, bytes, size, flags, nullptr, 0);
  sendto(fd, FAILING, sizeof FAILING, flags, nullptr, 0);
  return static_cast<ssize_t>(size);
}
}
