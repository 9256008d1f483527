// What the journal of a dictionary tells, as text.
#ifndef TESTS_DM_TOLD_H
#define TESTS_DM_TOLD_H

#include "bench.h"
#include "dm/journal/read.h"
#include "dm/open.h"

// A store with an open transaction.
struct opened {
  explicit opened(const dm::settings& settings, bool writes = false, dm::open_options options = {});
  dm::problem why{};
  dm::store_owner store;
};

// The records from one on: "NUMBER DEPLOYMENT KIND CHANGES", and each change: how, and name.
std::string journal_told(const dm::settings& settings, int64_t number);

// All fields and classes after a record, as the bench writes them; predefined fields, which come
// first, end with their flags.
inline constexpr int64_t JOURNAL_PRESENT = std::numeric_limits<int64_t>::max();
std::string journal_state(const dm::settings& settings, int64_t number);

#endif
