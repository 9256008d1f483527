#include "deploy/lookup.h"

#include "deploy/report.h"

static constexpr char MODULE[] = "tav_deploy_import";

// A failing list looks like one without the element, so that every other finding is still told; but
// what was judged by it is neither deployed nor a success: the error flag is raised.

template <class Name>
static const dd_known* known_by_name(dd_list& list, Name name, uint32_t hash, dd_site site) {
  tav_ebuf ebuf{};
  const dd_known* found = list.find_known(name, hash, at(&ebuf, site));
  if (!dd_failed(ebuf)) return found;
  deploy::call_failed(site, ebuf, "name-not-looked-up");
  return nullptr;
}

template <class Name>
static tav_flist_t* by_name(dd_list& list, Name name, uint32_t hash, dd_site site) {
  const dd_known* found = known_by_name(list, name, hash, site);
  return found != nullptr ? found->element : nullptr;
}

tav_flist_t* tav_deploy_get_field_by_name(dd_list& list, const char* name) {
  return by_name(list, name, dd_hash(name), HERE);
}

const dd_known* deploy::known_field(dd_list& list, const char* name, uint32_t hash) {
  return known_by_name(list, name, hash, HERE);
}

tav_flist_t* tav_deploy_get_field_by_id(dd_list& list, int32_t number) {
  tav_ebuf ebuf{};
  tav_flist_t* found = list.find_number(number, at(&ebuf, HERE));
  if (!dd_failed(ebuf)) return found;
  deploy::call_failed(HERE, ebuf, "number-not-looked-up");
  return nullptr;
}

tav_flist_t* tav_deploy_get_class_by_name(dd_list& list, const char* name) {
  return by_name(list, name, dd_hash(name), HERE);
}

tav_flist_t* tav_deploy_get_class_by_name(dd_list& list, std::string_view name, uint32_t hash) {
  return by_name(list, name, hash, HERE);
}

tav_flist_t* tav_deploy_get_class_field_by_name(dd_list& node, const char* name) {
  return tav_deploy_get_class_field_by_name(node, name, dd_hash(name));
}

tav_flist_t* tav_deploy_get_class_field_by_name(dd_list& node, const char* name, uint32_t hash) {
  return by_name(node, name, hash, HERE);
}
