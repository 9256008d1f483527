#include "dm/postgres/batch.h"

#include <cstring>

#include "dm/postgres/handle.h"
#include "dm/postgres/line.h"

namespace dm {

static constexpr size_t FULL = 1 << 20;  // bytes

// Whether a statement's answer is there is looked at once in so many changes: each look is a call
// of the system.
static constexpr uint32_t CHANGES_PER_LOOK = 64;

// By `change`.
static constexpr const char* STATEMENTS[] = {
    "DELETE FROM dd_fields f USING unnest($1::bigint[], $2::bigint[]) AS r (database, number)"
    " WHERE f.database = r.database AND f.number = r.number",
    "DELETE FROM dd_tables t USING unnest($1::bigint[], $2::text[]) AS r (database, folded)"
    " WHERE t.database = r.database AND t.folded = r.folded",
    "DELETE FROM dd_classes c USING unnest($1::bigint[]) AS r (id) WHERE c.id = r.id",
    "UPDATE dd_fields f SET descr = r.descr, stamp = r.stamp"
    " FROM unnest($1::bigint[], $2::bigint[], $3::text[], $4::bigint[])"
    " AS r (database, number, descr, stamp)"
    " WHERE f.database = r.database AND f.number = r.number",
    "UPDATE dd_classes c SET stamp = r.stamp, definition = r.definition::json"
    " FROM unnest($1::bigint[], $2::bigint[], $3::text[]) AS r (id, stamp, definition)"
    " WHERE c.id = r.id",
    "INSERT INTO dd_fields (database, folded, name, number, type, descr, flags, stamp)"
    " SELECT * FROM unnest($1::bigint[], $2::text[], $3::text[], $4::bigint[], $5::bigint[],"
    " $6::text[], $7::bigint[], $8::bigint[])",
    "INSERT INTO dd_classes (id, database, folded, name, stamp, definition)"
    " SELECT id, database, folded, name, stamp, definition::json"
    " FROM unnest($1::bigint[], $2::bigint[], $3::text[], $4::text[], $5::bigint[], $6::text[])"
    " AS r (id, database, folded, name, stamp, definition)",
    "INSERT INTO dd_tables (database, folded, name, class)"
    " SELECT * FROM unnest($1::bigint[], $2::text[], $3::text[], $4::bigint[])",
    "INSERT INTO dd_journal_changes (record, part, content)"
    " SELECT * FROM unnest($1::bigint[], $2::bigint[], $3::text[])",
};
static_assert(std::size(STATEMENTS) == static_cast<size_t>(change::CHANGES));

// The type numbers (OIDs) of bigint and text, which are the same on every server.
static constexpr uint32_t BIGINT_TYPE = 20, TEXT_TYPE = 25;

// The header of an array: number of dimensions, 1 because NULLs may occur, element type, and the
// size and the first index of the dimension.
static constexpr size_t HEADER_SIZE = 5 * sizeof(uint32_t);

// A number in the protocol's byte order, the highest byte first.
template <class Number>
static void write_number(char* bytes, Number value) {
  for (size_t i = sizeof value; i-- > 0; value = static_cast<Number>(value >> 8)) {
    bytes[i] = static_cast<char>(value);
  }
}

template <class Number>
static void put_number(std::string& bytes, Number value) {
  char number[sizeof value];
  write_number(number, value);
  bytes.append(number, sizeof number);
}

static void put_cell(array_column& column, const cell& value) {
  if (column.bytes.empty()) column.bytes.resize(HEADER_SIZE);
  column.is_number = value.is_number;
  if (!value.is_number && value.text == nullptr) {
    put_number(column.bytes, ~uint32_t{0});
  } else if (value.is_number) {
    put_number(column.bytes, static_cast<uint32_t>(sizeof value.number));
    put_number(column.bytes, static_cast<uint64_t>(value.number));
  } else {
    const size_t length = std::strlen(value.text);
    put_number(column.bytes, static_cast<uint32_t>(length));
    column.bytes.append(value.text, length);
  }
}

static std::string array_of(array_column& column, uint32_t rows) {
  char* at = column.bytes.data();
  for (const uint32_t head : {1u, 1u, column.is_number ? BIGINT_TYPE : TEXT_TYPE, rows, 1u}) {
    write_number(at, head);
    at += sizeof head;
  }
  return std::move(column.bytes);
}

static bool send_next(postgres_store& store, problem& why) {
  batch_statement& next = store.sent.front();
  collect_rows(store);
  const bool is_sent = send_message(store, next.sql, next.with.get());
  next.with.reset();
  return is_sent || postgres_failed(store, nullptr, why);
}

static bool take_next(postgres_store& store, problem& why) {
  const result_owner result = take_answer(store);
  const uint64_t rows = store.sent.front().rows;
  store.sent.pop_front();
  return succeeded(result.get()) ? has_changed(store, result.get(), rows, why)
                                 : postgres_failed(store, result.get(), why);
}

static bool is_on_its_way(const postgres_store& store) {
  return !store.sent.empty() && store.sent.front().with == nullptr;
}

static bool go_on(postgres_store& store, problem& why) {
  if ((!is_on_its_way(store) || take_next(store, why)) &&
      (store.sent.empty() || send_next(store, why))) {
    return true;
  }
  store.sent.clear();
  return false;
}

// Goes on if that needs no waiting.
static bool look(postgres_store& store, problem& why) {
  if (store.sent.empty()) return true;
  const bool is_there = PQconsumeInput(store.connection) == 0 || PQisBusy(store.connection) == 0;
  return !is_there || go_on(store, why);
}

bool finish_batches(postgres_store& store, problem& why) {
  while (!store.sent.empty()) {
    if (!go_on(store, why)) return false;
  }
  return true;
}

void drop_batches(postgres_store& store) {
  store.batch = postgres_batch();
  if (is_on_its_way(store)) take_answer(store);
  store.sent.clear();
}

// Lets the server compress definitions by lz4, which takes it half of the time that its default
// takes to add a class, if it knows lz4 and nobody has told it what to use. Lasts as long as the
// transaction. A message of its own, which pays for many classes only.
static bool choose_compression(postgres_store& store, problem& why) {
  static constexpr char CHOOSE[] =
      "SELECT set_config(name, 'lz4', true) FROM pg_settings"
      " WHERE name = 'default_toast_compression' AND source = 'default'"
      " AND 'lz4' = ANY (enumvals)";
  const auto rows = [&](change kind) { return store.batch.parts[static_cast<size_t>(kind)].rows; };
  const bool is_worth_it =
      store.batch.size >= FULL && rows(change::ADD_CLASS) + rows(change::REPLACE_CLASS) > 0;
  if (store.has_compression || !is_worth_it) return true;
  store.has_compression = true;
  return execute(store, CHOOSE, why) != nullptr;
}

// Sends the batch as soon as the one before it is done.
static bool hand_over(postgres_store& store, problem& why) {
  if (!finish_batches(store, why) || !choose_compression(store, why)) return false;
  postgres_batch batch = std::move(store.batch);
  store.batch = postgres_batch();
  for (size_t kind = 0; kind < batch.parts.size(); ++kind) {
    postgres_batch::part& part = batch.parts[kind];
    if (part.rows == 0) continue;
    auto with = std::make_unique<parameters>();
    for (array_column& column : part.columns) with->add_binary(array_of(column, part.rows));
    store.sent.push_back({STATEMENTS[kind], std::move(with), part.rows});
  }
  return store.sent.empty() || go_on(store, why);
}

bool put_change(postgres_store& store, change kind, const std::string& key,
                std::initializer_list<cell> cells, problem& why) {
  postgres_batch& batch = store.batch;
  const bool is_full = batch.size >= FULL || batch.keys.count(key) != 0;
  if (is_full && !hand_over(store, why)) return false;
  postgres_batch::part& part = batch.parts[static_cast<size_t>(kind)];
  part.columns.resize(cells.size());
  size_t column = 0;
  for (const cell& value : cells) {
    array_column& array = part.columns[column++];
    const size_t before = array.bytes.size();
    put_cell(array, value);
    batch.size += array.bytes.size() - before;
  }
  ++part.rows;
  batch.keys.insert(key);
  return part.rows % CHANGES_PER_LOOK != 0 || look(store, why);
}

bool flush(postgres_store& store, problem& why) {
  return hand_over(store, why) && finish_batches(store, why);
}

}  // namespace dm
