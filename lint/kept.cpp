#include "lint/kept.h"

#include "dd/buf_storage.h"
#include "dd/values.h"
#include "deploy/lookup.h"

namespace lint {

static tav_flist_t* held_entry(subject_finder& in, tav_flist_t* node, const char* name) {
  if (in.held_node != node) {
    in.held_entries = dd_list(DD_ENTRIES, node);
    in.held_node = node;
  }
  return tav_deploy_get_class_field_by_name(in.held_entries, name);
}

// The class or entry in the dictionary, or null.
static tav_flist_t* held_node(subject_finder& in, deploy::import_state& state,
                              const deploy::subject& about) {
  std::vector<const char*> names;
  if (about.field != nullptr) names.push_back(about.field);
  for (const deploy::entry_path* upper = about.around; upper != nullptr; upper = upper->around)
    names.push_back(upper->name);
  tav_flist_t* node = tav_deploy_get_class_by_name(state.working_classes, about.class_name);
  for (; node != nullptr && !names.empty(); names.pop_back())
    node = held_entry(in, node, names.back());
  return node;
}

static std::string quoted_or_none(std::string_view text) {
  return text.empty() ? "none" : std::string("\"").append(text).append("\"");
}

static bool is_clause(const deploy::subject& about) {
  return std::string_view(about.attribute) == "SQL_STORAGE";
}

static bool has_two_names(std::string_view id) {
  return id == "buf-table-or-column-kept";
}

std::string held_storage(subject_finder& in, deploy::import_state& state,
                         const deploy::subject& about, std::string_view id) {
  tav_ebuf ebuf{};
  tav_flist_t* node = held_node(in, state, about);
  if (node == nullptr) return "none";
  const std::string_view text =
      dd_text(node, is_clause(about) ? TAV_FLD_SQL_STORAGE : TAV_FLD_SQL_TABLE, &ebuf);
  if (!has_two_names(id)) return quoted_or_none(text);
  const dd_buf_storage parts = dd_split_buf(text);
  return quoted_or_none(parts.table) + " and " + quoted_or_none(parts.column);
}

static std::string own_value(subject_finder& in, const deploy::subject& about,
                             const char* keyword) {
  const auto at = find_on(in, about, deploy::definition_side::IMPLEMENTATION);
  const std::string_view text = at ? attribute_text(in.all, *at, keyword) : "";
  return std::string(text.empty() ? "none" : text);
}

std::string own_storage(subject_finder& in, const deploy::subject& about, std::string_view id) {
  if (!has_two_names(id)) return own_value(in, about, about.attribute);
  return own_value(in, about, "SQL_TABLE") + " and " + own_value(in, about, "SQL_COLUMN");
}

std::string storage_remedy(const deploy::subject& about, const std::string& held,
                           const std::string& own) {
  const std::string by_hand = ", or move the storage by hand.";
  if (held == "none") return "Remove it here" + by_hand;
  const std::string write = "Write " + held + " here";
  if (is_clause(about)) return write + by_hand;
  const bool has_new_name = own.find('"') != own.npos;
  return write + (has_new_name
                      ? ", or give the dictionary the new name with 'tav_dict move-storage'."
                      : ".");
}

static bool has_same_description(deploy::import_state& state, const char* field) {
  tav_ebuf ebuf{};
  tav_flist_t* own = state.fields.find(field, &ebuf);
  tav_flist_t* held = tav_deploy_get_field_by_name(state.working_fields, field);
  if (own == nullptr || held == nullptr) return false;
  const std::string_view text = dd_text(own, TAV_FLD_DESCR, &ebuf);
  return text.empty() || text == dd_text(held, TAV_FLD_DESCR, &ebuf);
}

static bool stays(deploy::import_state& state, const world& against, const char* class_name) {
  tav_ebuf ebuf{};
  if (!against.stays) return false;
  tav_flist_t* own = state.classes.find(class_name, &ebuf);
  tav_flist_t* held = tav_deploy_get_class_by_name(state.working_classes, class_name);
  return own != nullptr && held != nullptr && against.stays(held, own);
}

bool changes_nothing(deploy::import_state& state, const world& against,
                     const deploy::subject& about, std::string_view id) {
  if (id == "field-description-replaced") return has_same_description(state, about.field);
  return id == "class-exists" && stays(state, against, about.class_name);
}

}  // namespace lint
