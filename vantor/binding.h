// The interface between the client library and a data manager: what each provides to the other.
//
// The only header that both include. Exactly one data manager is linked into a program: ours, or
// a test's double.
#ifndef VANTOR_BINDING_H
#define VANTOR_BINDING_H

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "dd/call.h"
#include "dd/vantor.h"

// --- What a data manager provides -------------------------------------------------------------

struct tav_dm_session;  // defined by the data manager

struct tav_data_manager {
  // Opens the dictionary that the configuration names: a session, owned by the library and ended by
  // close, or null with the error set. Gives the database number of the login identity (0 if none).
  tav_dm_session* (*connect)(uint64_t* database, tav_ebuf* ebuf);
  // Carries out one operation. The input is read only; gives the output list, owned by the caller,
  // or null with the error set.
  tav_flist_t* (*op)(tav_dm_session* session, uint32_t opcode, uint32_t flags,
                     const tav_flist_t* input, tav_ebuf* ebuf);
  // Ends the session and frees it, also when it fails. Without an error buffer the session is
  // given up: what is not durable yet is rolled back.
  void (*close)(tav_dm_session* session, tav_ebuf* ebuf);
};

// The data manager of this program; defined by the data manager.
const tav_data_manager* tav_bound_data_manager();

// --- What the library provides ----------------------------------------------------------------

// Sets an error buffer, unless it holds an error already. The only place that does.
struct tav_error {
  int32_t location;
  int32_t err_class;
  int32_t code;
  uint32_t field = 0;
  int32_t rec_id = 0;
  int32_t reserved = 0;
};
void tav_set_error(tav_ebuf* ebuf, const tav_error& error);

// Writes one record into the tavlog of the CM (the dictionary cannot be reached) or of the DM (an
// operation was refused). The sentence is no format.
enum class tav_component { CM, DM };
void tav_component_log(tav_component component, int32_t level, const char* sentence, dd_site site);

// The path of the configuration file in use ("" where none was found); the folder that relative
// paths are taken from; the line of an entry (0: the file has no such entry). Texts are borrowed.
const char* tav_conf_file();
const char* tav_conf_folder();
int tav_conf_line(const char* program, const char* key);

// Why the file cannot be used: a sentence that begins with its path and the line. Then no entry is
// found. "" where the file can be used. Borrowed.
const char* tav_conf_problem();
// The file's entry number `place`, counted from 0; section "" means above any section. False beyond
// the last. The texts are borrowed.
struct tav_conf_entry {
  const char* section;
  const char* name;
  int line;
};
bool tav_conf_entry_at(size_t place, tav_conf_entry& entry);

// The entries that the library and its programs look up for themselves.
enum tav_common_entry { TAV_CONF_USERID, TAV_CONF_LOG_DIR, TAV_CONF_LOG_LEVEL };
inline constexpr std::array<const char*, 3> TAV_COMMON_ENTRIES = {"userid", "log_dir", "log_level"};

// The running program and how it was called, for the dictionary's journal. A program that another
// one's author linked with the library is told like our own.
struct tav_caller {
  std::string program;                 // name of its file
  std::string version;                 // of this library
  std::vector<std::string> arguments;  // without the program's name
  std::string reason;                  // TAV_REASON of the environment
};
tav_caller tav_caller_of_process();

// Whether a text that names a dictionary may hold a password, in any spelling. True when in doubt.
bool tav_text_holds_password(std::string_view dictionary);

// Reading a list without handing out its elements: that would unshare what copies of it share. A
// node is a list or an element. It must not be read after the list was written to or destroyed.
struct tav_node;
const tav_node* tav_node_of(const tav_flist_t* list);
// The next element, or null at the end. *position is 0 before the first call, and then advanced.
const tav_node* tav_node_next(const tav_node* node, uint32_t array, uint32_t* position,
                              int32_t* elem_id);
uint32_t tav_node_count(const tav_node* node, uint32_t array);
// The value of a scalar field; null where it is absent or the field is no scalar.
const void* tav_node_get(const tav_node* node, uint32_t field);
// Assigns places to fields, for tav_node_values.
struct tav_value_places {
  const uint8_t* by_number;  // by field number: the field's place plus 1, or 0 for none
  size_t numbers;            // size of by_number
  const uint32_t* fields;    // by place: the field identifier
};
// Reads many fields in one pass: stores each one's value at its place, as tav_node_get gives it;
// for an array that has elements, the node itself. Places of absent fields are left as they are.
void tav_node_values(const tav_node* node, const tav_value_places& places, const void** values);

// Adds an element with scalar values, like tav_flist_elem_add and tavi_flist_set for each value,
// but faster. Gives the element, borrowed; null when it fails, and the array is then unchanged.
struct tav_value {
  uint32_t field;
  const void* value;
};
tav_flist_t* tav_elem_add_filled(tav_flist_t* list, uint32_t array, int32_t elem_id,
                                 const tav_value* values, size_t count, tav_ebuf* ebuf);

#endif
