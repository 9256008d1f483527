// What both export modes use.
#ifndef DEPLOY_EXPORT_EXPORT_H
#define DEPLOY_EXPORT_EXPORT_H

#include <vector>

#include "dd/index.h"
#include "dd/list.h"
#include "deploy/modes.h"
#include "dparse/outline.h"

namespace deploy {

// Whether -c and -p select the field definition: both together, as neither, select every one.
bool is_selected(tav_flist_t* field, const tav_deploy_ctx_t& ctx, tav_ebuf* ebuf);

// Field definitions, borrowed, each name once.
struct included_fields {
  std::vector<tav_flist_t*> fields;
  dd_index<dd_by_name, size_t> places;  // in them
};

}  // namespace deploy

// Adds the field definition, whose name has that hash, unless one of that name is there: 1. One of
// the same name with another type or id is refused and reported: -1.
int tav_deploy_add_included_field(deploy::included_fields& included, tav_flist_t* field,
                                  uint32_t hash);

// Adds the definitions of the fields that a class uses, at every depth and as far as -c and -p
// select them, in order of first use: 1, or -1 after a report. `classes` is the outline that the
// class is in, and learns the fields' types.
int tav_deploy_get_include_class_fields(dparse::class_outline& classes,
                                        const dparse::outlined_class& storable,
                                        deploy::included_fields& included, dd_list& fields,
                                        const tav_deploy_ctx_t& ctx);

namespace deploy {

// Whether all that was written to standard output has got there.
bool is_written();

}  // namespace deploy

#endif
