// Records that are about the journal itself.
#ifndef DICT_HISTORY_WRITING_H
#define DICT_HISTORY_WRITING_H

#include "dict/history/history.h"

namespace dict {

// Begins a write transaction on a dictionary that has a journal; false with the reason.
bool begin_event(reading& from, dm::problem& why);

// Writes a record of that kind, whose detail is JSON, into the open transaction.
bool write_event(reading& from, const char* kind, const std::string& detail, dm::problem& why);

}  // namespace dict

#endif
