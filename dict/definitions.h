// The fields and classes of one database, as lists: what the dictionary holds, or what definition
// files say.
#ifndef DICT_DEFINITIONS_H
#define DICT_DEFINITIONS_H

#include <new>
#include <string>
#include <vector>

#include "dd/list.h"
#include "deploy/import/entries.h"
#include "dm/settings.h"

namespace dm {
struct session;
}

namespace dict {

struct definitions {
  dd_list fields{DD_FIELDS};
  dd_list classes{DD_CLASSES};
  deploy::class_entries entries{};  // of classes from files: as merging has read them
};

// Fetches a database of the dictionary that the settings name, in one snapshot; false with the
// reason.
bool fetch(const dm::settings& settings, uint64_t database, definitions& result, dm::problem& why);

// The same in the snapshot of a session.
bool fetch(dm::session& session, uint64_t database, definitions& result, dm::problem& why);

// Reads and merges definition files exactly as an import does; without any, standard input. What is
// wrong with them is printed to standard error. False when they cannot be read, or cannot be
// deployed as they stand.
bool read_files(const std::vector<std::string>& files, definitions& result);

// Whether none of the calls that were given this error buffer failed. Throws std::bad_alloc where
// memory ran out, so that it is told as everywhere.
inline bool is_whole(const tav_ebuf& ebuf) {
  if (ebuf.err_code == TAV_ERR_NO_MEM) throw std::bad_alloc();
  return !dd_failed(ebuf);
}

}  // namespace dict

#endif
