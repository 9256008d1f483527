#include "deploy/tav_deploy_lookup.h"

#include "dd/report.h"
#include "deploy/tav_deploy.h"
#include "deploy/tav_deploy_report.h"

static constexpr char MODULE[] = "tav_deploy_import";

// A failing list looks like one without the element, so that every other finding is still told; but
// what was judged by it is neither deployed nor a success.
static tav_flist_t* not_looked_up() {
  tav_deploy_raise_error();
  return nullptr;
}

static tav_flist_t* by_name(dd_list& list, const char* name, dd_site site) {
  tav_ebuf ebuf{};
  tav_flist_t* found = list.find(name, at(&ebuf, site));
  if (!dd_failed(ebuf)) return found;
  tav_deploy_call_failed(site, ebuf);
  return not_looked_up();
}

tav_flist_t* tav_deploy_get_field_by_name(dd_list& list, const char* name) {
  return by_name(list, name, HERE);
}

tav_flist_t* tav_deploy_get_field_by_id(dd_list& list, int32_t number) {
  tav_ebuf ebuf{};
  tav_flist_t* found = list.find_number(number, at(&ebuf, HERE));
  if (!dd_failed(ebuf)) return found;
  dd_print_error("Error: Internal Error - parsing Flist in tav_deploy_get_field_by_id()\n");
  tav_deploy_display_ebuf(&ebuf);
  dd_log(HERE, "Flist error", ebuf);
  return not_looked_up();
}

tav_flist_t* tav_deploy_get_class_by_name(dd_list& list, const char* name) {
  return by_name(list, name, HERE);
}

tav_flist_t* tav_deploy_get_class_field_by_name(dd_list& node, const char* name) {
  return by_name(node, name, HERE);
}
