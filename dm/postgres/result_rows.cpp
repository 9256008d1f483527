#include "dm/postgres/result_rows.h"

#include <charconv>
#include <cstring>

#include "dm/postgres/line.h"

namespace dm {

// Rows in a chunk: some 60 KB of fields, about a megabyte of class definitions.
static constexpr int CHUNK = 500;

postgres_rows::postgres_rows(postgres_store& store, const std::string& sql, const parameters& with,
                             bool many, problem& why)
    : store_(store), why_(why) {
  if (!many) {
    chunk_ = execute(store, sql, with, why);
    return;
  }
  // The cursor is never closed: a transaction has few, and they end with it.
  const std::string cursor = "tav_rows_" + std::to_string(++store.cursors);
  fetch_ = join({"FETCH ", std::to_string(CHUNK), " FROM ", cursor});
  if (execute(store, join({"DECLARE ", cursor, " NO SCROLL CURSOR FOR ", sql}), with, why) !=
          nullptr &&
      ask() && take() && PQntuples(chunk_.get()) == CHUNK) {
    ask();
  }
}

postgres_rows::~postgres_rows() {
  collect();
}

bool postgres_rows::ask() {
  if (!settle(store_, why_)) return false;
  if (!send_message(store_, fetch_, nullptr)) return postgres_failed(store_, nullptr, why_);
  store_.fetching = this;
  return true;
}

void postgres_rows::collect() {
  if (store_.fetching != this) return;
  store_.fetching = nullptr;
  coming_ = take_answer(store_);
}

bool postgres_rows::take() {
  collect();
  chunk_ = std::move(coming_);
  row_ = -1;
  if (PQresultStatus(chunk_.get()) == PGRES_TUPLES_OK) return true;
  postgres_failed(store_, chunk_.get(), why_);
  chunk_.reset();
  return false;
}

postgres_rows::outcome postgres_rows::next() {
  if (chunk_ == nullptr) return FAILED;
  if (++row_ < PQntuples(chunk_.get())) return ROW;
  if (fetch_.empty() || PQntuples(chunk_.get()) < CHUNK) return END;
  if (!take()) return FAILED;
  if (PQntuples(chunk_.get()) == CHUNK && !ask()) return FAILED;
  return ++row_ < PQntuples(chunk_.get()) ? ROW : END;
}

int64_t postgres_rows::integer(int column) const {
  const char* digits = PQgetvalue(chunk_.get(), row_, column);
  int64_t value = 0;
  std::from_chars(digits, digits + std::strlen(digits), value);
  return value;
}

const char* postgres_rows::text(int column) const {
  if (PQgetisnull(chunk_.get(), row_, column) != 0) return nullptr;
  return PQgetvalue(chunk_.get(), row_, column);
}

}  // namespace dm
