// The field entries of classes as plain records: a class is read once, and the passes ask the
// records. Those of the input are filled by reading, merging and finding definitions; checks change
// nothing but the marks of siblings.
#ifndef DEPLOY_IMPORT_ENTRIES_H
#define DEPLOY_IMPORT_ENTRIES_H

#include <unordered_map>
#include <vector>

#include "dd/list.h"

namespace deploy {

// An entry; those nested in it follow it. Element and texts are borrowed from the class.
struct class_entry {
  tav_flist_t* element;
  const char* name;               // "" where it is missing
  const char* storage = nullptr;  // TAV_FLD_SQL_TABLE, "" where it is missing; null until read
  uint32_t storage_hash = 0;
  uint32_t hash = 0;                      // of the name
  std::optional<int32_t> defined_type{};  // of the field's definition, which may have none
  int32_t type = 0;                       // 0 where it is missing
  static constexpr uint32_t MOST = (1u << 27) - 1;  // more would take 6 GB of records
  uint32_t size : 27 = 1;              // in records: its own and those of what is nested in it
  bool creates_as_system : 1 = false;  // has that permission, at the top level
  bool modifies_as_system : 1 = false;
  bool is_defined : 1 = false;       // the definition was found
  bool repeats_earlier : 1 = false;  // a sibling before it has its name
  bool is_repeated : 1 = false;      // any other sibling has

  bool has_storage() const { return storage != nullptr && *storage != '\0'; }
};

static_assert(sizeof(class_entry) <= 48, "there is one for each entry of the input");

// The entries of one node, in order; a walk over them passes over what is nested in them.
struct siblings {
  struct place {
    class_entry* entry;
    class_entry& operator*() const { return *entry; }
    place& operator++() {
      entry += entry->size;
      return *this;
    }
    bool operator==(const place&) const = default;
  };

  class_entry* first = nullptr;
  class_entry* last = nullptr;  // behind the last record

  place begin() const { return {first}; }
  place end() const { return {last}; }
};

inline siblings nested_in(class_entry& entry) {
  return {&entry + 1, &entry + entry.size};
}

// The classes that have been read.
struct class_entries {
  std::unordered_map<const tav_flist_t*, siblings> classes;
  std::vector<std::vector<class_entry>> blocks;  // of many classes each; none grows once reserved
  std::vector<class_entry> reading;         // the class being read, whose size is not known yet
  dd_index<dd_by_name, class_entry*> seen;  // scratch of mark_repeated
};

// The class's top-level entries, read unless they have been; valid as long as these live. None
// when that fails.
siblings entries_of(class_entries& read, tav_flist_t* storable, tav_ebuf* ebuf);
// Reads a class whose entries are asked for once only, over what was read before; not who has
// SYSTEM permission.
siblings read_entries(std::vector<class_entry>& entries, tav_flist_t* storable, tav_ebuf* ebuf);
// Marks the siblings that share a name. Throws std::bad_alloc.
void mark_repeated(siblings siblings, dd_index<dd_by_name, class_entry*>& seen);
// Reads an entry's storage; and that of all entries, at every depth, that was not read yet.
void read_storage(class_entry& entry, tav_ebuf* ebuf);
void read_all_storage(siblings entries, tav_ebuf* ebuf);
// Finds the definitions of entries, at every depth.
void find_definitions(siblings entries, dd_list& fields);

}  // namespace deploy

#endif
