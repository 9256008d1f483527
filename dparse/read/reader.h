// The definition language, read: definition files become a list of fields, a list of class
// interfaces and a list of class implementations.
//
// The reader's state is process-wide and serves one parse at a time. It prints nothing: a failure
// is a result below 1, a message and a line in the error state, and records in the log.
// No function closes a stream or pushes back more than one character.
#ifndef DPARSE_READ_READER_H
#define DPARSE_READ_READER_H

#include <cstddef>
#include <cstdio>
#include <functional>
#include <span>

#include "dd/list.h"
#include "dd/vantor.h"
#include "dparse/read/messages.h"
#include "dparse/tokens.h"

// --- Error state ------------------------------------------------------------------------------
namespace dparse {
inline constexpr size_t MESSAGE_SIZE = 4224;
}

extern char dparse_fname[dparse::TEXT_SIZE];         // name of the file being read
extern int dparse_lineno;                            // current line, 1 for the first
extern char dparse_errmsg[dparse::TEXT_SIZE];        // first message since the file's start, or ""
extern char dparse_emsg_temp[dparse::MESSAGE_SIZE];  // where every message is formatted

// Sets the file name that errors show; null empties it.
void dparseSetFname(const char* name);
const char* dparseGetFname();
// Records the message (copied, cut to 2047 bytes) unless one stands already; null is none.
void dparseSetErrMsg(const char* message);
const char* dparseGetErrMsg();
// The line of the last character consumed, a consumed newline counted.
int dparseGetErrLine();

namespace dparse {
// The message in the error state. NONE where there is none, or one that dparseSetErrMsg was given.
// It is not always that of the failure: a word that is too long is recorded and fails nothing, and
// stands for the failure that comes later.
message standing_message();
// Those logged since the file's start, in order: from what failed outwards.
std::span<const message> logged_messages();
}  // namespace dparse

// --- Whole files ------------------------------------------------------------------------------
// The lists are appended to: definitions of fields (DD_FIELDS), of class interfaces and of class
// implementations (DD_CLASSES). After a failure they keep what was read before it.

namespace dparse {

// The input opened but could not be read (a directory, an I/O error). No message is recorded, and
// ferror(stream) holds.
inline constexpr int UNREADABLE = -2;

// Is shown each implementation before its list gets it. True: nobody needs its content any more;
// the list then gets one that has only the name.
using implementation_user = std::function<bool(tav_flist_t* implementation)>;

// Field entries may be nested so deep and no deeper: everything that walks them can rely on it.
inline constexpr int MAX_DEPTH = 10240;

}  // namespace dparse

// Reads the whole stream: 1, dparse::UNREADABLE, or -1 with a message.
int dparseDefFile(FILE* stream, dd_list* field_list, dd_list* class_list, dd_list* impl_list,
                  const dparse::implementation_user& use = {});
// The same; with a filter (an implementation's name), blocks of other implementations are read and
// dropped, and implementation blocks are not tested for duplicates.
int dparseDefFileExt(FILE* stream, dd_list* field_list, dd_list* class_list, dd_list* impl_list,
                     const char* filter);
// Reads one definition: 1 (also at the end of input), or -1 with a message.
int dparseFromTop(FILE* stream, dd_list* field_list, dd_list* class_list, dd_list* impl_list,
                  const char* filter);
// -1 with a message when the list holds a class of that name or cannot be walked, else 0.
int dparseIsDuplicateClass(dd_list* list, const char* name);

// --- Field entries ----------------------------------------------------------------------------
// Each reads one entry whose type keyword has just been read, and appends it to the parent (a class
// or an entry): 1, or -1 with a message and the parent unchanged.
int dparseClassField(FILE* stream, tav_flist_t* parent, int type_token);
int dparseImplClassField(FILE* stream, tav_flist_t* parent, int type_token);
int dparseImplClassFieldLdapV3(FILE* stream, tav_flist_t* parent, int type_token);

// --- Values -----------------------------------------------------------------------------------
// Each reads what follows an attribute's keyword, up to and including ";".

// = "text" "more text";  Gives 1 and the value, \n and \t made real; or -1 with a message. The
// pieces together, with a terminator, must fit into the output. A null output is allowed; the size
// is then dparse::TEXT_SIZE.
int dparseString(FILE* stream, char* output, size_t size);
// = 0;  Gives 0, 1, or -1 with a message.
int dparseMultivalued(FILE* stream);
// = Self;  Gives the level's token number (53 to 57) and its stored text, or -1 with a message. The
// size is not consulted: any stored text fits into 32 bytes.
int dparseReadWriteAccessLevel(FILE* stream, char* output, size_t size);

// --- Characters and tokens --------------------------------------------------------------------
// Reads a character (or end of file, -1) and counts a newline.
int dparse_fgetc(FILE* stream);
// Pushes a character back, and counts a newline back; end of file is ignored.
int dparse_ungetc(int c, FILE* stream);
// Skips white space and comments (# to the end of the line); gives 1.
int dparseSkipSpaceComs(FILE* stream);
// Reads a token: its number, and its text cut to the buffer. With a null buffer the text is dropped
// and the size ignored.
int dparseGetToken(FILE* stream, char* text, size_t size);
// Compares two texts without regard to case: 0 for equal.
int dparseIsEqual(const char* a, const char* b);

#endif
