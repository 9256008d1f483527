// How a data manager is bound to the client library: what it provides, and what the library lends
// it.
//
// The only header that both sides share. Exactly one data manager is linked into a program: ours,
// or a test's double.
#ifndef VANTOR_BINDING_H
#define VANTOR_BINDING_H

#include <array>
#include <cstddef>
#include <string_view>

#include "dd/call.h"
#include "dd/vantor.h"

// --- What a data manager provides
// -----------------------------------------------------------------

struct tav_dm_session;  // the data manager's own

struct tav_data_manager {
  // Opens the dictionary that the configuration names: a session, owned by the library and ended by
  // close, or null with the error set. Gives the database number of the login identity (0 if none).
  tav_dm_session* (*connect)(uint64_t* database, tav_ebuf* ebuf);
  // Carries out one operation. The input is read only; gives the output list, owned by the caller,
  // or null with the error set.
  tav_flist_t* (*op)(tav_dm_session* session, uint32_t opcode, uint32_t flags,
                     const tav_flist_t* input, tav_ebuf* ebuf);
  // Ends the session and frees it, also when it fails. Without an error buffer the session is given
  // up: nothing that is not durable yet becomes so.
  void (*close)(tav_dm_session* session, tav_ebuf* ebuf);
};

// The data manager of this program; defined by the data manager.
const tav_data_manager* tav_bound_data_manager();

// --- What the library lends it
// ----------------------------------------------------------------------

// Sets an error buffer, unless it holds an error already; the one place that does.
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
// operation was refused). The sentence is taken as it is.
enum class tav_component { CM, DM };
void tav_component_log(tav_component component, int32_t level, const char* sentence, dd_site site);

// The configuration file in use ("" where none was found), the folder that relative paths are taken
// from, and the line of an entry (0 where it has none). Borrowed texts.
const char* tav_conf_file();
const char* tav_conf_folder();
int tav_conf_line(const char* program, const char* key);

// Why the file cannot be used, as a sentence that begins with it and the line; "" where it can. Its
// entries are then none. Borrowed.
const char* tav_conf_problem();
// The file's entry at a place from 0 on, its section "" above any; false behind the last. Borrowed.
struct tav_conf_entry {
  const char* section;
  const char* name;
  int line;
};
bool tav_conf_entry_at(size_t place, tav_conf_entry& entry);

// What the library and its programs look for above any section.
enum tav_common_entry { TAV_CONF_USERID, TAV_CONF_LOG_DIR, TAV_CONF_LOG_LEVEL };
inline constexpr std::array<const char*, 3> TAV_COMMON_ENTRIES = {"userid", "log_dir", "log_level"};

// Whether what names a dictionary may hold a password, in whatever spelling; also when in doubt.
bool tav_text_holds_password(std::string_view dictionary);

// Reading a list without unsharing what its copies share. A node is a list or an element; it lives
// as long as the list and must not be read after the list was written to.
struct tav_node;
const tav_node* tav_node_of(const tav_flist_t* list);
// The next element after *position (0 before the first), or null at the end.
const tav_node* tav_node_next(const tav_node* node, uint32_t array, uint32_t* position,
                              int32_t* elem_id);
uint32_t tav_node_count(const tav_node* node, uint32_t array);
// The value of a scalar field, or null; null too where the value has another type than the field.
const void* tav_node_get(const tav_node* node, uint32_t field);
// Which fields' values go where: by field number one more than the place, 0 for none.
struct tav_value_places {
  const uint8_t* by_number;
  size_t numbers;
  const uint32_t* fields;  // by place
};
// Puts the values of all these fields to their places, as get gives them; of an array that has
// elements, the node. Places of fields that are not there stay as they are.
void tav_node_values(const tav_node* node, const tav_value_places& places, const void** values);

// Adds an element with scalar values, as elem_add and a set for each value do, but at once. Gives
// the element, borrowed; null when it fails, and the array is then as it was.
struct tav_value {
  uint32_t field;
  const void* value;
};
tav_flist_t* tav_elem_add_filled(tav_flist_t* list, uint32_t array, int32_t elem_id,
                                 const tav_value* values, size_t count, tav_ebuf* ebuf);

#endif
