// Owners of client-library handles: each frees what it holds on every path.
#ifndef DD_OWNERS_H
#define DD_OWNERS_H

#include <memory>

#include "dd/vantor.h"

struct dd_free_flist {
  void operator()(tav_flist_t* list) const { tav_flist_destroy(list, nullptr); }
};
struct dd_free_poid {
  void operator()(tav_poid_t* poid) const { tav_poid_destroy(poid, nullptr); }
};
struct dd_free_decimal {
  void operator()(tav_decimal_t* decimal) const {
    tavi_client_put_cleanup(decimal, TAV_FLD_ORDER, 0);
  }
};

using dd_flist = std::unique_ptr<tav_flist_t, dd_free_flist>;
using dd_poid = std::unique_ptr<tav_poid_t, dd_free_poid>;
using dd_decimal = std::unique_ptr<tav_decimal_t, dd_free_decimal>;

#endif
