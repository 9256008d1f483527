/* Linked into the programs that are asked where they come: each notes in a file of the folder
 * $TAV_REACH, which has its name, which addresses it has come to (a byte each). The compiler puts a
 * call of __sanitizer_cov_trace_pc at the beginning of each basic block. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <fcntl.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#define HIDDEN __attribute__((visibility("hidden")))
extern HIDDEN const char __ehdr_start[];
extern HIDDEN const char etext[];

static char* reached;

HIDDEN void __sanitizer_cov_trace_pc(void) {
  if (reached) reached[(const char*)__builtin_return_address(0) - __ehdr_start] = 1;
}

__attribute__((constructor)) static void open_map(void) {
  const char* folder = getenv("TAV_REACH");
  Dl_info own;
  char path[PATH_MAX];
  const size_t size = (size_t)(etext - __ehdr_start) + 1;
  if (folder == NULL || dladdr(__ehdr_start, &own) == 0) return;
  const char* name = strrchr(own.dli_fname, '/');
  snprintf(path, sizeof path, "%s/%s", folder, name ? name + 1 : own.dli_fname);
  const int file = open(path, O_RDWR | O_CREAT | O_CLOEXEC, 0666);
  if (file < 0) return;
  fchmod(file, 0666); /* other users are tried, too */
  void* map = MAP_FAILED;
  if (ftruncate(file, (off_t)size) == 0)
    map = mmap(NULL, size, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
  if (map != MAP_FAILED) reached = map;
  close(file);
}
