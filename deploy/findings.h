// The table of findings: everything that the tool prints or logs about definitions, failures and
// the outcome of a run. Places report the id of a row (deploy/report.h).
#ifndef DEPLOY_FINDINGS_H
#define DEPLOY_FINDINGS_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace deploy {

enum class finding_kind {
  FINDING,  // a mistake in the definitions, or a warning about them
  FAILURE,  // of a call, of the surroundings, or of the command line
  CHAIN,    // a step could not be carried out because of what was told before
  OUTCOME,  // how the run ended; on standard output, all others on standard error
  DETAIL    // printed as a part of others: its text is no sentence with placeholders
};

enum class raising { NOTHING, ERROR, CONFLICT, CONFLICT_AND_ERROR };

// What is done in which order. To show is to print the members of the error buffer.
enum class telling { PRINT_LOG, PRINT_SHOW_LOG, LOG_PRINT, LOG_PRINT_SHOW };

struct finding_row {
  const char* id;  // stable: configurations and annotations name it
  finding_kind kind;
  raising raises;
  const char* log_text;  // "": not logged; "{message}": what the place hands on
  const char* text;      // "": only logged
  telling order = telling::PRINT_LOG;
};

// Texts that several rows share, because log texts or what they raise differ.
inline constexpr char INTERNAL_ERROR[] = "Error: Internal Error\n";
inline constexpr char LIST_ERROR[] = "Flist error";
inline constexpr char NOT_OPENED[] = "Error: Unable to open file: {file}\n";
inline constexpr char MISSING_TABLE[] = "missing tablename for array/substruct";
inline constexpr char MISSING_CLASS_TABLE[] = "Missing table name for class";
inline constexpr char SYSTEM_FIELD[] =
    "Error: Storable class {class}, field {field} with SYSTEM permission may not be specified\n";
inline constexpr char FIELDS_NOT_READ[] = "ERROR attempting to read fields from DD";
inline constexpr char FIELDS_NOT_WRITTEN[] = "Error: attempting to export fields to stdout\n";
inline constexpr char NOT_WRITEABLE[] =
    "Error: TCM OP Error, likely cause is tav.conf write flags not set.  Check DM tavlog\n";

