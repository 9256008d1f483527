#include "lint/losses.h"

#include "dd/values.h"
#include "dd/visible.h"
#include "dd/walk.h"
#include "deploy/lookup.h"
#include "lint/collect.h"

namespace lint {

using syntax::node_kind;

namespace {

struct comparing {
  subject_finder& in;
  const left_out& missing;
  result& told;
  const char* class_name = nullptr;
};

// A node of the dictionary and of the files, and the entries around it.
struct pair_of_nodes {
  tav_flist_t* held;
  tav_flist_t* fresh;
  const deploy::entry_path* around;
};

// Deeper entries break a rule.
constexpr int DEEPEST = 4;

}  // namespace

// The fields by which entries are compared must be there.
static const char* name_of(tav_flist_t* entry) {
  tav_ebuf ebuf{};
  return dd_text(entry, TAV_FLD_FIELD_NAME, &ebuf);
}

static int32_t length_of(tav_flist_t* entry) {
  tav_ebuf ebuf{};
  return dd_int(entry, TAV_FLD_LENGTH, &ebuf);
}

static void tell_dropped(comparing& to, const pair_of_nodes& nodes, const char* name) {
  if (is_left_out(to.missing, {node_kind::INTERFACE, to.class_name, name})) return;
  const deploy::subject about{.class_name = to.class_name, .field = name, .around = nodes.around};
  // It stands in what is around it no more.
  deploy::subject around{.class_name = to.class_name};
  if (nodes.around != nullptr) {
    around.field = nodes.around->name;
    around.around = nodes.around->around;
  }
  const auto at = find(to.in, around);
  const span where = at ? name_span(to.in.all, *at) : span{0, 0, 0};
  tell(to.told,
       {"entry-dropped", level::WARNING, where,
        dd_visible("Class " + std::string(to.class_name) + " has no entry " + name +
                   " here and has one in the dictionary, where it would be dropped: put it "
                   "back, or make sure that nobody needs it."),
        words_of(about)});
}

static void compare_lengths(comparing& to, const pair_of_nodes& nodes, tav_flist_t* held,
                            tav_flist_t* fresh, const char* name) {
  const int32_t before = length_of(held);
  const int32_t after = length_of(fresh);
  if (!is_narrower(before, after)) return;
  const deploy::subject about{
      .class_name = to.class_name, .field = name, .around = nodes.around, .attribute = "LENGTH"};
  const auto at = find(to.in, about);
  node_place length;
  const bool has_length = at && find_attribute(to.in.all, *at, "LENGTH", length);
  const std::string old = before != 0 ? std::to_string(before) : "none";
  const std::string keep = before != 0 ? std::string("Keep ").append(old) : "Leave it out";
  tell(to.told, {"length-narrowed", level::WARNING,
                 has_length ? value_span(to.in.all, length) : span{0, 0, 0},
                 dd_visible(std::string(name) + " in class " + to.class_name + " has LENGTH " +
                            std::to_string(after) + " here and " + old +
                            " in the dictionary: longer values would not fit any more. " + keep +
                            ", or make sure that none is stored."),
                 words_of(about)});
}

static void compare(comparing& to, const pair_of_nodes& nodes, int depth) {
  tav_ebuf ebuf{};
  dd_list fresh_entries(DD_ENTRIES, nodes.fresh);
  dd_walk walk(nodes.held, TAV_FLD_OBJ_ELEM);
  while (tav_flist_t* held = walk.next(&ebuf)) {
    const char* name = name_of(held);
    tav_flist_t* fresh = tav_deploy_get_class_field_by_name(fresh_entries, name);
    if (fresh == nullptr) {
      tell_dropped(to, nodes, name);
      continue;
    }
    compare_lengths(to, nodes, held, fresh, name);
    const deploy::entry_path path{name, nodes.around};
    if (depth < DEEPEST) compare(to, {held, fresh, &path}, depth + 1);
  }
}

void tell_losses(subject_finder& in, const left_out& missing, deploy::import_state& state,
                 result& told) {
  tav_ebuf ebuf{};
  comparing to{in, missing, told};
  dd_walk walk(state.classes.get(), TAV_FLD_OBJ_DESC);
  while (tav_flist_t* fresh = walk.next(&ebuf)) {
    to.class_name = dd_text(fresh, TAV_FLD_NAME, &ebuf);
    tav_flist_t* held = tav_deploy_get_class_by_name(state.working_classes, to.class_name);
    if (held != nullptr && held != fresh) compare(to, {held, fresh, nullptr}, 1);
  }
}

}  // namespace lint
