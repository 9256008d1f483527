// The tool: what the command line asks for, the modes that carry it out, and the status that the
// importing modes end with.
#ifndef DEPLOY_MODES_H
#define DEPLOY_MODES_H

#include <cstdint>
#include <cstdio>

enum {
  TAV_DEPLOY_MODE_CLASS = 1,
  TAV_DEPLOY_MODE_FIELD = 2,
  TAV_DEPLOY_MODE_VERIFY = 3,
  TAV_DEPLOY_MODE_CREATE = 4,
  TAV_DEPLOY_MODE_REPLACE = 5,
};

namespace deploy {

inline constexpr int MAX_NAMES = 2048;
// The database number while "-d" waits for its word; passed on as it is when none comes.
inline constexpr uint64_t DATABASE_AWAITED = UINT64_MAX;

}  // namespace deploy

// One run's order. The names are the process's own argument texts.
struct tav_deploy_ctx_t {
  uint32_t mode;
  int32_t export_interface;    // -n
  int32_t export_impl;         // -m
  int32_t include_subclasses;  // -s
  int32_t select_custom;       // -c
  int32_t select_predefined;   // -p
  uint64_t database;           // -d: four groups of 16 bits; 0 stands for the login's database
  const char* names[deploy::MAX_NAMES];
  int32_t name_count;
};

// The modes: 1 or more for success, 0 or less for failure.
int tav_deploy_export_class(tav_deploy_ctx_t* ctx);
int tav_deploy_export_fields(tav_deploy_ctx_t* ctx);
int tav_deploy_import(tav_deploy_ctx_t* ctx);

// Whether the input cannot be deployed (error) or differs from what the server holds (conflict): 1
// from the start, -1 once raised, never lowered again.
extern int32_t tav_deploy_verify_status;
extern int32_t tav_deploy_conflict_status;
int tav_deploy_get_error();
int tav_deploy_get_conflict();
void tav_deploy_raise_error();
void tav_deploy_raise_conflict();

// How many field definitions and classes the import has read.
extern int32_t tav_deploy_fld_count;
extern int32_t tav_deploy_class_count;

namespace deploy {

// A mode, as the command line gives it.
struct mode_row {
  uint32_t mode;
  const char* word;   // in capitals
  const char* usage;  // behind the program's name
  int (*run)(tav_deploy_ctx_t* ctx);
};

// In the order in which the usage shows them.
inline constexpr mode_row MODES[] = {
    {TAV_DEPLOY_MODE_CLASS, "CLASS", "class [-smncp] <class1 class2..>", tav_deploy_export_class},
    {TAV_DEPLOY_MODE_FIELD, "FIELD", "field [-cp] <field1 field2..>", tav_deploy_export_fields},
    {TAV_DEPLOY_MODE_VERIFY, "VERIFY", "verify [-d <target_db> ] <file1 file2..>",
     tav_deploy_import},
    {TAV_DEPLOY_MODE_CREATE, "CREATE", "create [-d <target_db> ] <file1 file2..>",
     tav_deploy_import},
    {TAV_DEPLOY_MODE_REPLACE, "REPLACE", "replace [-d <target_db> ] <file1 file2..>",
     tav_deploy_import},
};

}  // namespace deploy

// A null program prints as tav_deploy.
void tav_deploy_display_usage(FILE* stream, const char* program);

namespace deploy {

// Reads a command line into a context; 1, or -1 when it was refused (and the operator told why).
int read_arguments(int argc, char** argv, tav_deploy_ctx_t* ctx);

}  // namespace deploy

#endif
