// The client library: lists, object ids, decimals, error buffers, logs, configuration, connection.
//
// A C interface, so that the tool can be linked with any library that exports these names.
// Conventions that hold for every call:
//
//  1. Error buffers. A call that can fail takes one last. It does nothing (and gives null or 0) if
//     the buffer already holds an error, so a sequence of calls may be tested once at its end. A
//     null error buffer is allowed; the failure is then seen in the result only.
//  2. Ownership. Each pointer is one of: *owned* by the caller afterwards, *borrowed* (valid while
//     the list that it came from lives and the value is neither set anew nor dropped), *copied* in,
//     or *taken* over by the callee. A call that fails takes nothing and changes nothing.
//  3. Texts are NUL-terminated bytes; numbers are in host order; no call changes the locale, and
//     none throws.
//  4. One thread at a time may use a list, an id, a decimal or a connection.
#ifndef DD_VANTOR_H
#define DD_VANTOR_H

#include <stddef.h>
#include <stdint.h>

#include "dd/error_codes.h"
#include "dd/field_ids.h"
#include "dd/opcodes.h"
#include "dd/types.h"

#ifdef __cplusplus
extern "C" {
#endif

#if defined(__GNUC__)
#define TAV_PRINTF(text, first) __attribute__((__format__(__printf__, text, first)))
#else
#define TAV_PRINTF(text, first)
#endif

typedef struct tav_flist tav_flist_t;            // a field list
typedef struct tav_poid tav_poid_t;              // an object id: database, type, id
typedef struct tav_decimal_value tav_decimal_t;  // an exact decimal that keeps its written digits
typedef struct tav_cookie tav_cookie_t;          // a place in a walk; null before the first element
typedef struct tcm_context tcm_context_t;        // a connection to a dictionary

// What went wrong, and at which call. All zero (and no file name) means no error.
typedef struct tav_ebuf {
  int32_t location;      // component, TAV_ERRLOC_
  int32_t err_class;     // TAV_ERRCLASS_
  int32_t err_code;      // TAV_ERR_; 0 no error, 3 nothing more to find, 65 write refused
  uint32_t field;        // identifier of the field concerned, 0 for none
  int32_t rec_id;        // id of the element concerned
  int32_t reserved;      // detail code (the store's own result code, an errno)
  int32_t line_no;       // source line of the call, written by the caller before it
  const char* filename;  // source file of the call, a text that outlives the buffer; may be null
} tav_ebuf;

// The value of a BUF or BINSTR field. In lists the bytes belong to the list.
typedef struct tav_buf {
  uint32_t size;
  unsigned char* data;
} tav_buf_t;

// --- Lists ------------------------------------------------------------------------------------
// A list holds at most one value per scalar field and SUBSTRUCT field, and per ARRAY field any
// number of elements, each a list under its element id. Elements keep the order in which they were
// added. Every operation on an element, by order or by id, takes constant time (amortised).
//
// Value pointers by field type: INT, ENUM int32_t*; INT64, TIMESTAMP int64_t*; NUM double*; STRING
// char*; BUF, BINSTR tav_buf_t*; POID tav_poid_t*; DECIMAL tav_decimal_t*; SUBSTRUCT, and an
// element of an ARRAY, tav_flist_t*. No list holds a field of type UNUSED, OBJ or EBUF.
// Errors: location 2; TAV_ERR_WRONG_TYPE for a type that the call cannot handle.

// Gives an empty list, owned.
tav_flist_t* tav_flist_create(tav_ebuf* ebuf);
// Frees the list and everything in it; null is allowed.
void tav_flist_destroy(tav_flist_t* list, tav_ebuf* ebuf);
// Gives an independent copy, owned. Costs the same whatever the list's size: both share what
// neither has written or handed out since.
tav_flist_t* tav_flist_copy(const tav_flist_t* list, tav_ebuf* ebuf);

// Gives the field's value, borrowed, or null where it is absent: with optional 0 that is
// TAV_ERR_MISSING_FIELD, with 1 no error. For an ARRAY field, the element `elem_id`.
void* tavi_flist_get(tav_flist_t* list, uint32_t field, int32_t elem_id, int32_t optional,
                     int32_t reserved, tav_ebuf* ebuf);
// Copies the value in, over an earlier one (which keeps its place).
void tavi_flist_set(tav_flist_t* list, uint32_t field, int32_t elem_id, int32_t reserved,
                    const void* value, tav_ebuf* ebuf);
// As set, but takes the value (a heap value owned by the caller: a poid, a decimal, a list). A list
// that was put as an element stays valid under the same pointer, borrowed from then on. After
// a failed put the caller still owns it and releases it with tavi_client_put_cleanup. A list must
// not be put into itself or below itself. Putting a null POID is no error and does nothing.
void tavi_flist_put(tav_flist_t* list, uint32_t field, int32_t elem_id, int32_t reserved,
                    void* value, tav_ebuf* ebuf);
// Frees a value by its field's type: what a failed put did not take, what tav_conf gave.
void tavi_client_put_cleanup(void* value, uint32_t field, int32_t reserved);
// Removes the field, or the element of an ARRAY field; TAV_ERR_NOT_FOUND when absent.
void tavi_flist_drop(tav_flist_t* list, uint32_t field, int32_t elem_id, tav_ebuf* ebuf);

// Adds an empty element (an existing one of that id is emptied, in its place) and gives it,
// borrowed.
tav_flist_t* tav_flist_elem_add(tav_flist_t* list, uint32_t array, int32_t elem_id, tav_ebuf* ebuf);
// Gives the next element in order, borrowed, its id (where asked for) and the new place. After the
// last: null and TAV_ERR_NOT_FOUND. Elements may be added and dropped during a walk: those added
// are met, those dropped are not. The cookie needs no release.
tav_flist_t* tav_flist_elem_get_next(tav_flist_t* list, uint32_t array, int32_t* elem_id,
                                     int32_t reserved, tav_cookie_t** cookie, int32_t reserved2,
                                     tav_ebuf* ebuf);
// As get-next, but removes the element from the list and gives it owned.
tav_flist_t* tav_flist_elem_take_next(tav_flist_t* list, uint32_t array, int32_t* elem_id,
                                      int32_t reserved, tav_cookie_t** cookie, int32_t reserved2,
                                      tav_ebuf* ebuf);
// The number of elements; 0 when there is none.
int32_t tav_flist_elem_count(tav_flist_t* list, uint32_t array, tav_ebuf* ebuf);

// --- Object ids -------------------------------------------------------------------------------
// Gives a new id, owned; the type text is copied (null counts as empty).
tav_poid_t* tav_poid_create(uint64_t database, const char* type, int64_t id, tav_ebuf* ebuf);
// Gives a copy, owned; the copy of no id is none, and no error.
tav_poid_t* tav_poid_copy(const tav_poid_t* poid, tav_ebuf* ebuf);
void tav_poid_destroy(tav_poid_t* poid, tav_ebuf* ebuf);
// The parts of an id (the type is borrowed); of no id 0, "" and 0.
uint64_t tav_poid_get_db(const tav_poid_t* poid);
const char* tav_poid_get_type(const tav_poid_t* poid);
int64_t tav_poid_get_id(const tav_poid_t* poid);

// --- Decimals ---------------------------------------------------------------------------------
// Gives the decimal of a text: optional sign, digits with an optional fraction (".5" and "5." are
// allowed), nothing else; owned. Anything else: TAV_ERR_BAD_VALUE. Released by put or put-cleanup.
tav_decimal_t* tav_decimal(const char* text, tav_ebuf* ebuf);
// Gives a zero, owned; its text is "0".
tav_decimal_t* tav_decimal_alloc_result_zero(tav_ebuf* ebuf);
// Writes the decimal's text as it was written; TAV_ERR_BAD_ARG when it does not fit into `size`.
void tav_decimal_to_str(const tav_decimal_t* decimal, int32_t mode, char* buffer, size_t size,
                        tav_ebuf* ebuf);

// --- Names and texts (borrowed, never null) ---------------------------------------------------
// The symbolic name of a field identifier; for one not known its type keyword and number ("INT
// 12").
const char* tav_name_of_field(uint32_t field);
const char* tav_errloc_to_str(int32_t location);
const char* tav_errclass_to_str(int32_t err_class);
const char* tav_taverr_to_str(int32_t err_code);

// --- Configuration ----------------------------------------------------------------------------
// Looks an entry up in tav.conf: the program's own section first, then the entries above any
// section. Program "-" sees only the latter. Value types: POID (tav_poid_t*), STRING (char*), INT
// (int32_t*), each owned by the caller and released with tavi_client_put_cleanup. *error is 0 or a
// TAV_ERR_ code (NOT_FOUND for an entry that is missing); *value is null then.
void tav_conf(const char* program, const char* key, int32_t type, void** value, int32_t* error);

// --- Log --------------------------------------------------------------------------------------
// One record each in the application's tavlog; level 1 for errors and warnings, 3 for debugging.
// Texts are taken as they are, never as formats. A log that cannot be written is passed over.
void tav_err_log_msg(int32_t level, const char* message, const char* source, int32_t line);
void tav_err_log_ebuf(int32_t level, const char* message, const char* source, int32_t line,
                      const tav_ebuf* ebuf);
void tav_log_flist(int32_t level, const char* message, const char* source, int32_t line,
                   tav_flist_t* list);
// Sets which levels are written: those up to `level`.
void tav_err_set_level(int32_t level);

// --- Bounded texts ----------------------------------------------------------------------------
// All write at most `size` bytes, terminator included, and always terminate (unless size is 0).
// They give the length that the whole text would have had.
size_t tav_snprintf(char* buffer, size_t size, const char* format, ...) TAV_PRINTF(3, 4);
size_t tav_strlcpy(char* buffer, const char* text, size_t size);
size_t tav_strlcat(char* buffer, const char* text, size_t size);

// --- Connection -------------------------------------------------------------------------------
// Opens the dictionary that the configuration names. On success *context is owned and closed with
// tcm_context_close; on failure it is null. Errors: location 5 (the dictionary cannot be reached).
void tcm_connect(tcm_context_t** context, uint64_t* database, tav_ebuf* ebuf);
// Carries out one operation. `input` is read only; *output is owned, and null on failure. Without a
// connection: location 3, TAV_ERR_NOT_CONNECTED. The data manager's own errors have location 4.
void tcm_op(tcm_context_t* context, uint32_t opcode, uint32_t flags, tav_flist_t* input,
            tav_flist_t** output, tav_ebuf* ebuf);
// Ends the session and frees the connection, also when it fails; null is allowed. Without an error
// buffer, or with one that holds an error, the session is given up: fields that were set as its
// very last operation, which the server may still take for a trial, are not kept.
void tcm_context_close(tcm_context_t* context, int32_t reserved, tav_ebuf* ebuf);

#ifdef __cplusplus
}
#endif

#endif
