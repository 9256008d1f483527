#include "dm/rules/class_world.h"

#include <algorithm>
#include <cstring>

#include "dm/field_request.h"

namespace dm {

problem damaged_class(const char* name, const char* fault) {
  return {TAV_ERR_STORAGE,
          TAV_FLD_NAME,
          0,
          0,
          join({"The stored definition of class ", quoted(name), " ", fault,
                "; restore the dictionary from a backup."}),
          false,
          true};
}

bool load_class(class_reader& reader, const class_row& row, dd_flist& list, class_def& definition,
                problem& why) {
  list.reset(tav_flist_create(nullptr));
  const char* fault = nullptr;
  if (list == nullptr) throw std::bad_alloc();
  tav_flist_t* element = reader.read(row.definition, list.get(), 0, fault);
  if (element == nullptr) {
    why = damaged_class(row.name, fault);
    return false;
  }
  read_class(tav_node_of(element), 0, definition);
  return true;
}

const char* name_cache::add(const char* name, int64_t value) {
  const size_t size = std::strlen(name) + 1;
  auto* copy = static_cast<char*>(names_.allocate(size, 1));
  std::memcpy(copy, name, size);
  values.add_first(copy, value);
  return copy;
}

class_world::class_world(store& store, int64_t database) : store_(store), database_(database) {}

bool class_world::read_all() {
  auto field = [this](const field_row& row) { return fields_.add(row.name, row.type), true; };
  auto note_class = [this](const class_row& row) {
    stored_.push_back({classes_.add(row.key, row.id), nullptr});
    return true;
  };
  auto table = [this](const table_row& row) { return tables_.add(row.key, row.class_id), true; };
  const choice keys{choice::KEYS};
  fields_.is_complete = classes_.is_complete = tables_.is_complete = true;
  return store_.calls->fields(&store_, database_, keys, visit<field_row>(field), why) &&
         store_.calls->classes(&store_, database_, keys, visit<class_row>(note_class), why) &&
         store_.calls->tables(&store_, database_, {}, visit<table_row>(table), why);
}

void class_world::add_fields(const field_request& asked) {
  asked_ = &asked;
  planned_types_.reserve(asked.fields.size());
  for (const asked_field& field : asked.fields) {
    planned_types_.push_back(field.is_planned ? *field.type : name_cache::ABSENT);
  }
}

void class_world::prefetch_fields(const class_def& definition) const {
  for (const entry_def& entry : definition.entries) {
    if (asked_ != nullptr) asked_->by_name.prefetch(entry.name_hash);
    fields_.values.prefetch(entry.name_hash);
  }
}

// The cached value, or what `look_up` finds in the store. After a failure nothing is looked up:
// that it fails, too, would take the place of the reason.
template <class LookUp>
static int64_t cached(name_cache& cache, const char* name, uint32_t hash, const problem& why,
                      LookUp look_up) {
  if (const int64_t* value = cache.values.find(name, hash)) return *value;
  if (cache.is_complete || failed(why)) return name_cache::ABSENT;
  const int64_t value = look_up(choice{choice::NAMED, name});
  cache.add(name, value);
  return value;
}

int64_t class_world::type_of(const char* field, uint32_t hash) {
  const int32_t* place = asked_ != nullptr ? asked_->by_name.find(field, hash) : nullptr;
  const int64_t planned =
      place != nullptr ? planned_types_[static_cast<size_t>(*place)] : name_cache::ABSENT;
  if (planned != name_cache::ABSENT) return planned;
  return cached(fields_, field, hash, why, [this](const choice& named) {
    int64_t type = name_cache::ABSENT;
    auto note = [&](const field_row& row) { return type = row.type, true; };
    store_.calls->fields(&store_, database_, named, visit<field_row>(note), why);
    return type;
  });
}

int64_t class_world::class_id(const char* name) {
  return cached(classes_, name, dd_hash(name), why, [this](const choice& named) {
    int64_t id = name_cache::ABSENT;
    auto note = [&](const class_row& row) { return id = row.id, true; };
    store_.calls->classes(&store_, database_, named, visit<class_row>(note), why);
    return id;
  });
}

int64_t class_world::table_owner(const char* table) {
  return cached(tables_, table, dd_hash(table), why, [this](const choice& named) {
    int64_t id = name_cache::ABSENT;
    auto note = [&](const table_row& row) { return id = row.class_id, true; };
    store_.calls->tables(&store_, database_, named, visit<table_row>(note), why);
    return id;
  });
}

bool class_world::has_class(const char* name) {
  line_class* const* line = lines_by_key_.find(name);
  return (line != nullptr && (*line)->is_accepted) || class_id(name) != name_cache::ABSENT;
}

bool class_world::is_other_table(const char* table, const char* class_name) {
  const auto moved = moved_.find(folded(table));
  if (moved != moved_.end()) {
    return moved->second != nullptr && !dd_equal(moved->second->key.c_str(), class_name);
  }
  const int64_t owner = table_owner(table);
  return owner != name_cache::ABSENT && owner != class_id(class_name);
}

static std::vector<std::string> containers_in(const class_def& definition) {
  std::vector<std::string> names;
  for (const entry_def& entry : definition.entries) {
    if (entry.depth == 1 && dd_is_container(entry.type))
      names.push_back(folded(text_of(entry, ENTRY_NAME)));
  }
  std::sort(names.begin(), names.end());
  return names;
}

void class_world::accept(const class_def& definition, const std::vector<std::string>& tables,
                         const std::vector<std::string>& old_tables) {
  const std::string key = folded(text_of(definition, CLASS_NAME));
  line_class& line = line_of(key);
  for (const std::string& table : old_tables) moved_[folded(table)] = nullptr;
  for (const std::string& table : tables) moved_[folded(table)] = &line;
  line.containers = containers_in(definition);
  line.is_read = line.is_accepted = true;
  accepted_.try_emplace(line.key, &line);
}

// The rows with this key or, for KEYS_BELOW, with keys below it.
static std::span<const class_row> classes_in(std::span<const class_row> all, const choice& wanted) {
  const auto is_before = [](const class_row& row, const std::string& key) { return row.key < key; };
  const std::string key = folded(wanted.name);
  const auto [first, end] = wanted.which == choice::KEYS_BELOW
                                ? keys_below(key)
                                : key_range{key, key + std::string(1, '\0')};
  const auto from = std::lower_bound(all.begin(), all.end(), first, is_before);
  const auto to = std::lower_bound(from, all.end(), end, is_before);
  return {from, to};
}

bool class_world::stored_classes(const choice& wanted, visitor<class_row> visitor) {
  if (failed(why)) return false;
  if (!known_) return store_.calls->classes(&store_, database_, wanted, visitor, why);
  const auto found = classes_in(*known_, wanted);
  return std::all_of(found.begin(), found.end(),
                     [&](const class_row& row) { return visitor.call(visitor.context, row); });
}

// The link of that key. Makes it and those above it where they do not exist yet.
line_class& class_world::line_of(std::string_view key) {
  line_class* first = nullptr;
  line_class** below = &first;
  for (size_t end = key.size();;) {
    const uint32_t hash = dd_hash(key.data(), end);
    if (line_class* const* known = lines_by_key_.find(key.substr(0, end), hash)) {
      *below = *known;
      break;
    }
    line_class& line = lines_.emplace_back();
    line.key = key.substr(0, end);
    lines_by_key_.add(line.key.c_str(), hash, &line);
    *below = &line;
    below = &line.above;
    end = end != 0 ? key.rfind('/', end - 1) : 0;
    if (end == 0 || end == key.npos) break;
  }
  return *first;
}

void class_world::read_containers(line_class& line) {
  if (line.is_read) return;
  line.is_read = true;
  if (class_id(line.key.c_str()) == name_cache::ABSENT) return;
  dd_flist list;
  class_def definition;
  auto note = [&](const class_row& row) {
    if (load_class(reader_, row, list, definition, why)) {
      line.containers = containers_in(definition);
    }
    return true;
  };
  const choice named{choice::NAMED, line.key.c_str()};
  stored_classes(named, visit<class_row>(note));
}

void class_world::add_accepted_below(const std::string& key, std::vector<line_class*>& lines) {
  const auto [first, behind] = keys_below(key);
  const auto end = accepted_.lower_bound(behind);
  for (auto at = accepted_.lower_bound(first); at != end; ++at) lines.push_back(at->second);
}

void class_world::add_stored_below(const std::string& key, std::vector<line_class*>& lines) {
  const auto add = [&](line_class& line) {
    if (!line.is_accepted) lines.push_back(&line);
  };
  if (!classes_.is_complete) {
    auto note = [&](const class_row& row) { return add(line_of(row.key)), true; };
    const choice below{choice::KEYS_BELOW, key.c_str()};
    stored_classes(below, visit<class_row>(note));
    return;
  }
  const auto is_before = [](const stored_class& c, const std::string& k) { return c.key < k; };
  const auto [first, behind] = keys_below(key);
  const auto end = std::lower_bound(stored_.begin(), stored_.end(), behind, is_before);
  auto at = std::lower_bound(stored_.begin(), stored_.end(), first, is_before);
  for (; at != end; ++at) {
    if (at->line == nullptr) at->line = &line_of(at->key);
    add(*at->line);
  }
}

std::vector<const line_class*> class_world::related_to(const char* class_name) {
  const line_class& own = line_of(folded(class_name));
  std::vector<line_class*> lines;
  for (line_class* above = own.above; above != nullptr; above = above->above)
    lines.push_back(above);
  std::reverse(lines.begin(), lines.end());
  if (has_class(own.key.c_str())) {  // else nothing is below it yet
    add_accepted_below(own.key, lines);
    add_stored_below(own.key, lines);
  }
  for (line_class* line : lines) read_containers(*line);
  return {lines.begin(), lines.end()};
}

}  // namespace dm
