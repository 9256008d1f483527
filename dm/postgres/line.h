// Messages to the server, and waiting for what it answers.
//
// No wait is without end. A server that was silent for the time that the settings give is asked
// over a second connection whether it is at work on the statement; where it does not say so, the
// line is given up. A lost line is asked nothing more.
#ifndef DM_POSTGRES_LINE_H
#define DM_POSTGRES_LINE_H

#include "dm/postgres/handle.h"

namespace dm {

// Sends one message: a statement and its parameters, or, where these are null, statements. False
// where nothing can be sent.
bool send_message(postgres_store& store, const std::string& sql, const parameters* with);

// Whether a server that is silent is given up at once, or may be at work: a commit may wait for
// another server, which is no work.
enum class silence { MAY_BE_WORK, IS_THE_END };

// The answer to the message: the last result, or the first that failed. Null where none came.
result_owner take_answer(postgres_store& store, silence meaning = silence::MAY_BE_WORK);

bool succeeded(const PGresult* result);
// Whether the line is broken, or was given up; and why, in the words of who noticed it.
bool is_lost(const postgres_store& store);
std::string last_words(const postgres_store& store);

}  // namespace dm

#endif
