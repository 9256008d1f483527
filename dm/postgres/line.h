// Sending messages to the server and waiting for its answers.
//
// Every wait has a limit. When the server was silent for `answer_seconds`, it is asked over a
// second connection whether it is at work on the statement. Unless it says yes, or answers but may
// not tell, the connection is given up for good.
#ifndef DM_POSTGRES_LINE_H
#define DM_POSTGRES_LINE_H

#include "dm/postgres/handle.h"

namespace dm {

// Sends one message: a statement and its parameters, or, where these are null, statements. False
// where nothing can be sent.
bool send_message(postgres_store& store, const std::string& sql, const parameters* with);

// What silence means: the server may be at work (ask it), or the connection is given up at once.
// The latter for a commit, which may wait for another server without being at work.
enum class silence { MAY_BE_WORK, IS_THE_END };

// The answer to the message: the result of its last statement, or of the first that failed. Null
// where none came.
result_owner take_answer(postgres_store& store, silence meaning = silence::MAY_BE_WORK);

bool succeeded(const PGresult* result);
// Whether the connection is broken or was given up; and the reason, libpq's or our own.
bool is_lost(const postgres_store& store);
std::string last_words(const postgres_store& store);

}  // namespace dm

#endif