// In a text stand {class}, {related} (another class), {field}, {table} and {column} for those of
// the subject, {file}, {line}, {message} and {word} for those of the arguments.
inline constexpr auto FINDINGS = [] {
  using enum finding_kind;
  using enum raising;
  using enum telling;
  // clang-format off
  return std::to_array<finding_row>({
    // --- Command line
    {"usage", FAILURE, NOTHING, "", "Usage: \n"},
    {"invalid-arguments", FAILURE, NOTHING, "Invalid command line args", ""},
    {"unknown-mode", FAILURE, NOTHING, "Invalid Command line args", ""},
    {"usage-asked-for", FAILURE, NOTHING, "Invalid cmd line args", ""},
    {"invalid-switch", FAILURE, NOTHING, "", "Invalid command line switch '{word}'\n"},
    {"switch-refused", CHAIN, NOTHING, "Invalid commandline switch", ""},
    {"invalid-database", FAILURE, NOTHING, "", "Error: invalid db format: \"{word}\" \n"},
    {"invalid-mode", FAILURE, NOTHING, "", "Error: Invalid mode\n"},

    // --- Calls of the client library
    {"list-failed", FAILURE, NOTHING, LIST_ERROR, INTERNAL_ERROR, PRINT_SHOW_LOG},
    {"field-list-failed", FAILURE, NOTHING, "Flist Error", INTERNAL_ERROR, PRINT_SHOW_LOG},
    {"name-not-looked-up", FAILURE, ERROR, LIST_ERROR, INTERNAL_ERROR, PRINT_SHOW_LOG},
    {"number-not-looked-up", FAILURE, ERROR, LIST_ERROR,
     "Error: Internal Error - parsing Flist in tav_deploy_get_field_by_id()\n", PRINT_SHOW_LOG},
    {"not-enough-memory", FAILURE, NOTHING, "There is not enough memory",
     "Error: There is not enough memory\n"},
    {"error-buffer", DETAIL, NOTHING, "",
     "Error: [location=<%s:%d>\nclass=<%s:%d>\nerrno=<%s:%d>\nfield num=<%s:%d,%d>\n"
     "recid=<%d>\nreserved=<%d>]"},
    {"see-dm-log", DETAIL, NOTHING, "",
     "\n\nPlease check the DM tavlog file for more information.\n\n"},
    {"see-cm-log", DETAIL, NOTHING, "",
     "\n\nPlease check the CM tavlog file for more information.\n\n"},
    {"see-application-log", DETAIL, NOTHING, "",
     "\n\nPlease check the application tavlog file for more information.\n\n"},

    // --- Login and the server
    {"missing-identity", FAILURE, NOTHING, "Unable to read userid from tav.conf",
     "Error: Internal Error reading userid from tav.conf\n"},
    {"missing-error-buffer", FAILURE, NOTHING, "",
     "\n*** Error buffer not initialized ***\n"},
    {"connection-failed", FAILURE, NOTHING, "Error during TCM open", INTERNAL_ERROR,
     PRINT_SHOW_LOG},
    {"login-failed", CHAIN, NOTHING, "Unable to login", "Error: Unable to login\n"},
    {"retrieval-failed", FAILURE, NOTHING, "TCM error", INTERNAL_ERROR, PRINT_SHOW_LOG},
    {"class-not-found", FAILURE, NOTHING, "Class not found", "Error: Class not found: {class}\n"},

    // --- Reading definition files
    {"first-file-not-opened", FAILURE, NOTHING, "Error, unable to open file", NOT_OPENED},
    {"file-not-opened", FAILURE, NOTHING, "Unable to open file", NOT_OPENED},
    {"syntax-error", FINDING, NOTHING, "{message}", "Error: in {file} at line {line}: {message}\n"},

    // --- Merging implementations into interfaces
    {"missing-interface", FINDING, ERROR, "storable class implementation with no interface",
     "Error: Storable class implementation {class} specified without interface\n"},
    {"missing-field-interface", FINDING, ERROR, "field interface",
     "Error: Missing field interface for {field} when implementation was provided\n"},
    {"implementation-type-mismatch", FINDING, ERROR,
     "field type mismatch between interface/implementation",
     "Error: field type mismatch between interface/implementation of class {class}, field {field}\n"},
    {"entries-not-merged", CHAIN, NOTHING, "Unable to merge class fields",
     "Error: Unable to merge class fields\n"},
    {"merge-failed", CHAIN, NOTHING, "Unable to merge class implementation fields into interface",
     ""},
    {"class-not-merged", CHAIN, NOTHING,
     "Unable to merge storable class implementation with interface",
     "Error: Unable to merge storable class implementation with interface\n"},
    {"classes-not-merged", CHAIN, NOTHING, "Unable to merge class interface with implementation",
     "Error: Unable to merge class interface with implementation\n"},

    // --- Checking fields
    {"field-number-in-use", FINDING, CONFLICT_AND_ERROR,
     "Duplicate field def by id in use conflict",
     "Error: Conflicting field definition {field}, id in use by different field\n"},
    {"field-type-conflict", FINDING, CONFLICT_AND_ERROR, "Duplicate field def by type conflict",
     "Error: Conflicting field definition {field}, different type\n"},
    {"field-number-conflict", FINDING, CONFLICT_AND_ERROR, "Duplicate field def by id conflict",
     "Error: Conflicting field definition {field}, different id\n"},
    {"field-kept", FINDING, NOTHING, "",
     "Warning: Duplicate field definition {field}, keeping old\n"},
    {"field-description-replaced", FINDING, CONFLICT, "",
     "Warning: Duplicate field definition {field}, replacing description\n"},

    // --- Comparing classes with the server's
    {"class-exists", FINDING, CONFLICT, "", "Warning: Class Name {class} already exists.\n"},
    {"class-table-kept", FINDING, NOTHING, "",
     "Warning: Not allowed to change SQL_TABLE for class: {class}, keeping old\n"},
    {"class-storage-kept", FINDING, NOTHING, "",
     "Warning: Not allowed to change SQL_STORAGE for class: {class}, keeping old\n"},
    {"buf-table-or-column-kept", FINDING, NOTHING, "",
     "Warning: Not allowed to change SQL_TABLE or SQL_COLUMN for class: {class} field: {field}, "
     "keeping old\n"},
    {"table-kept", FINDING, NOTHING, "",
     "Warning: Not allowed to change SQL_TABLE for class: {class} field: {field}, keeping old\n"},
    {"column-kept", FINDING, NOTHING, "",
     "Warning: Not allowed to change SQL_COLUMN for class: {class} field: {field}, keeping old\n"},
    {"storage-kept", FINDING, NOTHING, "",
     "Warning: Not allowed to change SQL_STORAGE for class: {class} field: {field}, keeping old\n"},
    {"storage-changes-not-checked", CHAIN, NOTHING, "Unable to check for changing storage",
     "Error: Unable to check for changing storage specs\n"},
    {"storage-names-not-compared", CHAIN, NOTHING,
     "Unable to check for changing table and column names",
     "Error: Unable to check for changing table and column names\n"},

    // --- Superclasses
    {"class-name-without-slash", FINDING, ERROR, "class name does not begin with a '/'",
     "Error: storable class names must begin with '/': {class}\n"},
    {"missing-superclass", FINDING, ERROR, "Missing parent superclass",
     "Error: Missing parent superclass {related}\n"},
    {"missing-class-name", FAILURE, NOTHING, "Missing class name", INTERNAL_ERROR},
    {"subclass-not-prepared", CHAIN, NOTHING, "Unable to prepare subclass",
     "Error: Unable to prepare subclass\n"},

    // --- The structure of classes
    {"missing-field-definition", FINDING, ERROR, "Missing field definition",
     "Error: Storable class {class}, Missing field definition {field}\n"},
    {"field-type-mismatch", FINDING, ERROR, "field type mismatch",
     "Error: Storable class {class}, field {field} type mismatch\n"},
    {"system-field-in-base-class", FINDING, ERROR,
     "system field not allowed in base except for special cases", SYSTEM_FIELD},
    {"system-field-in-subclass", FINDING, ERROR, "system field not allowed in subclass",
     SYSTEM_FIELD},
    {"field-outside-array", FINDING, ERROR, "field outside of array in subclass",
     "Error: Storable class {class}, field {field} is outside Array or Substruct\n"},
    {"substruct-in-base-class", FINDING, ERROR, "substruct in base class",
     "Error: Storable class {class}, substruct {field} not allowed in base class\n"},
    {"illegal-nesting", FINDING, ERROR, "Illegally nested field",
     "Error: Storable class {class}, Illegally nested field {field}\n"},
    {"nested-substruct", FINDING, ERROR, "Illegally nested substruct",
     "Error: Storable class {class}, Illegally nested substruct {field}\n"},
    {"repeated-field", FINDING, ERROR, "Duplicate class field",
     "Error: Storable class {class}, Multiple use of field {field}\n"},
    {"array-in-related-class", FINDING, ERROR, "Array or Substruct conflict in class hierarchy",
     "Error: Array or Substruct conflict in class hierarchy {related}, {class}, {field}\n"},
    {"field-types-not-checked", CHAIN, NOTHING, "Unable to check field types",
     "Error: Unable to check field types\n"},
    {"class-types-not-checked", CHAIN, NOTHING, "Unable to verify class field types",
     "Error: Unable to verify field types for {class}\n"},
    {"nesting-not-checked", CHAIN, NOTHING, "Error: Internal Error", INTERNAL_ERROR},
    {"positions-not-checked", CHAIN, NOTHING, "Unable to check field positions",
     "Error: Unable to check field positions for {class}\n"},
    {"class-structure-not-checked", CHAIN, NOTHING, "Unable to verify class structure",
     "Error: Unable to verify class structure for {class}\n"},
    {"array-not-checked", CHAIN, NOTHING, "Unable to check duplicate array",
     "Error: Unable to check duplicate array {field}\n"},
    {"class-hierarchy-not-checked", CHAIN, NOTHING,
     "Unable to verify class hierarchy array or substruct conflicts",
     "Error: Unable to verify class hierarchy array or substruct conflicts, {class}\n"},

    // --- Tables and columns
    {"missing-class-table", FINDING, ERROR, MISSING_CLASS_TABLE,
     "Error:  Missing table name for {class}\n"},
    {"table-in-subclass", FINDING, ERROR, "Invalid table in subclass, not needed",
     "Error:  No table needed for subclass {class}\n"},
    {"field-not-defined", FINDING, ERROR, "missing field definition",
     "Error: Field {field} not defined\n"},
    {"field-without-type", FINDING, ERROR, "missing field type definition",
     "Error: Field {field} has no type definition\n"},
    {"missing-table", FINDING, ERROR, MISSING_TABLE,
     "Error: missing tablename for array/substruct: {field}\n"},
    {"missing-buf-storage", FINDING, ERROR, "missing tablename/column for BUF",
     "Error: missing table name and column name for BUF: {field}\n"},
    {"missing-buf-table", FINDING, ERROR, "missing table name for BUF field",
     "Error: missing table name for BUF field {field}\n"},
    {"missing-buf-column", FINDING, ERROR, "missing column name for BUF field",
     "Error: missing column name for BUF field {field} in table: {table}\n"},
    // The log text lacks its first letter: administrators search for it as it is.
    {"missing-column", FINDING, ERROR, "issing column name for field",
     "Error: missing column name for field {field} in table: {table}\n"},
    {"column-without-table", FINDING, ERROR, "column without table",
     "Error: Column without Table\n"},
    {"repeated-table", FINDING, ERROR, "duplicate table name",
     "Error: duplicate table name: {table}\n"},
    {"repeated-column", FINDING, ERROR, "duplicate column name",
     "Error: duplicate column {column} within table: {table}\n"},
    {"storage-not-read", FAILURE, ERROR, LIST_ERROR, INTERNAL_ERROR, PRINT_SHOW_LOG},
    {"table-not-kept", FAILURE, ERROR, MISSING_TABLE, INTERNAL_ERROR, PRINT_SHOW_LOG},
    {"class-table-not-read", FAILURE, ERROR, MISSING_CLASS_TABLE, "Error:  Internal Error",
     PRINT_SHOW_LOG},
    {"storage-names-not-collected", CHAIN, NOTHING, "Error: while determining table/column names",
     "Error: while determining table/column names\n"},
    {"server-storage-not-collected", CHAIN, NOTHING,
     "Unable to obtain table/column names from Server classes",
     "Error:  Unable to obtain table/column names from Server classes\n"},
    {"new-storage-not-collected", CHAIN, NOTHING,
     "Unable to obtain table/column names from new classes",
     "Error:  Unable to obtain table/column names from new classes\n"},
    {"columns-not-compared", CHAIN, NOTHING, "while checking for unique column names",
     "Error:  while checking for unique column names\n"},
    {"storage-not-compared", CHAIN, NOTHING, "while checking for unique storage names",
     "Error:  while checking for unique storage names\n"},

    // --- Steps of the import that failed
    {"files-not-read", CHAIN, NOTHING, "Error reading import files", ""},
    {"server-fields-not-retrieved", CHAIN, NOTHING, "Unable to retreive fields from Quorvale",
     "Error: Unable to retreive fields from Quorvale\n"},
    {"server-classes-not-retrieved", CHAIN, NOTHING, "Unable to retreive classes from Quorvale",
     "Error: Unable to retreive classes from Quorvale\n"},
    {"fields-not-checked", CHAIN, NOTHING, "Error while checking for field conflicts",
     "Error: while checking for field conflicts\n"},
    {"conflicting-classes-not-checked", CHAIN, NOTHING, "Unable to check for conflicting classes",
     "Error: Unable to check for conflicting classes\n"},
    {"superclasses-not-checked", CHAIN, NOTHING, "Unable to check for parentless subclasses",
     "Error: Unable to check for parentless subclasses\n"},
    {"classes-not-checked", CHAIN, NOTHING, "Error while checking for class conflicts",
     "Error: while checking for class conflicts\n"},
    {"storage-not-checked", CHAIN, NOTHING, "Error while checking for class field conflicts",
     "Error: while checking for class field conflicts\n"},

    // --- Deployment
    {"fields-not-writeable", FAILURE, NOTHING,
     "TCM Error while trying to set fld specs, tav.conf writeable flag not set", NOT_WRITEABLE,
     LOG_PRINT_SHOW},
    {"classes-not-writeable", FAILURE, NOTHING,
     "TCM Error while trying to set class specs, tav.conf writeable flag not set", NOT_WRITEABLE,
     LOG_PRINT_SHOW},
    // Of classes too: administrators search the log for this text.
    {"definitions-refused", FAILURE, NOTHING, "TCM Error while trying to set fld specs", "",
     LOG_PRINT_SHOW},
    {"trial-not-rolled-back", FAILURE, NOTHING, "TCM Error while trying to delete fld specs",
     INTERNAL_ERROR, PRINT_SHOW_LOG},
    {"no-conflicts", OUTCOME, NOTHING, "", "No Conflicts detected\n"},
    {"conflicts", OUTCOME, NOTHING, "", "Conflicts detected\n"},
    {"conflicts-not-committed", OUTCOME, NOTHING, "",
     "Conflicts Detected...nothing committed\n"},
    {"conflicts-committed", OUTCOME, NOTHING, "",
     "\nWarning: Conflicts Detected...attempting to commit/replace\n"},
    {"errors", OUTCOME, NOTHING, "Errors Detected...nothing committed",
     "\nErrors Detected...nothing committed\n"},
    {"fields-committed", OUTCOME, NOTHING, "", "Fields committed successfully!\n"},
    {"classes-committed", OUTCOME, NOTHING, "", "Classes committed successfully!\n"},
    {"outcome-not-written", FAILURE, NOTHING, "Unable to write the outcome to stdout",
     "Error: Unable to write the outcome to stdout\n"},

    // --- Exports
    {"fields-not-retrieved", CHAIN, NOTHING, FIELDS_NOT_READ,
     "Error: attempting to retrieve all fields from Quorvale Server\n"},
    {"selected-fields-not-retrieved", CHAIN, NOTHING, FIELDS_NOT_READ,
     "Error: attempting to retrieve selected fields from Quorvale Server\n"},
    {"classes-not-retrieved", CHAIN, NOTHING, "ERROR attempting to read classes from DD",
     "Error: attempting to retrieve storable classes from Quorvale Server\n"},
    {"unknown-field", FAILURE, NOTHING, "", "Error: Unknown field: {field}\n"},
    {"fields-not-selected", CHAIN, NOTHING, "ERROR attempting to filter field list",
     INTERNAL_ERROR},
    {"fields-not-written", FAILURE, NOTHING, "ERROR attempting to export fields to stdout",
     FIELDS_NOT_WRITTEN},
    {"unnamed-field", FAILURE, NOTHING, LIST_ERROR, "Internal error\n", PRINT_SHOW_LOG},
    {"differing-definitions", FAILURE, NOTHING,
     "Duplicate field definition of different type or ID",
     "Error: Duplicate field definition of different type or id\n", LOG_PRINT},
    {"field-not-included", CHAIN, NOTHING, "Unable to include field",
     "Error: Unable to include field\n"},
    {"entries-not-included", CHAIN, NOTHING, "Unable to include class fields",
     "Error: Unable to include class fields\n"},
    {"class-not-included", CHAIN, NOTHING, "Unable to include fields in class during export",
     "Error: Unable to include fields in class during export\n"},
    {"interface-fields-not-written", CHAIN, NOTHING, "Unable to export Interface fields",
     "Error: Unable to export interface fields\n"},
    {"used-fields-not-written", CHAIN, NOTHING, "ERROR attempting to export class fields",
     "Error: attempting to export class fields\n"},
    {"interfaces-not-written", FAILURE, NOTHING, "ERROR attempting to export classes to stdout",
     "Error: attempting to export class definitions to stdout\n"},
    // The screen names fields here, the log class definitions.
    {"implementations-not-written", FAILURE, NOTHING,
     "ERROR attempting to export class definitions to stdout", FIELDS_NOT_WRITTEN},
  });
  // clang-format on
}();

// The row of an id. An id that the table does not have fails the build.
class finding {
 public:
  consteval finding(const char* id) {
    while (std::string_view(FINDINGS[row_].id) != id) ++row_;
  }
  constexpr finding() : row_(FINDINGS.size()) {}  // none

  constexpr explicit operator bool() const { return row_ < FINDINGS.size(); }
  constexpr size_t place() const { return row_; }
  constexpr const finding_row& row() const { return FINDINGS[row_]; }

 private:
  size_t row_ = 0;
};

}  // namespace deploy

#endif
