#include "dm/postgres/batch.h"

#include <cstring>

#include "dm/postgres/handle.h"

namespace dm {

static constexpr size_t FULL = 1 << 20;  // bytes

// By `change`.
static constexpr const char* STATEMENTS[] = {
    "DELETE FROM dd_fields f USING unnest($1::bigint[], $2::bigint[]) AS r (database, number)"
    " WHERE f.database = r.database AND f.number = r.number",
    "DELETE FROM dd_tables t USING unnest($1::bigint[], $2::text[]) AS r (database, folded)"
    " WHERE t.database = r.database AND t.folded = r.folded",
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
};
static_assert(std::size(STATEMENTS) == static_cast<size_t>(change::CHANGES));

// The type numbers (OIDs) of bigint and text, which are the same on every server.
static constexpr uint32_t BIGINT_TYPE = 20, TEXT_TYPE = 25;

// Appends a number in the protocol's byte order, the highest byte first.
template <class Number>
static void put_number(std::string& bytes, Number value) {
  for (int shift = static_cast<int>(sizeof value) * 8 - 8; shift >= 0; shift -= 8) {
    bytes += static_cast<char>(value >> shift);
  }
}

static void put_cell(array_column& column, const cell& value) {
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

// The binary array. Its header: number of dimensions, 1 because NULLs may occur, element type, and
// the size and the first index of the dimension.
static std::string array_of(const array_column& column, uint32_t rows) {
  std::string bytes;
  bytes.reserve(column.bytes.size() + 20);
  for (const uint32_t head : {1u, 1u, column.is_number ? BIGINT_TYPE : TEXT_TYPE, rows, 1u}) {
    put_number(bytes, head);
  }
  return bytes + column.bytes;
}

bool put_change(postgres_store& store, change kind, const std::string& key,
                std::initializer_list<cell> cells, problem& why) {
  postgres_batch& batch = store.batch;
  const bool is_full = batch.size >= FULL || batch.keys.count(key) != 0;
  if (is_full && !flush(store, why)) return false;
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
  return true;
}

bool flush(postgres_store& store, problem& why) {
  if (store.batch.keys.empty()) return true;
  const postgres_batch batch = std::move(store.batch);
  store.batch = postgres_batch();
  for (size_t kind = 0; kind < batch.parts.size(); ++kind) {
    const postgres_batch::part& part = batch.parts[kind];
    if (part.rows == 0) continue;
    parameters with;
    for (const array_column& column : part.columns) with.add_binary(array_of(column, part.rows));
    if (!change_rows(store, STATEMENTS[kind], with, part.rows, why)) return false;
  }
  return true;
}

}  // namespace dm
