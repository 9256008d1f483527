// How a deployment is told.
#ifndef DICT_HISTORY_TELLING_H
#define DICT_HISTORY_TELLING_H

#include "dict/history/history.h"
#include "dict/terminal/json.h"

namespace dict {

// To standard output: a line that says which, when, who and with what, and others below it.
void print_deployment(const deployment& one);
// A further line: the command line that it was called with.
void print_call(const deployment& one);

// Its members, in the open object.
void put_deployment(json_writer& out, const deployment& one);

// "17 of 2026-11-01 10:42:07 +0100 by user@host".
std::string who_of(const dm::journal_record& record);

}  // namespace dict

#endif
