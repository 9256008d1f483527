// The rows of one question, as `Columns` of dm/rows.h.
#ifndef DM_POSTGRES_ROWS_H
#define DM_POSTGRES_ROWS_H

#include "dm/postgres/handle.h"

namespace dm {

// Rows that may be many come in chunks from a cursor, each asked for while the one before is being
// read, so that memory holds two chunks. Other statements may come in between: what is on its way
// is taken in first.
class postgres_rows {
 public:
  enum outcome { ROW, END, FAILED };

  postgres_rows(postgres_store& store, const std::string& sql, const parameters& with, bool many,
                problem& why);
  ~postgres_rows();
  postgres_rows(const postgres_rows&) = delete;
  postgres_rows& operator=(const postgres_rows&) = delete;

  outcome next();
  // Takes in the chunk that is on its way.
  void collect();

  int count() const { return PQnfields(chunk_.get()); }
  int64_t integer(int column) const;
  // The text of a column; null for NULL.
  const char* text(int column) const;

 private:
  bool ask();   // for the next chunk
  bool take();  // it in place of the one that is read

  postgres_store& store_;
  problem& why_;
  std::string fetch_;  // the statement that gives the next chunk; empty: all is there
  result_owner chunk_, coming_;
  int row_ = -1;
};

}  // namespace dm

#endif
