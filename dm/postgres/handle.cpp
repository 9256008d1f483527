#include "dm/postgres/handle.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "dm/postgres/line.h"
#include "dm/postgres/result_rows.h"
#include "dm/schema.h"

namespace dm {

void parameters::keep(std::string text, int format) {
  const std::string& kept = texts_.emplace_back(std::move(text));
  values_.push_back(kept.c_str());
  lengths_.push_back(static_cast<int>(kept.size()));
  formats_.push_back(format);
}

void parameters::add(const char* text) {
  keep(text != nullptr ? text : "", 0);
  if (text == nullptr) values_.back() = nullptr;
}

void collect_rows(postgres_store& store) {
  if (store.fetching != nullptr) store.fetching->collect();
}

bool settle(postgres_store& store, problem& why) {
  collect_rows(store);
  return finish_batches(store, why);
}

// The result of the message, if it could be sent; null and the reason when either failed.
static result_owner answer_to(postgres_store& store, bool is_sent, problem& why) {
  result_owner result = is_sent ? take_answer(store) : nullptr;
  if (succeeded(result.get())) return result;
  postgres_failed(store, result.get(), why);
  return nullptr;
}

result_owner execute(postgres_store& store, const std::string& sql, const parameters& with,
                     problem& why) {
  if (!settle(store, why)) return nullptr;
  return answer_to(store, send_message(store, sql, &with), why);
}

result_owner execute(postgres_store& store, const std::string& sql, problem& why) {
  if (!settle(store, why)) return nullptr;
  return answer_to(store, send_message(store, sql, nullptr), why);
}

// Triggers, rules or row security on the server may swallow rows without an error.
bool has_changed(postgres_store& store, const PGresult* result, uint64_t rows, problem& why) {
  return PQcmdTuples(const_cast<PGresult*>(result)) == std::to_string(rows) ||
         postgres_refuse(store, TAV_ERR_STORAGE, ROWS_SWALLOWED, why);
}

bool change_rows(postgres_store& store, const std::string& sql, const parameters& with,
                 uint64_t rows, problem& why) {
  const result_owner result = execute(store, sql, with, why);
  return result != nullptr && has_changed(store, result.get(), rows, why);
}

std::string limit_waiting(const postgres_store& store) {
  const int64_t left = std::max<int64_t>(1, store.patience.count());  // 0 would be no limit
  return join({"SELECT set_config('lock_timeout', '", std::to_string(left), "', TRUE);"});
}

void spend_patience(postgres_store& store) {
  using std::chrono::milliseconds;
  const auto spent = std::chrono::duration_cast<milliseconds>(steady::now() - store.asked);
  store.patience = std::max(milliseconds(0), store.patience - spent);
}

static constexpr char LOCK_TIMEOUT[] = "55P03", NO_PRIVILEGE[] = "42501";

// What an SQLSTATE, or all that begin so, means: our code, the advice for the administrator, the
// errno that says the same, and whether the stored data is damaged. The first row that fits counts.
static constexpr struct meaning {
  const char* state;
  int code;
  const char* advice;
  int detail = 0;
  bool is_damage = false;
} MEANINGS[] = {
    {LOCK_TIMEOUT, TAV_ERR_BUSY, ANOTHER_WRITES},
    {"40", TAV_ERR_BUSY, ANOTHER_WRITES},
    {"25006", TAV_ERR_WRITE_REFUSED, "the server takes no writes"},
    {NO_PRIVILEGE, TAV_ERR_WRITE_REFUSED,
     "the role may not do that; its owner can grant it, or another role can log in"},
    {"3F000", TAV_ERR_STORAGE,
     "the role may use no schema of its search path; let a schema's owner grant it USAGE and "
     "CREATE there",
     EACCES},
    {"42P01", TAV_ERR_STORAGE, IS_INCOMPLETE, 0, true},
    {"42703", TAV_ERR_STORAGE, IS_INCOMPLETE, 0, true},
    {"23", TAV_ERR_STORAGE, BREAKS_RULES, 0, true},
    {"25P02", TAV_ERR_STORAGE, "what failed before ended the session's transaction; run again"},
    {"57014", TAV_ERR_STORAGE, "the server ended the operation; nothing of it is stored"},
    {"53100", TAV_ERR_STORAGE, "the server's disk is full; make room and try again", ENOSPC},
    {"53200", TAV_ERR_NO_MEM, "the server has not enough memory"},
    {"XX00", TAV_ERR_STORAGE, "the server found it damaged; restore it from a backup", 0, true},
    {"", TAV_ERR_STORAGE, "the server failed; look into its log"},
};

static bool begins(const char* text, const char* start) {
  return std::strncmp(text, start, std::strlen(start)) == 0;
}

static const meaning& meaning_of(const char* state) {
  return *std::find_if(std::begin(MEANINGS), std::end(MEANINGS) - 1,
                       [=](const meaning& row) { return begins(state, row.state); });
}

bool postgres_refuse(const postgres_store& store, int32_t code, std::string_view advice,
                     problem& why) {
  why.code = code;
  why.sentence = join({"Dictionary ", quoted(store.name), ": ", advice, "."});
  return false;
}

bool postgres_damaged(const postgres_store& store, std::string_view advice, problem& why) {
  why.is_damage = true;
  return postgres_refuse(store, TAV_ERR_STORAGE, advice, why);
}

static bool lost(const postgres_store& store, problem& why) {
  why.is_unreachable = true;
  return postgres_refuse(store, TAV_ERR_NOT_CONNECTED,
                         join({"the connection is lost, and nothing of the operation is stored; "
                               "run again when the server is back (",
                               last_words(store), ")"}),
                         why);
}

// A read without the privilege. It is no "write refused" but a storage
// failure, and names the grants.
static bool may_not_read(const postgres_store& store, std::string_view words, problem& why) {
  why.detail = EACCES;
  const std::string advice =
      store.grants.empty()
          ? "row security keeps rows of it from the role; let the owner take it away, or log in as "
            "one that it does not concern"
          : join({"the role may not read it; log in as one that may, or let the owner say: ",
                  store.grants});
  return postgres_refuse(store, TAV_ERR_STORAGE, join({advice, " (", words, ")"}), why);
}

bool postgres_failed(postgres_store& store, const PGresult* result, problem& why) {
  if (is_lost(store)) return lost(store, why);
  const char* state = PQresultErrorField(result, PG_DIAG_SQLSTATE);
  // An error of libpq itself has no SQLSTATE, only a text: that it lacks memory must be read there.
  const bool is_own = state == nullptr;
  if (is_own && std::strstr(PQerrorMessage(store.connection), "memory") != nullptr) {
    throw std::bad_alloc();
  }
  const char* message = PQresultErrorField(result, PG_DIAG_MESSAGE_PRIMARY);
  const char* more = PQresultErrorField(result, PG_DIAG_MESSAGE_DETAIL);
  if (is_own) state = "";
  if (message == nullptr) message = PQerrorMessage(store.connection);
  const std::string words =
      join({state, ": ", one_line(message), more != nullptr ? " " : "", one_line(more)});
  if (begins(state, LOCK_TIMEOUT)) spend_patience(store);
  if (begins(state, NO_PRIVILEGE) && !store.is_writing) return may_not_read(store, words, why);
  const meaning& found = meaning_of(state);
  why.detail = found.detail;
  why.is_damage = found.is_damage;
  return postgres_refuse(store, found.code, join({found.advice, " (", words, ")"}), why);
}

std::string one_line(const char* text) {
  std::string line;
  for (; text != nullptr && *text != '\0'; ++text) {
    const auto byte = static_cast<unsigned char>(*text);
    line += byte < ' ' || byte == 127 ? ' ' : *text;
  }
  const size_t end = line.find_last_not_of(' ');
  return line.substr(0, end == std::string::npos ? 0 : end + 1);
}

// The server's order of letters may have other capitals than ASCII has.
std::string postgres_text(const std::string& text) {
  static constexpr std::string_view LIKE = " LIKE ";
  std::string sql = text;
  for (char& c : sql) c = c == '?' ? '$' : c;
  for (size_t at = 0; (at = sql.find(LIKE, at)) != sql.npos;) {
    sql.replace(at, LIKE.size(), "::TEXT COLLATE \"C\" ILIKE ");
  }
  return sql;
}

}  // namespace dm
