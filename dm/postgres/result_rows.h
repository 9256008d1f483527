// The rows of one query; serves as `Columns` for the templates of dm/rows.h.
#ifndef DM_POSTGRES_ROWS_H
#define DM_POSTGRES_ROWS_H

#include "dm/postgres/handle.h"

namespace dm {

// Where rows may be many, a cursor gives them in chunks. The next chunk is asked for while one is
// read, so memory holds two at most. Another statement may be carried out in between: it first
// takes in the chunk that was asked for (settle).
class postgres_rows {
 public:
  enum outcome { ROW, END, FAILED };

  postgres_rows(postgres_store& store, const std::string& sql, const parameters& with, bool many,
                problem& why);
  ~postgres_rows();
  postgres_rows(const postgres_rows&) = delete;
  postgres_rows& operator=(const postgres_rows&) = delete;

  outcome next();
  // Takes in the chunk that was asked for.
  void collect();

  int count() const { return PQnfields(chunk_.get()); }
  int64_t integer(int column) const;
  // The text of a column; null for NULL.
  const char* text(int column) const;

 private:
  bool ask();   // sends the query for the next chunk
  bool take();  // makes that chunk the current one

  postgres_store& store_;
  problem& why_;
  std::string fetch_;  // the statement that gives the next chunk; empty: all is there
  result_owner chunk_, coming_;
  int row_ = -1;
};

}  // namespace dm

#endif
