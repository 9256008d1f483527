#include "deploy/import/entries.h"

#include <algorithm>

#include "dd/memory.h"
#include "dd/system_permission.h"
#include "dd/values.h"
#include "deploy/lookup.h"

static constexpr char MODULE[] = "tav_deploy_import";

void deploy::read_storage(deploy::class_entry& entry, tav_ebuf* ebuf) {
  entry.storage = dd_text(entry.element, TAV_FLD_SQL_TABLE, at(ebuf, HERE));
  entry.storage_hash = dd_hash(entry.storage);
}

void deploy::read_all_storage(deploy::siblings entries, tav_ebuf* ebuf) {
  for (deploy::class_entry* entry = entries.first; entry != entries.last; ++entry) {
    if (entry->storage == nullptr) deploy::read_storage(*entry, ebuf);
  }
}

static void add_entries(std::vector<deploy::class_entry>& entries, tav_flist_t* node,
                        tav_ebuf* ebuf) {
  dd_walk walk(node, TAV_FLD_OBJ_ELEM);
  while (tav_flist_t* element = walk.next(at(ebuf, HERE))) {
    const size_t place = entries.size();
    deploy::class_entry& entry = entries.emplace_back();
    entry.element = element;
    entry.name = dd_text(element, TAV_FLD_FIELD_NAME, at(ebuf, HERE));
    entry.type = dd_int(element, TAV_FLD_FIELD_TYPE, at(ebuf, HERE));
    entry.hash = dd_hash(entry.name);
    if (dd_has_any(element, TAV_FLD_OBJ_ELEM, at(ebuf, HERE))) {
      add_entries(entries, element, ebuf);
      if (entries.size() > deploy::class_entry::MOST) throw std::bad_alloc();
      entries[place].size = (entries.size() - place) & deploy::class_entry::MOST;
    }
  }
}

static deploy::siblings all_of(std::vector<deploy::class_entry>& entries) {
  return {entries.data(), entries.data() + entries.size()};
}

static bool is_system(tav_flist_t* element, uint32_t permission, tav_ebuf* ebuf) {
  return dd_is_system(dd_text(element, permission, at(ebuf, HERE)));
}

// A class of very many entries gives its memory away, so that there are never two of them. Throws
// std::bad_alloc.
static deploy::siblings keep(deploy::class_entries& read, deploy::siblings entries) {
  constexpr size_t MANY = 1024;
  const auto count = static_cast<size_t>(entries.last - entries.first);
  auto& blocks = read.blocks;
  if (count >= 64 * MANY) {
    blocks.push_back(std::move(read.reading));
    read.reading.clear();
    return entries;
  }
  if (blocks.empty() || blocks.back().capacity() - blocks.back().size() < count) {
    blocks.emplace_back().reserve(std::max(count, MANY));
  }
  auto& block = blocks.back();
  block.insert(block.end(), entries.first, entries.last);
  deploy::class_entry* end = block.data() + block.size();
  return {end - count, end};
}

deploy::siblings deploy::entries_of(deploy::class_entries& read, tav_flist_t* storable,
                                    tav_ebuf* ebuf) {
  if (dd_failed(*ebuf)) return {};
  const auto known = read.classes.find(storable);
  if (known != read.classes.end()) return known->second;
  const deploy::siblings entries = deploy::read_entries(read.reading, storable, ebuf);
  for (deploy::class_entry& entry : entries) {
    entry.creates_as_system = is_system(entry.element, TAV_FLD_CREATE_PERMISSION, ebuf);
    entry.modifies_as_system = is_system(entry.element, TAV_FLD_MODIFY_PERMISSION, ebuf);
  }
  deploy::siblings kept;
  dd_with_memory(at(ebuf, HERE), [&] {
    kept = read.classes.try_emplace(storable, keep(read, entries)).first->second;
  });
  return kept;
}

deploy::siblings deploy::read_entries(std::vector<deploy::class_entry>& entries,
                                      tav_flist_t* storable, tav_ebuf* ebuf) {
  entries.clear();
  dd_with_memory(at(ebuf, HERE), [&] { add_entries(entries, storable, ebuf); });
  if (dd_failed(*ebuf)) return {};
  return all_of(entries);
}

void deploy::mark_repeated(deploy::siblings siblings,
                           dd_index<dd_by_name, deploy::class_entry*>& seen) {
  if (siblings.first == siblings.last) return;
  seen.clear();
  for (deploy::class_entry& entry : siblings) {
    deploy::class_entry* first = seen.add_first(entry.name, entry.hash, &entry);
    if (first == &entry) continue;
    first->is_repeated = entry.is_repeated = entry.repeats_earlier = true;
  }
}

void deploy::find_definitions(deploy::siblings entries, dd_list& fields) {
  for (const deploy::class_entry* entry = entries.first; entry != entries.last; ++entry) {
    fields.prefetch_name(entry->hash);
  }
  for (deploy::class_entry* entry = entries.first; entry != entries.last; ++entry) {
    const dd_known* found = deploy::known_field(fields, entry->name, entry->hash);
    if (found == nullptr) continue;
    entry->defined_type = found->type;
    entry->is_defined = true;
  }
}
