#include "dm/postgres/line.h"

#include <poll.h>

#include <algorithm>

namespace dm {

using std::chrono::milliseconds;

bool succeeded(const PGresult* result) {
  const ExecStatusType status = PQresultStatus(result);
  return status == PGRES_TUPLES_OK || status == PGRES_COMMAND_OK;
}

bool is_lost(const postgres_store& store) {
  return !store.given_up.empty() || PQstatus(store.connection) == CONNECTION_BAD;
}

std::string last_words(const postgres_store& store) {
  return store.given_up.empty() ? one_line(PQerrorMessage(store.connection)) : store.given_up;
}

// Waits for one of the events; false when the time is over. On an encrypted connection, bytes may
// wait inside the encryption library, where poll cannot see them: so libpq is asked at intervals of
// 1, 2, 4, ... ms as well.
static bool await(PGconn* line, short events, milliseconds limit) {
  const auto end = steady::now() + limit;
  const bool may_hide = PQsslInUse(line) != 0 || PQgssEncInUse(line) != 0;
  milliseconds slice = may_hide ? milliseconds(1) : limit;
  for (;; slice *= 2) {
    const auto left = std::chrono::ceil<milliseconds>(end - steady::now());
    if (left.count() <= 0) return false;
    pollfd socket = {PQsocket(line), events, 0};
    if (poll(&socket, 1, static_cast<int>(std::min(slice, left).count())) > 0) return true;
    if (may_hide && (PQconsumeInput(line) == 0 || PQisBusy(line) == 0)) return true;
  }
}

// Whether the server lets us in; `has_answered`: it says something at least.
static bool finish_connecting(PGconn* line, milliseconds limit, bool& has_answered) {
  PostgresPollingStatusType state = PGRES_POLLING_WRITING;
  while (PQstatus(line) != CONNECTION_BAD && state != PGRES_POLLING_OK) {
    const bool is_reading = state == PGRES_POLLING_READING;
    if (!await(line, is_reading ? POLLIN : POLLOUT, limit)) return false;
    has_answered = has_answered || is_reading;
    state = PQconnectPoll(line);
  }
  return PQstatus(line) == CONNECTION_OK && PQsetnonblocking(line, 1) == 0;
}

static milliseconds limit_of(const postgres_store& store) {
  return milliseconds(store.options.answer_milliseconds);
}

// Whether the server says that it is at work for us, or may not tell (no further connection is left
// for the role, or nothing is tracked) but answers. Who waits for the client is not at work: our
// message, or its answer, is lost. Nor is who waits for a lock for longer than the server allows.
static bool is_at_work(const postgres_store& store) {
  static constexpr char STATE[] =
      "SELECT state IS DISTINCT FROM 'idle' AND state IS DISTINCT FROM 'idle in transaction'"
      " AND wait_event_type IS DISTINCT FROM 'Client'"
      " AND NOT (wait_event_type IS NOT DISTINCT FROM 'Lock' AND $2)"
      " FROM pg_stat_activity WHERE pid = $1";
  postgres_store other;
  other.options = store.options;
  const connection_owner line(connect_beside(store));
  other.connection = line.get();
  if (line == nullptr) return false;
  bool has_answered = false;
  if (!finish_connecting(line.get(), limit_of(store), has_answered)) return has_answered;
  const bool is_past_locks = steady::now() - store.asked > store.patience + limit_of(store);
  const parameters asked(int64_t{PQbackendPID(store.connection)}, is_past_locks ? "t" : "f");
  if (!send_message(other, STATE, &asked)) return false;
  const result_owner answer = take_answer(other, silence::IS_THE_END);
  return PQntuples(answer.get()) == 1 && *PQgetvalue(answer.get(), 0, 0) == 't';
}

static bool wait_for(postgres_store& store, short events, silence meaning) {
  while (!await(store.connection, events, limit_of(store))) {
    if (meaning == silence::MAY_BE_WORK && is_at_work(store)) continue;
    store.given_up = join({"no answer for ", std::to_string(store.options.answer_milliseconds),
                           " ms; entry 'answer_seconds' of section [dm] says how long to wait"});
    return false;
  }
  return true;
}

bool send_message(postgres_store& store, const std::string& sql, const parameters* with) {
  if (is_lost(store)) return false;
  PGconn* line = store.connection;
  store.asked = steady::now();
  const int queued = with == nullptr
                         ? PQsendQuery(line, sql.c_str())
                         : PQsendQueryParams(line, sql.c_str(), with->count(), nullptr,
                                             with->values(), with->lengths(), with->formats(), 0);
  if (queued == 0) return false;
  int left = 0;
  while ((left = PQflush(line)) == 1) {
    // Reads as well: a server that cannot send may not read our message, and both would wait.
    if (!wait_for(store, POLLIN | POLLOUT, silence::MAY_BE_WORK)) return false;
    if (PQconsumeInput(line) == 0) break;
  }
  return left >= 0;
}

result_owner take_answer(postgres_store& store, silence meaning) {
  result_owner answer;
  while (store.given_up.empty()) {
    while (PQisBusy(store.connection) != 0) {
      if (!wait_for(store, POLLIN, meaning)) return nullptr;
      if (PQconsumeInput(store.connection) == 0) break;
    }
    result_owner next(PQgetResult(store.connection));
    if (next == nullptr) break;
    if (answer == nullptr || succeeded(answer.get())) answer = std::move(next);
  }
  return answer;
}

}  // namespace dm
