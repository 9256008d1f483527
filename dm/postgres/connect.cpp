// Connecting. The entry `dictionary` may hold a password. So no message repeats any of its text; it
// names only host, port, database and role, as libpq has parsed them.
#include <cstdlib>

#include "dm/postgres/handle.h"
#include "vantor/binding.h"

namespace dm {

static bool bad_entry(std::string_view fault, problem& why) {
  why.code = TAV_ERR_BAD_CONF;
  why.sentence = join({"Entry 'dictionary' of section [dm] names a PostgreSQL server, but ", fault,
                       ". It is not repeated here, because it may hold a password."});
  return false;
}

// Refuses a URL whose user or password holds an unescaped '/', '?' or '@'. libpq would take a part
// of such a password for the host, port or database, which messages repeat.
static bool is_plain_url(const std::string& where, problem& why) {
  const size_t start = where.find("://");
  if (start == std::string::npos || where.find('=') < start) return true;
  const std::string rest = where.substr(start + 3);
  const size_t login = rest.find('@');
  if (login == std::string::npos) return true;
  const bool is_plain = login < rest.find_first_of("/?") && rest.find('@', login + 1) == rest.npos;
  return is_plain || bad_entry(
                         "user or password holds one of '/', '?' and '@', which are written "
                         "%2F, %3F and %40 there",
                         why);
}

struct free_options {
  void operator()(PQconninfoOption* options) const { PQconninfoFree(options); }
};

// Whether libpq's messages may repeat this option's value: not where it may hold a password.
static bool is_harmless(std::string_view keyword, std::string_view value, problem& why) {
  if (keyword == "port" && value.find_first_not_of("0123456789,") != value.npos) {
    return bad_entry("its port is no number", why);
  }
  return !tav_text_holds_password(value) ||
         bad_entry("the value of one of its keys looks like one with a password in it", why);
}

// Parses the entry as libpq will, and refuses what libpq cannot parse or what may hold a password.
static bool parse(const std::string& where, problem& why) {
  char* fault = nullptr;
  const std::unique_ptr<PQconninfoOption, free_options> options(
      PQconninfoParse(where.c_str(), &fault));
  PQfreemem(fault);
  if (options == nullptr) {
    return bad_entry("is neither a URL nor a string of keys and values that its library takes",
                     why);
  }
  for (const PQconninfoOption* option = options.get(); option->keyword != nullptr; ++option) {
    const std::string keyword = option->keyword;
    const std::string value = option->val != nullptr ? option->val : "";
    const bool is_secret = keyword == "password" || keyword == "sslpassword";
    if (!is_secret && !is_harmless(keyword, value, why)) return false;
  }
  return true;
}

static const char* text_or(const char* text, const char* other) {
  return text != nullptr && *text != '\0' ? text : other;
}

// The parameters of a connection, for PQconnectdbParams. "dbname" stands for the whole entry: it
// overrides the parameters before it, and those after it override the entry. The keepalive times
// make a dead connection known within a minute.
struct connect_values {
  static constexpr const char* KEYWORDS[] = {"connect_timeout",
                                             "keepalives_idle",
                                             "keepalives_interval",
                                             "keepalives_count",
                                             "tcp_user_timeout",
                                             "fallback_application_name",
                                             "dbname",
                                             "client_encoding",
                                             "host",
                                             "hostaddr",
                                             "port",
                                             nullptr};
  const char* values[std::size(KEYWORDS)];
};

// `there`: a connection to the server that must be reached again; null: any that the entry names.
static connect_values values_for(const char* where, const PGconn* there) {
  return {{text_or(std::getenv("PGCONNECT_TIMEOUT"), "10"), "30", "10", "3", "60000",
           program_invocation_short_name, where, "UTF8", there != nullptr ? PQhost(there) : nullptr,
           there != nullptr ? PQhostaddr(there) : nullptr,
           there != nullptr ? PQport(there) : nullptr, nullptr}};
}

static PGconn* connect(const std::string& where) {
  return PQconnectdbParams(connect_values::KEYWORDS, values_for(where.c_str(), nullptr).values, 1);
}

PGconn* connect_beside(const postgres_store& store) {
  const connect_values with = values_for(store.where.c_str(), store.connection);
  return PQconnectStartParams(connect_values::KEYWORDS, with.values, 1);
}

static std::string name_of(const PGconn* connection) {
  return join({text_or(PQdb(connection), "?"), " at ", text_or(PQhost(connection), "?"), ":",
               text_or(PQport(connection), "?"), " as ", text_or(PQuser(connection), "?")});
}

static std::string without(std::string text, const std::string& secret) {
  for (size_t at = 0; !secret.empty() && (at = text.find(secret, at)) != std::string::npos;) {
    text.replace(at, secret.size(), "***");
    at += 3;
  }
  return text;
}

static void pass_over(void*, const PGresult*) {}

store_owner connect_postgres(const std::string& where, const open_options& options, problem& why) {
  if (!is_plain_url(where, why) || !parse(where, why)) return nullptr;
  auto* store = new postgres_store;
  store->calls = &POSTGRES_CALLS;
  store->look_up_cost = 8;
  store->where = where;
  store->options = options;
  store->patience = std::chrono::milliseconds(options.busy_milliseconds);
  store_owner owner(store);
  store->connection = connect(where);
  if (store->connection == nullptr) throw std::bad_alloc();
  store->name = name_of(store->connection);
  PQsetNoticeReceiver(store->connection, pass_over, nullptr);
  if (PQsetnonblocking(store->connection, 1) == 0) return owner;
  const std::string words =
      without(one_line(PQerrorMessage(store->connection)), PQpass(store->connection));
  postgres_refuse(*store, TAV_ERR_NOT_CONNECTED,
                  join({"the server cannot be reached, or does not let us in (", words, ")"}), why);
  return nullptr;
}

}  // namespace dm
