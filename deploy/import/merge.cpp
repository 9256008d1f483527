// Merges the field entries of a class implementation into its interface.
#include <unordered_map>

#include "dd/attributes.h"
#include "dd/memory.h"
#include "dd/values.h"
#include "dd/walk.h"
#include "deploy/import/import.h"
#include "deploy/report.h"

static constexpr char MODULE[] = "tav_deploy_import";

using enum deploy::definition_side;

// Where an interface and its entries are stored.
static constexpr auto STORAGE = dd_attributes_in<DD_IN_SQL_CLASS | DD_IN_SQL_ENTRY>();
static_assert(std::ranges::all_of(STORAGE,
                                  [](const dd_attribute& row) {
                                    return row.kind == dd_value_kind::TEXT;
                                  }),
              "the merge carries texts alone");

void deploy::merge_storage(tav_flist_t* interface_node, tav_flist_t* impl_node, tav_ebuf* ebuf) {
  // Nothing else of an implementation is kept, neither its kind nor directory attributes.
  for (const dd_attribute& row : STORAGE) {
    const char* text = dd_text_or_null(impl_node, row.field, at(ebuf, HERE));
    if (text != nullptr) dd_set_text(interface_node, row.field, text, at(ebuf, HERE));
  }
}

namespace {

// The interface's entries of a node. An implementation mostly has them in the same order, so that
// the one behind the last is tried before any look-up.
struct counterparts {
  deploy::siblings entries;
  deploy::class_entry* next = entries.first;
  bool is_indexed = false;
  dd_index<dd_by_name, deploy::class_entry*> by_name{};
};

// One class. An implementation may name a node again and again: its entries are gone through once.
struct merge {
  deploy::class_entries& read;
  bool is_silent;        // findings and failures are not told, but
  bool is_clean = true;  // whether there was none
  std::unordered_map<const deploy::class_entry*, counterparts> nodes{};  // by first entry
};

}  // namespace

static void tell(merge& of_class, dd_site site, deploy::finding what, const char* name,
                 const deploy::entry_scope& scope) {
  of_class.is_clean = false;
  if (!of_class.is_silent) deploy::report(site, what, scope.of(name, IMPLEMENTATION));
}

static void merge_entry(merge& of_class, deploy::class_entry& entry, tav_flist_t* impl_entry,
                        const char* name, const deploy::entry_scope& scope, tav_ebuf* ebuf) {
  const int32_t impl_type = dd_int(impl_entry, TAV_FLD_FIELD_TYPE, at(ebuf, HERE));
  if (dd_failed(*ebuf)) return;
  if (entry.type != impl_type) tell(of_class, HERE, "implementation-type-mismatch", name, scope);
  deploy::merge_storage(entry.element, impl_entry, ebuf);
  deploy::read_storage(entry, ebuf);  // while the entry is at hand
}

static deploy::class_entry* look_up(counterparts& in, const char* name) {
  if (!in.is_indexed) {
    for (deploy::class_entry& entry : in.entries) in.by_name.add(entry.name, entry.hash, &entry);
    in.is_indexed = true;
  }
  deploy::class_entry* const* found = in.by_name.find(name);
  return found != nullptr ? *found : nullptr;
}

// The first entry of that name, or null.
static deploy::class_entry* counterpart(counterparts& in, const char* name) {
  deploy::class_entry* found = in.next;
  if (found == in.entries.last || found->repeats_earlier || !dd_equal(found->name, name)) {
    found = look_up(in, name);
  }
  if (found != nullptr) in.next = found + found->size;
  return found;
}

// Entries may be nested ten thousand levels deep: what looks up, merges and reports stays out of
// the frame of merge_node(), which calls itself.
[[gnu::noinline]] static counterparts* counterparts_of(merge& of_class, deploy::siblings interface,
                                                       tav_ebuf* ebuf) {
  counterparts* in = nullptr;
  dd_with_memory(at(ebuf, HERE), [&] {
    const auto [node, is_new] =
        of_class.nodes.try_emplace(interface.first, counterparts{interface});
    if (is_new) deploy::mark_repeated(interface, of_class.read.seen);
    node->second.next = interface.first;
    in = &node->second;
  });
  return in;
}

// The entry that the implementation's was merged into, or null.
[[gnu::noinline]] static deploy::class_entry* merge_named(merge& of_class, counterparts* in,
                                                          const char* name, tav_flist_t* impl_entry,
                                                          const deploy::entry_scope& scope,
                                                          tav_ebuf* ebuf) {
  deploy::class_entry* entry = nullptr;
  dd_with_memory(at(ebuf, HERE), [&] { entry = counterpart(*in, name); });
  if (dd_failed(*ebuf)) return nullptr;
  if (entry == nullptr) {
    tell(of_class, HERE, "missing-field-interface", name, scope);
    return nullptr;
  }
  merge_entry(of_class, *entry, impl_entry, name, scope, ebuf);
  return entry;
}

[[gnu::noinline]] static int not_merged(merge& of_class, const char* name,
                                        const deploy::entry_scope& scope) {
  tell(of_class, HERE, "entries-not-merged", name, scope);
  return -1;
}

[[gnu::noinline]] static int call_failed(merge& of_class, const tav_ebuf& ebuf) {
  of_class.is_clean = false;
  return of_class.is_silent ? -1 : deploy::call_failed(HERE, ebuf);
}

static int merge_node(merge& of_class, deploy::siblings interface, tav_flist_t* impl_node,
                      const deploy::entry_scope& scope) {
  tav_ebuf ebuf{};
  counterparts* in = counterparts_of(of_class, interface, &ebuf);
  dd_walk walk(impl_node, TAV_FLD_OBJ_ELEM);
  while (tav_flist_t* impl_entry = walk.next(at(&ebuf, HERE))) {
    const char* name = dd_text(impl_entry, TAV_FLD_FIELD_NAME, at(&ebuf, HERE));
    deploy::class_entry* entry = merge_named(of_class, in, name, impl_entry, scope, &ebuf);
    if (!dd_has_any(impl_entry, TAV_FLD_OBJ_ELEM, at(&ebuf, HERE))) continue;
    const deploy::entry_path path{name, scope.around};
    const deploy::entry_scope inside{scope.class_name, &path};
    const deploy::siblings nested =
        entry != nullptr ? deploy::nested_in(*entry) : deploy::siblings{};
    if (merge_node(of_class, nested, impl_entry, inside) < 1)
      return not_merged(of_class, name, scope);
  }
  return dd_failed(ebuf) ? call_failed(of_class, ebuf) : 1;
}

int tav_deploy_merge_class_fields(deploy::class_entries& read, deploy::siblings interface,
                                  tav_flist_t* impl_node, const char* class_name) {
  merge of_class{read, false};
  return merge_node(of_class, interface, impl_node, {class_name});
}

bool deploy::merge_silently(deploy::class_entries& read, deploy::siblings interface,
                            tav_flist_t* impl_node, const char* class_name) {
  merge of_class{read, true};
  merge_node(of_class, interface, impl_node, {class_name});
  return of_class.is_clean;
}
