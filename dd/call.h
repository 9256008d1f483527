// The call site: which module's line made a client-library call or wrote a log record.
//
// Every file of a module defines one constant, `static constexpr char MODULE[] = "dparse";`.
#ifndef DD_CALL_H
#define DD_CALL_H

#include "dd/vantor.h"

struct dd_site {
  const char* module;
  int line;
};

#define HERE         \
  dd_site {          \
    MODULE, __LINE__ \
  }

// Stamps the call site into the buffer; the only place that does. A buffer that holds an error
// keeps the site of the call that failed: the call to come does nothing.
//   tavi_flist_set(list, TAV_FLD_NAME, 0, 0, name, at(ebuf, HERE));
inline tav_ebuf* at(tav_ebuf* ebuf, dd_site site) {
  if (ebuf == nullptr || ebuf->err_code != TAV_ERR_NONE) return ebuf;
  ebuf->line_no = site.line;
  ebuf->filename = site.module;
  return ebuf;
}

inline bool dd_failed(const tav_ebuf& ebuf) {
  return ebuf.err_code != TAV_ERR_NONE;
}

inline void dd_clear(tav_ebuf& ebuf) {
  ebuf = tav_ebuf{};
}

#endif
