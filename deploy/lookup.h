// The look-ups that exports and import checks share. Each gives the first element that matches,
// borrowed, or null; a list that cannot be walked is reported and looks like one without the
// element.
#ifndef DEPLOY_LOOKUP_H
#define DEPLOY_LOOKUP_H

#include "dd/list.h"

// Field definitions (DD_FIELDS).
tav_flist_t* tav_deploy_get_field_by_name(dd_list& list, const char* name);

namespace deploy {

// The same with the type, where the list keeps it, for a name of that hash.
const dd_known* known_field(dd_list& list, const char* name, uint32_t hash);

}  // namespace deploy

tav_flist_t* tav_deploy_get_field_by_id(dd_list& list, int32_t number);
// Classes (DD_CLASSES).
tav_flist_t* tav_deploy_get_class_by_name(dd_list& list, const char* name);
// The same for a name that ends where its length says, and has that hash.
tav_flist_t* tav_deploy_get_class_by_name(dd_list& list, std::string_view name, uint32_t hash);
// The direct entries (DD_ENTRIES) of a class or field entry; an absent node has none.
tav_flist_t* tav_deploy_get_class_field_by_name(dd_list& node, const char* name);
tav_flist_t* tav_deploy_get_class_field_by_name(dd_list& node, const char* name, uint32_t hash);

#endif
