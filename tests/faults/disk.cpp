#include "tests/faults/disk.h"

#include <fcntl.h>
#include <signal.h>
#include <sqlite3.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/faults/plan.h"

namespace {

// What the engine holds as a file; the real one follows it in memory.
struct file {
  sqlite3_file base;
  std::string* path;
  sqlite3_file* real() { return reinterpret_cast<sqlite3_file*>(this + 1); }
};

// A change that is not synchronised yet: what stood there, and how long the file was.
struct change {
  std::string path, before;
  sqlite3_int64 offset, size;
};
std::vector<change> unsynchronised;

enum class call { OPEN, READ, WRITE, TRUNCATE, SYNC, DELETE, SHARE };

}  // namespace

static file& file_of(sqlite3_file* handle) {
  return *reinterpret_cast<file*>(handle);
}

static void forget_changes(const std::string& path) {
  std::erase_if(unsynchronised, [&](const change& c) { return c.path == path; });
}

static void note_change(file& f, sqlite3_int64 offset, sqlite3_int64 count) {
  change c{*f.path, "", offset, 0};
  f.real()->pMethods->xFileSize(f.real(), &c.size);
  c.before.resize(static_cast<size_t>(std::clamp<sqlite3_int64>(c.size - offset, 0, count)));
  f.real()->pMethods->xRead(f.real(), c.before.data(), static_cast<int>(c.before.size()), offset);
  unsynchronised.push_back(std::move(c));
}

[[noreturn]] static void die() {
  while (plan().disk == disk_fault::POWER_LOSS && !unsynchronised.empty()) {
    const change& c = unsynchronised.back();
    const int fd = open(c.path.c_str(), O_WRONLY);
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
  file& f = file_of(handle);
  const int failed = fault(call::WRITE, SQLITE_IOERR_WRITE);
  const bool half = plan().disk != disk_fault::IO_ERROR && plan().disk != disk_fault::FULL;
  const int written = failed == SQLITE_OK ? count : half ? count / 2 : 0;
  note_change(f, offset, written);
  const int result = f.real()->pMethods->xWrite(f.real(), bytes, written, offset);
  if (failed == SQLITE_OK) return result;
  if (plan().disk == disk_fault::KILL || plan().disk == disk_fault::POWER_LOSS) die();
  return failed;
}

static int read_file(sqlite3_file* handle, void* bytes, int count, sqlite3_int64 offset) {
  file& f = file_of(handle);
  const int failed = fault(call::READ, SQLITE_IOERR_READ);
  return failed != SQLITE_OK ? failed : f.real()->pMethods->xRead(f.real(), bytes, count, offset);
}

static int truncate_file(sqlite3_file* handle, sqlite3_int64 size) {
  file& f = file_of(handle);
  const int failed = fault(call::TRUNCATE, SQLITE_IOERR_TRUNCATE);
  if (failed != SQLITE_OK) return failed;
  sqlite3_int64 was = 0;
  f.real()->pMethods->xFileSize(f.real(), &was);
  note_change(f, size, was);
  return f.real()->pMethods->xTruncate(f.real(), size);
}

static int sync_file(sqlite3_file* handle, int flags) {
  file& f = file_of(handle);
  const int failed = fault(call::SYNC, SQLITE_IOERR_FSYNC);
  if (failed != SQLITE_OK) return failed;
  forget_changes(*f.path);
  // What the disk keeps when it fails is played above: nothing needs to wait for the real one.
  (void)flags;
  return SQLITE_OK;
}

static int close_file(sqlite3_file* handle) {
  file& f = file_of(handle);
  delete f.path;
  return f.real()->pMethods->xClose(f.real());
}

static int map_shared(sqlite3_file* handle, int region, int size, int extend, void volatile** at) {
  file& f = file_of(handle);
  const int failed = fault(call::SHARE, SQLITE_IOERR_SHMMAP);
  return failed != SQLITE_OK ? failed
                             : f.real()->pMethods->xShmMap(f.real(), region, size, extend, at);
}

// Calls that only pass through.
#define PASS(name, parameters, arguments)   \
  [] parameters -> int {                    \
    sqlite3_file* real = file_of(f).real(); \
    return real->pMethods->name arguments;  \
  }

static const sqlite3_io_methods METHODS = {
    2,
    close_file,
    read_file,
    write_file,
    truncate_file,
    sync_file,
    PASS(xFileSize, (sqlite3_file * f, sqlite3_int64* size), (real, size)),
    PASS(xLock, (sqlite3_file * f, int level), (real, level)),
    PASS(xUnlock, (sqlite3_file * f, int level), (real, level)),
    PASS(xCheckReservedLock, (sqlite3_file * f, int* held), (real, held)),
    PASS(xFileControl, (sqlite3_file * f, int which, void* value), (real, which, value)),
    PASS(xSectorSize, (sqlite3_file * f), (real)),
    PASS(xDeviceCharacteristics, (sqlite3_file * f), (real)),
    map_shared,
    PASS(xShmLock, (sqlite3_file * f, int from, int count, int flags), (real, from, count, flags)),
    [](sqlite3_file* f) { file_of(f).real()->pMethods->xShmBarrier(file_of(f).real()); },
    PASS(xShmUnmap, (sqlite3_file * f, int remove), (real, remove)),
    nullptr,
    nullptr,
};

static sqlite3_vfs* below;  // the default one

static int open_file(sqlite3_vfs*, const char* path, sqlite3_file* handle, int flags, int* given) {
  file& f = file_of(handle);
  f.base.pMethods = nullptr;
  const int failed = fault(call::OPEN, SQLITE_CANTOPEN);
  if (failed != SQLITE_OK) return failed;
  const int result = below->xOpen(below, path, f.real(), flags, given);
  if (result != SQLITE_OK) return result;
  f.path = new std::string(path != nullptr ? path : "");
  f.base.pMethods = &METHODS;
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
  faulty.szOsFile += static_cast<int>(sizeof(file));
  faulty.xOpen = open_file;
  faulty.xDelete = delete_file;
  sqlite3_vfs_register(&faulty, 1);
}
