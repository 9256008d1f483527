// The classes, fields and tables of a database as the rules see them: those of the dictionary, plus
// the provisional fields of the session, plus the classes that the running operation has accepted.
#ifndef DM_RULES_CLASS_WORLD_H
#define DM_RULES_CLASS_WORLD_H

#include <deque>
#include <map>
#include <memory_resource>
#include <optional>
#include <span>

#include "dd/index.h"
#include "dd/owners.h"
#include "dm/class_json.h"
#include "dm/folded.h"
#include "dm/store.h"

namespace dm {

struct field_request;

// The problem of a stored definition that cannot be read.
problem damaged_class(const char* name, const char* fault);

// Reads a row's definition; `list` holds what the definition borrows. False with the problem where
// it is damaged. Throws std::bad_alloc.
bool load_class(class_reader& reader, const class_row& row, dd_flist& list, class_def& definition,
                problem& why);

// A cache of names of one kind: those that were looked up, or all. The value depends on the kind.
struct name_cache {
  static constexpr int32_t ABSENT = -1;
  dd_index<dd_by_name, int64_t> values;
  bool is_complete = false;
  // Keeps a copy of the name; gives the copy.
  const char* add(const char* name, int64_t value);

 private:
  std::pmr::monotonic_buffer_resource names_;
};

// A class as a link in its line of superclasses. The class need not exist.
struct line_class {
  std::string key;                        // folded
  line_class* above = nullptr;            // its immediate superclass; null: none
  std::vector<std::string> containers{};  // folded names of its top-level containers, sorted
  bool is_read = false;                   // whether `containers` is filled
  bool is_accepted = false;               // by the running operation (accept)
};

class class_world {
 public:
  class_world(store& store, int64_t database);

  // Fields of the request that are planned count as existing. Borrows the request.
  void add_fields(const field_request& asked);
  // Reads all keys at once, for an operation on many classes.
  bool read_all();
  // Gives all stored classes, in ascending order of keys, so that none is read again. Borrows them.
  void know(std::span<const class_row> all) { known_ = all; }

  // Prefetches the index slots of the fields that the class's entries use,
  // before they are looked up.
  void prefetch_fields(const class_def& definition) const;
  // The type of a field, by name and hash; ABSENT where there is no such field. When the store
  // fails, this and the calls below answer as if nothing were there, and `why` is set.
  int64_t type_of(const char* field, uint32_t hash);
  bool has_class(const char* name);
  // Whether another class than the one of that name has the table.
  bool is_other_table(const char* table, const char* class_name);
  // The superclasses, from the top, and then the subclasses, accepted ones first. Valid as long as
  // this object.
  std::vector<const line_class*> related_to(const char* class_name);

  // Accepts a definition: from now on the class exists with these tables instead of the old ones.
  void accept(const class_def& definition, const std::vector<std::string>& tables,
              const std::vector<std::string>& old_tables);

  problem why;

 private:
  struct stored_class {
    const char* key;
    line_class* line;  // null until asked for
  };
  line_class& line_of(std::string_view key);
  void read_containers(line_class& line);
  void add_accepted_below(const std::string& key, std::vector<line_class*>& lines);
  void add_stored_below(const std::string& key, std::vector<line_class*>& lines);
  // Classes with this key, or with keys below it.
  bool stored_classes(const choice& wanted, visitor<class_row> visitor);
  int64_t class_id(const char* name);
  int64_t table_owner(const char* table);

  store& store_;
  int64_t database_;
  const field_request* asked_ = nullptr;
  std::vector<int32_t> planned_types_;  // by position in asked_->fields; ABSENT: not planned
  class_reader reader_;
  name_cache fields_;
  name_cache classes_;                // ids
  name_cache tables_;                 // ids of their classes
  std::vector<stored_class> stored_;  // all, ascending, where all keys were read
  std::deque<line_class> lines_;
  dd_index<dd_by_name, line_class*> lines_by_key_;
  std::map<std::string_view, line_class*> accepted_;  // by key
  key_map<const line_class*> moved_;  // accepted classes by their tables; null: dropped by one
  std::optional<std::span<const class_row>> known_;  // all stored classes, where they were given
};

}  // namespace dm

#endif
