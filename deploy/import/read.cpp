// Reads the definition files into one list of fields and one of classes.
#include <cstdio>
#include <memory>
#include <utility>

#include "dd/values.h"
#include "dd/walk.h"
#include "deploy/import/import.h"
#include "deploy/lookup.h"
#include "deploy/report.h"
#include "dparse/read/reader.h"

static constexpr char MODULE[] = "tav_deploy_import";

using enum deploy::definition_side;

namespace {

struct close_file {
  void operator()(FILE* stream) const { std::fclose(stream); }
};
using open_file = std::unique_ptr<FILE, close_file>;

// Where the file that is open is read to: most tokens then stand whole in what was read. A C
// library may take the size of a buffer as a wish unless it is given one.
char read_ahead[1 << 16];

struct definitions {
  deploy::class_entries& entries;  // of the interfaces
  dd_list fields{DD_FIELDS};
  dd_list interfaces{DD_CLASSES};
  dd_list implementations{DD_CLASSES};  // those that are merged have nothing but a name
  bool are_all_merged = true;
};

}  // namespace

static int cannot_open(const char* name, bool is_first) {
  return is_first ? deploy::report(HERE, "first-file-not-opened", {}, {.file = name})
                  : deploy::report(HERE, "file-not-opened", {}, {.file = name});
}

// Merges an implementation while it and its interface are at hand; of nearly all nothing is then
// left to keep. False, and nothing is told, where there is no interface yet or anything to tell:
// after all files were read merge_all() does it again.
static bool merge_at_once(tav_flist_t* implementation, definitions& read) {
  tav_ebuf ebuf{};
  const char* name = dd_text(implementation, TAV_FLD_NAME, at(&ebuf, HERE));
  tav_flist_t* interface = read.interfaces.find(name, at(&ebuf, HERE));
  if (interface == nullptr) return false;
  deploy::merge_storage(interface, implementation, &ebuf);
  const deploy::siblings own = deploy::entries_of(read.entries, interface, &ebuf);
  return !dd_failed(ebuf) && deploy::merge_silently(read.entries, own, implementation, name);
}

static int parse(FILE* stream, const char* name, bool is_first, definitions& read) {
  std::setvbuf(stream, read_ahead, _IOFBF, sizeof read_ahead);
  const int result = dparseDefFile(stream, &read.fields, &read.interfaces, &read.implementations,
                                   [&](tav_flist_t* impl) {
                                     const bool is_merged = merge_at_once(impl, read);
                                     read.are_all_merged = read.are_all_merged && is_merged;
                                     return is_merged;
                                   });
  if (result >= 1) return 1;
  if (result == dparse::UNREADABLE) return cannot_open(name, is_first);
  return deploy::report(
      HERE, "syntax-error", {},
      {.file = dparseGetFname(), .line = dparseGetErrLine(), .message = dparseGetErrMsg()});
}

static int read_file(const char* name, bool is_first, definitions& read) {
  dparseSetFname(name);
  const open_file stream(std::fopen(name, "r"));
  if (stream == nullptr) return cannot_open(name, is_first);
  return parse(stream.get(), name, is_first, read);
}

static int read_standard_input(definitions& read) {
  static constexpr char NAME[] = "stdin";
  dparseSetFname(NAME);
  if (parse(stdin, NAME, true, read) >= 1) return 1;
  std::fclose(stdin);
  return -1;
}

static int read_all(definitions& read, const tav_deploy_ctx_t& ctx) {
  if (ctx.name_count == 0) return read_standard_input(read);
  for (int32_t i = 0; i < ctx.name_count; ++i) {
    if (read_file(ctx.names[i], i == 0, read) < 1) return -1;
  }
  return 1;
}

static int merge_class(tav_flist_t* implementation, dd_list& interfaces,
                       deploy::class_entries& entries, tav_ebuf* ebuf) {
  const char* name = dd_text(implementation, TAV_FLD_NAME, at(ebuf, HERE));
  if (dd_failed(*ebuf)) return 1;
  tav_flist_t* interface = tav_deploy_get_class_by_name(interfaces, name);
  if (interface == nullptr) {
    deploy::report(HERE, "missing-interface", {.class_name = name, .side = IMPLEMENTATION});
    return 1;
  }
  deploy::merge_storage(interface, implementation, ebuf);
  const deploy::siblings own = deploy::entries_of(entries, interface, ebuf);
  if (dd_failed(*ebuf)) return 1;
  if (tav_deploy_merge_class_fields(entries, own, implementation, name) >= 1) return 1;
  deploy::report(HERE, "merge-failed", {.class_name = name});
  return deploy::report(HERE, "class-not-merged", {.class_name = name});
}

static int merge_all(dd_list& interfaces, dd_list& implementations,
                     deploy::class_entries& entries) {
  tav_ebuf ebuf{};
  dd_walk walk(implementations.get(), TAV_FLD_OBJ_DESC);
  while (tav_flist_t* implementation = walk.next(at(&ebuf, HERE))) {
    if (merge_class(implementation, interfaces, entries, &ebuf) < 1) return -1;
  }
  return dd_failed(ebuf) ? deploy::call_failed(HERE, ebuf) : 1;
}

// The classes without implementation have not been read yet, nor entries that it does not name.
static int fill_entries(dd_list& interfaces, deploy::class_entries& entries) {
  tav_ebuf ebuf{};
  dd_walk walk(interfaces.get(), TAV_FLD_OBJ_DESC);
  while (tav_flist_t* interface = walk.next(at(&ebuf, HERE))) {
    deploy::read_all_storage(deploy::entries_of(entries, interface, &ebuf), &ebuf);
  }
  return dd_failed(ebuf) ? deploy::call_failed(HERE, ebuf) : 1;
}

int deploy::merge_implementations(dd_list& interfaces, dd_list& implementations,
                                  deploy::class_entries& entries) {
  if (merge_all(interfaces, implementations, entries) < 1) {
    return deploy::report(HERE, "classes-not-merged");
  }
  return fill_entries(interfaces, entries);
}

static int create_lists(definitions& read) {
  tav_ebuf ebuf{};
  for (dd_list* list : {&read.fields, &read.interfaces, &read.implementations}) {
    list->give(dd_flist(tav_flist_create(at(&ebuf, HERE))));
  }
  return dd_failed(ebuf) ? deploy::call_failed(HERE, ebuf) : 1;
}

int tav_deploy_read_import_files(dd_list& fields, dd_list& classes, deploy::class_entries& entries,
                                 const tav_deploy_ctx_t& ctx) {
  definitions read{entries};
  if (create_lists(read) < 1 || read_all(read, ctx) < 1) return -1;
  const int merged = read.are_all_merged ? fill_entries(read.interfaces, entries)
                                         : deploy::merge_implementations(
                                               read.interfaces, read.implementations, entries);
  if (merged < 1) return -1;
  read.implementations.leave();
  fields = std::move(read.fields);
  classes = std::move(read.interfaces);
  return 1;
}

int deploy::import_read(deploy::import_state& state) {
  return tav_deploy_read_import_files(state.fields, state.classes, state.entries, *state.ctx);
}
