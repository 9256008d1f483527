#include "dm/postgres/postgres_handle.h"

#include <cstring>

#include "dm/postgres/postgres_rows.h"
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

void settle(postgres_store& store) {
  if (store.fetching != nullptr) store.fetching->collect();
}

static bool succeeded(const PGresult* result) {
  const ExecStatusType status = PQresultStatus(result);
  return status == PGRES_TUPLES_OK || status == PGRES_COMMAND_OK;
}

result_owner execute(postgres_store& store, const std::string& sql, const parameters& with,
                     problem& why) {
  settle(store);
  result_owner result(PQexecParams(store.connection, sql.c_str(), with.count(), nullptr,
                                   with.values(), with.lengths(), with.formats(), 0));
  if (succeeded(result.get())) return result;
  postgres_failed(store, result.get(), why);
  return nullptr;
}

bool run(postgres_store& store, const char* sql, problem& why) {
  settle(store);
  const result_owner result(PQexec(store.connection, sql));
  return succeeded(result.get()) || postgres_failed(store, result.get(), why);
}

// What an SQLSTATE (or the class that it begins with) means: our code, and what to tell the
// administrator. The first that fits counts.
static constexpr struct {
  const char* state;
  int code;
  const char* advice;
  bool is_damage = false;
} MEANINGS[] = {
    {"55P03", TAV_ERR_BUSY, ANOTHER_WRITES},
    {"40", TAV_ERR_BUSY, ANOTHER_WRITES},
    {"25006", TAV_ERR_WRITE_REFUSED, "the server takes no writes"},
    {"42501", TAV_ERR_WRITE_REFUSED,
     "the role may not do that; its owner can grant it, or another role can log in"},
    {"42P01", TAV_ERR_STORAGE, IS_INCOMPLETE, true},
    {"42703", TAV_ERR_STORAGE, IS_INCOMPLETE, true},
    {"23", TAV_ERR_STORAGE, BREAKS_RULES, true},
    {"25P02", TAV_ERR_STORAGE, "what failed before ended the session's transaction; run again"},
    {"57014", TAV_ERR_STORAGE, "the server ended the operation; nothing of it is stored"},
    {"53100", TAV_ERR_STORAGE, "the server's disk is full; make room and try again"},
    {"53200", TAV_ERR_NO_MEM, "the server has not enough memory"},
    {"XX00", TAV_ERR_STORAGE, "the server found it damaged; restore it from a backup", true},
};

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
  const std::string words = one_line(PQerrorMessage(store.connection));
  return postgres_refuse(store, TAV_ERR_NOT_CONNECTED,
                         join({"the connection is lost, and nothing of the operation is stored; "
                               "run again when the server is back (",
                               words, ")"}),
                         why);
}

bool postgres_failed(const postgres_store& store, const PGresult* result, problem& why) {
  if (PQstatus(store.connection) == CONNECTION_BAD) return lost(store, why);
  const char* state = PQresultErrorField(result, PG_DIAG_SQLSTATE);
  // The library itself has but words for it.
  const bool is_own = state == nullptr;
  if (is_own && std::strstr(PQerrorMessage(store.connection), "memory") != nullptr) {
    throw std::bad_alloc();
  }
  const char* message = PQresultErrorField(result, PG_DIAG_MESSAGE_PRIMARY);
  const char* more = PQresultErrorField(result, PG_DIAG_MESSAGE_DETAIL);
  int32_t code = TAV_ERR_STORAGE;
  why.is_damage = false;
  const char* advice = "the server failed; look into its log";
  for (const auto& meaning : MEANINGS) {
    if (state == nullptr || std::strncmp(state, meaning.state, std::strlen(meaning.state)) != 0) {
      continue;
    }
    code = meaning.code;
    why.is_damage = meaning.is_damage;
    advice = meaning.advice;
    break;
  }
  const std::string words =
      one_line(message != nullptr ? message : PQerrorMessage(store.connection));
  return postgres_refuse(store, code,
                         join({advice, " (", state != nullptr ? state : "", ": ", words,
                               more != nullptr ? " " : "", one_line(more), ")"}),
                         why);
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

std::string postgres_text(const std::string& text) {
  std::string sql = text;
  for (char& c : sql) c = c == '?' ? '$' : c;
  return sql;
}

}  // namespace dm
