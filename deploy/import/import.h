// The import: what its steps share, and the checks that they carry out.
//
// A check reports what it finds through deploy::report and goes on, so that one run lists every
// problem; the flags say afterwards whether there was one. It gives 1, or -1 when it could not be
// carried out (a list that cannot be walked), which it has then told.
#ifndef DEPLOY_IMPORT_IMPORT_H
#define DEPLOY_IMPORT_IMPORT_H

#include "deploy/import/entries.h"
#include "deploy/modes.h"
#include "deploy/report.h"
#include "deploy/server.h"

namespace deploy {

// What one run holds. The working lists show the server and the input as one dictionary: they take
// over what the server has, and the run's new definitions are lent to them.
struct import_state {
  const tav_deploy_ctx_t* ctx = nullptr;
  server_session session{};   // outlives the lists
  dd_list fields{DD_FIELDS};  // the input
  dd_list classes{DD_CLASSES};
  class_entries entries{};              // of the input's classes
  dd_list ordered_classes{DD_CLASSES};  // the input's, each after its superclasses, all lent
  dd_flist server_fields{};
  dd_flist server_classes{};
  dd_list working_fields{DD_TYPED_FIELDS};
  dd_list working_classes{DD_CLASSES};
  bool tells_all = false;  // finds on where a run of the modes ends
};

// --- Steps, in their order
int import_read(import_state& state);
int import_fields(import_state& state);
int import_classes(import_state& state);
int import_order(import_state& state);
int import_structure(import_state& state);
int import_storage(import_state& state);

// Whether a replace would deploy what was read: every check and the trial, which stores nothing.
// The state holds the input, and the context of that replace. 1, or -1 after a full report.
int import_try(import_state& state);

}  // namespace deploy

// --- Reading
// Reads the files that the context names, or standard input, and merges each class implementation
// into its interface. The lists are the caller's only on success, and so are the entries.
int tav_deploy_read_import_files(dd_list& fields, dd_list& classes, deploy::class_entries& entries,
                                 const tav_deploy_ctx_t& ctx);
// Copies the storage names of an implementation's entries, at every depth, to the interface's
// entries of the same names. Without any of those every entry is missing there.
int tav_deploy_merge_class_fields(deploy::class_entries& read, deploy::siblings interface,
                                  tav_flist_t* impl_node, const char* class_name);

namespace deploy {

// The same, but tells nothing: false where there was anything to tell. It may then have been done
// in part, and can be done again.
bool merge_silently(class_entries& read, siblings interface, tav_flist_t* impl_node,
                    const char* class_name);
// Merges each class implementation into its interface, and reads the interfaces' entries.
int merge_implementations(dd_list& interfaces, dd_list& implementations, class_entries& entries);

// Copies what a class or field entry has of storage names and clauses, over what the other has.
void merge_storage(tav_flist_t* interface_node, tav_flist_t* impl_node, tav_ebuf* ebuf);

}  // namespace deploy

// --- Superclasses
// Reports the superclasses that neither server nor input has; lends the ordering those that the
// input has, where it lacks them, and the class itself, also where it is there already.
int tav_deploy_prep_subclass(dd_list& ordering, dd_list& working_classes, dd_list& input_classes,
                             tav_flist_t* storable);

namespace deploy {

// --- Structure of a class
struct class_hierarchy;

// A class of the input, as the checks of each class see it: its entries' definitions have been
// sought.
struct checked_class {
  tav_flist_t* element;
  const char* name;
  siblings entries;
  class_entries& read;
  class_hierarchy& hierarchy;
};

}  // namespace deploy

// Whether every field that the class uses, at every depth, is defined with the type it is used
// with.
int tav_deploy_check_field_types(const deploy::checked_class& checked);

namespace deploy {

// Reports the class's top-level arrays and substructs whose names a superclass or subclass has at
// its top level too: 1, or -1 when lists cannot be walked or a name is missing.
int check_hierarchy(const checked_class& checked);
// What a top-level entry may be in a base class or a subclass, and who may have SYSTEM permission.
void check_placement(const class_entry& entry, const char* class_name);

}  // namespace deploy

// Whether the entries nested in an entry (at that depth, 1 for top-level) may be so.
int tav_deploy_check_field_positions(deploy::class_entries& read, deploy::class_entry& entry,
                                     const deploy::entry_scope& scope, int depth);

namespace deploy {

// The same, and a failure is told once more, with the class.
int check_nesting(class_entries& read, class_entry& entry, const entry_scope& scope, int depth);

// --- Storage
// Compares a class's, or a node's entries', storage with what the server has: warnings only.
void check_class_storage_change(tav_flist_t* server_class, tav_flist_t* new_class,
                                const char* class_name, tav_ebuf* ebuf);

}  // namespace deploy

int tav_deploy_check_field_storage_change(tav_flist_t* server_node, tav_flist_t* new_node,
                                          const char* class_name);

// --- Commit
enum {
  TAV_DEPLOY_COMMIT_REAL = 0,
  // The server checks and stores nothing; a failure raises the error flag and the commit goes on.
  TAV_DEPLOY_COMMIT_TRIAL = TCM_OPFLG_TRIAL,
};
// Sends copies of the lists to the server. Another flag word is handed on as it is; a failure then
// ends the commit and raises no flag.
int tav_deploy_import_commit(tcm_context_t* connection, uint32_t flags, const tav_poid_t* identity,
                             tav_flist_t* fields, tav_flist_t* classes, uint64_t database);

#endif
