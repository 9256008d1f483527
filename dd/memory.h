// Turns std::bad_alloc, from work on plain records, into the error that a list call would give.
#ifndef DD_MEMORY_H
#define DD_MEMORY_H

#include <new>

#include "dd/call.h"

// Does the work, unless the buffer holds an error; TAV_ERR_NO_MEM is in it when memory ran out.
template <class Work>
void dd_with_memory(tav_ebuf* ebuf, Work work) {
  if (dd_failed(*ebuf)) return;
  try {
    work();
  } catch (const std::bad_alloc&) {
    ebuf->location = TAV_ERRLOC_LIST;
    ebuf->err_class = TAV_ERRCLASS_SYSTEM;
    ebuf->err_code = TAV_ERR_NO_MEM;
  }
}

#endif
