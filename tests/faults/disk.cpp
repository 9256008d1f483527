#include <fcntl.h>
#include <signal.h>
#include <sqlite3.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "tests/faults/plan.h"

namespace {

// An open file: the engine's own, with some of its calls replaced.
struct file {
  std::string path;
  const sqlite3_io_methods* real;
  sqlite3_io_methods faulty;
};
std::map<sqlite3_file*, file> files;

// A change that is not synchronised yet: what stood there, and how long the file was.
struct change {
  std::string path, before;
  sqlite3_int64 offset, size;
};
std::vector<change> unsynchronised;
constexpr sqlite3_int64 LONGEST = 1 << 30;  // of a file

enum class call { OPEN, READ, WRITE, TRUNCATE, SYNC, DELETE, SHARE };

}  // namespace

static void forget_changes(const std::string& path) {
  std::erase_if(unsynchronised, [&](const change& c) { return c.path == path; });
}

static void note_change(sqlite3_file* handle, sqlite3_int64 offset, sqlite3_int64 count) {
  const file& f = files[handle];
  change c{f.path, "", offset, 0};
  f.real->xFileSize(handle, &c.size);
  c.before.resize(static_cast<size_t>(std::clamp<sqlite3_int64>(c.size - offset, 0, count)));
  f.real->xRead(handle, c.before.data(), static_cast<int>(c.before.size()), offset);
  unsynchronised.push_back(std::move(c));
}

[[noreturn]] static void die() {
  while (plan().disk == disk_fault::POWER_LOSS && !unsynchronised.empty()) {
    const change& c = unsynchronised.back();
    const int fd = open(c.path.c_str(), O_WRONLY);
    if (fd < 0) {  // it has another name since, or none
      unsynchronised.pop_back();
      continue;
    }
    if (ftruncate(fd, c.size) != 0 ||
        pwrite(fd, c.before.data(), c.before.size(), c.offset) != ssize_t(c.before.size())) {
      _exit(98);
    }
    close(fd);
    unsynchronised.pop_back();
  }
  kill(getpid(), SIGKILL);
  _exit(98);
}

static bool is_due(call which) {
  const fault_plan& p = plan();
  ++plan().disk_calls;
  const bool due = p.disk == disk_fault::BROKEN ? p.disk_calls >= p.failing_disk_call
                                                : p.disk_calls == p.failing_disk_call;
  if (due && p.disk_calls == p.failing_disk_call) plan().failed_a_sync = which == call::SYNC;
  return due;
}

// The result code of the fault that this call meets; SQLITE_OK for none.
static int fault(call which, int io_error) {
  if (!is_due(which)) return SQLITE_OK;
  switch (plan().disk) {
    case disk_fault::IO_ERROR:
    case disk_fault::BROKEN:
      return io_error;
    case disk_fault::FULL:
    case disk_fault::SHORT_WRITE:
      return which == call::WRITE ? SQLITE_FULL : SQLITE_OK;
    case disk_fault::KILL:
    case disk_fault::POWER_LOSS:
      if (which != call::WRITE) die();  // in the middle of a write: see there
      return SQLITE_FULL;
    default:
      return SQLITE_OK;
  }
}

static int write_file(sqlite3_file* handle, const void* bytes, int count, sqlite3_int64 offset) {
  const int failed = fault(call::WRITE, SQLITE_IOERR_WRITE);
  const bool half = plan().disk != disk_fault::IO_ERROR && plan().disk != disk_fault::FULL;
  const int written = failed == SQLITE_OK ? count : half ? count / 2 : 0;
  note_change(handle, offset, written);
  const int result = files[handle].real->xWrite(handle, bytes, written, offset);
  if (failed == SQLITE_OK) return result;
  if (plan().disk == disk_fault::KILL || plan().disk == disk_fault::POWER_LOSS) die();
  return failed;
}

static int read_file(sqlite3_file* handle, void* bytes, int count, sqlite3_int64 offset) {
  const int failed = fault(call::READ, SQLITE_IOERR_READ);
  return failed != SQLITE_OK ? failed : files[handle].real->xRead(handle, bytes, count, offset);
}

static int truncate_file(sqlite3_file* handle, sqlite3_int64 size) {
  const int failed = fault(call::TRUNCATE, SQLITE_IOERR_TRUNCATE);
  if (failed != SQLITE_OK) return failed;
  note_change(handle, size, LONGEST);
  return files[handle].real->xTruncate(handle, size);
}

// What the disk keeps when it fails is played here: nothing needs to wait for the real one.
static int sync_file(sqlite3_file* handle, int) {
  const int failed = fault(call::SYNC, SQLITE_IOERR_FSYNC);
  if (failed == SQLITE_OK) forget_changes(files[handle].path);
  return failed;
}

static int close_file(sqlite3_file* handle) {
  const int result = files[handle].real->xClose(handle);
  files.erase(handle);
  return result;
}

static int map_shared(sqlite3_file* handle, int region, int size, int extend, void volatile** at) {
  const int failed = fault(call::SHARE, SQLITE_IOERR_SHMMAP);
  return failed != SQLITE_OK ? failed
                             : files[handle].real->xShmMap(handle, region, size, extend, at);
}

static sqlite3_vfs* below;  // the default one

static int open_file(sqlite3_vfs*, const char* path, sqlite3_file* handle, int flags, int* given) {
  handle->pMethods = nullptr;
  int result = fault(call::OPEN, SQLITE_CANTOPEN);
  if (result == SQLITE_OK) result = below->xOpen(below, path, handle, flags, given);
  if (result != SQLITE_OK) return result;
  file& f = files[handle] = {path != nullptr ? path : "", handle->pMethods, *handle->pMethods};
  f.faulty.iVersion = 2;
  f.faulty.xClose = close_file;
  f.faulty.xRead = read_file;
  f.faulty.xWrite = write_file;
  f.faulty.xTruncate = truncate_file;
  f.faulty.xSync = sync_file;
  f.faulty.xShmMap = map_shared;
  handle->pMethods = &f.faulty;
  return SQLITE_OK;
}

static int delete_file(sqlite3_vfs*, const char* path, int sync) {
  const int failed = fault(call::DELETE, SQLITE_IOERR_DELETE);
  if (failed != SQLITE_OK) return failed;
  forget_changes(path);
  return below->xDelete(below, path, sync);
}

void put_disk_under_plan() {
  static sqlite3_vfs faulty;
  below = sqlite3_vfs_find(nullptr);
  faulty = *below;
  faulty.zName = "faulty";
  faulty.pNext = nullptr;
  faulty.xOpen = open_file;
  faulty.xDelete = delete_file;
  sqlite3_vfs_register(&faulty, 1);
}
