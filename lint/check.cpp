#include "lint/check.h"

#include <algorithm>
#include <map>
#include <new>
#include <tuple>
#include <unordered_set>

#include "dd/fold.h"
#include "dd/report.h"
#include "dd/types.h"
#include "dd/values.h"
#include "deploy/lookup.h"
#include "lint/collect.h"
#include "lint/excuses.h"
#include "lint/held.h"
#include "lint/kept.h"
#include "lint/losses.h"
#include "lint/refused.h"
#include "lint/sentence.h"

namespace lint {

namespace {

struct checking {
  const index& all;
  const reading& read;
  result& told;
  deploy::import_state& state;
  const world& against;
  subject_finder subjects;
  std::unordered_set<uint64_t> seen{};  // hashes of what was told
  // How many entries that have the name of the one at a place were told.
  std::map<std::tuple<uint32_t, uint32_t, uint32_t>, size_t> repeats{};
  // Of classes whose names are refused: where in what is told that stands.
  std::map<std::string, size_t> misnamed{};
  std::vector<std::string> printed{};
  bool has_failed = false;
};

}  // namespace

// --- What is told once ---------------------------------------------------------------------------

static uint64_t mix(uint64_t hash, std::string_view text) {
  std::string folded(text);  // names are the same in either case
  for (char& c : folded) c = static_cast<char>(dd_fold(c));
  return dd_multiply(hash ^ std::hash<std::string>()(folded), DD_HASH_KEY.factor) ^
         dd_hash(text.data(), text.size());
}

static uint64_t mix_around(uint64_t hash, const deploy::subject& about) {
  if (about.around == nullptr) return hash;
  const deploy::subject around{.field = about.around->name, .around = about.around->around};
  const auto path = path_to(around);
  if (path.empty()) return mix(hash, about.around->name);
  for (const std::string_view name : path) hash = mix(hash, name);
  return hash;
}

// Of findings that follow from one mistake only the first is told: of storage that cannot be
// checked, and of uses of a field whose definition is refused, one for each field; of columns
// without table one for each node.
static uint64_t key_of(const checking& in, std::string_view rule, const deploy::subject& about) {
  uint64_t key = mix(DD_HASH_KEY.start, rule);
  const bool is_refused = rule == "missing-field-definition" &&
                          find(in.all, syntax::node_kind::FIELD, about.field) != nullptr;
  if (is_refused || rule == "field-not-defined") return mix(key, about.field);
  key = mix_around(mix(key, about.class_name != nullptr ? about.class_name : ""), about);
  if (rule == "column-without-table") return key;
  for (const char* text : {about.field, about.attribute, about.related_class})
    key = mix(key, text != nullptr ? text : "");
  return key;
}

// --- The sink ------------------------------------------------------------------------------------

// What two places share is told at the later one, with the other beside it.
static bool is_told_later(const sentence_row& row, const finding& found) {
  if (row.second != other::RELATED || found.related.empty()) return false;
  const span& there = found.related[0].where;
  return std::tie(found.where.source, found.where.start) < std::tie(there.source, there.start);
}

// The import tells each entry whose name stands there again, the first one too: which one it is.
static size_t repeat_of(checking& in, const sentence_row& row, const deploy::subject& about) {
  if (row.second != other::EARLIER) return 0;
  const auto first = find(in.subjects, about);
  return first ? in.repeats[{first->source, first->definition, first->node}]++ : 1;
}

// The definitions of the fields of a class whose name is refused are not sought, so that the import
// tells of their storage that they are not defined, and takes each for one that needs a column.
static bool is_untrue(const checking& in, std::string_view rule, const deploy::subject& about) {
  const bool says_undefined = rule == "missing-field-definition" || rule == "field-not-defined";
  const bool says_column = rule == "column-without-table" || rule == "missing-column";
  if (!says_undefined && !says_column) return false;
  const dd_known* known =
      deploy::known_field(in.state.working_fields, about.field, dd_hash(about.field));
  if (known == nullptr || says_undefined) return known != nullptr;
  const int32_t type = known->type.value_or(0);
  return dd_is_container(type) || type == TAV_FLDT_BUF;
}

// It follows from the name of the class: that finding goes by its name, too, once for each rule.
static void add_alias(checking& in, std::string_view rule, const deploy::subject& about) {
  const auto refused = in.misnamed.find(about.class_name);
  if (refused == in.misnamed.end()) return;
  auto& aliases = in.told.told[refused->second].aliases;
  if (std::ranges::find(aliases, rule, &alias::rule) == aliases.end())
    aliases.push_back({rule, words_of(about)});
}

// What the import tells of each field and class that is there, though nothing comes of it, is found
// without a level.
static level level_of(const checking& in, const sentence_row& row, const deploy::subject& about) {
  return changes_nothing(in.state, in.against, about, row.id) ? level::OFF : row.normal;
}

static void tell_record(checking& in, const deploy::finding_record& record) {
  const auto* row =
      std::ranges::find(SENTENCES, std::string_view(record.row.id), &sentence_row::id);
  if (row == std::end(SENTENCES) || is_excused(in.read.missing, row->id, record.about)) return;
  if (is_untrue(in, row->id, record.about)) return add_alias(in, row->id, record.about);
  const size_t repeat = repeat_of(in, *row, record.about);
  if (row->second == other::EARLIER && repeat == 0) return;
  const uint64_t key = key_of(in, row->id, record.about) + repeat;
  // What is only counted is not noted: the import tells some of it twice.
  if (is_full(in.told) ? in.seen.contains(key) : !in.seen.insert(key).second) return;
  const level told = level_of(in, *row, record.about);
  if (is_full(in.told)) return count_untold(in.told, row->id, told);
  finding found = finding_of(in.subjects, in.state, *row, record.about, repeat);
  found.told = told;
  const size_t place = in.told.told.size();
  if (!is_told_later(*row, found)) tell(in.told, std::move(found));
  if (row->id == "class-name-without-slash" && in.told.told.size() > place)
    in.misnamed.emplace(record.about.class_name, place);
}

static void take_record(void* context, const deploy::finding_record& record) {
  checking& in = *static_cast<checking*>(context);
  in.printed.clear();
  if (record.row.kind == deploy::finding_kind::FAILURE) in.has_failed = true;
  if (record.row.kind != deploy::finding_kind::FINDING || in.has_failed) return;
  try {
    tell_record(in, record);
  } catch (const std::bad_alloc&) {
    in.has_failed = true;
  }
}

namespace {

struct sink_set {
  explicit sink_set(checking& in) {
    deploy::set_sink(take_record, &in);
    dd_take_errors(&in.printed);
  }
  ~sink_set() {
    deploy::set_sink(nullptr, nullptr);
    dd_take_errors(nullptr);
  }
  sink_set(const sink_set&) = delete;
  sink_set& operator=(const sink_set&) = delete;
};

}  // namespace

// --- The checks ----------------------------------------------------------------------------------

static void take_world(deploy::import_state& state, const world& against) {
  tav_ebuf ebuf{};
  state.server_fields = against.fields != nullptr ? dd_flist(tav_flist_copy(against.fields, &ebuf))
                                                  : predefined_fields();
  state.server_classes.reset(against.classes != nullptr ? tav_flist_copy(against.classes, &ebuf)
                                                        : tav_flist_create(&ebuf));
  if (dd_failed(ebuf)) throw std::bad_alloc();
}

using import_step = int (*)(deploy::import_state& state);

// As deploy/import/import.cpp takes them; none ends the others.
static constexpr import_step STEPS[] = {deploy::import_fields, deploy::import_classes,
                                        deploy::import_order, deploy::import_structure,
                                        deploy::import_storage};

static deployment sent_of(deploy::import_state& state) {
  tav_ebuf ebuf{};
  deployment sent{state.fields.get(), {}};
  dd_list_walk walk(state.ordered_classes);
  while (tav_flist_t* storable = walk.next(&ebuf)) sent.classes.push_back(storable);
  return sent;
}

static void leave_lists(deploy::import_state& state, reading& read) {
  for (dd_list* list : {&state.fields, &state.classes, &state.working_fields,
                        &state.working_classes, &read.sound.implementations})
    list->leave();
}

void check_definitions(const index& all, reading& read, const world& against, result& told) {
  static tav_deploy_ctx_t ctx;
  ctx.mode = TAV_DEPLOY_MODE_REPLACE;
  deploy::import_state state{.ctx = &ctx};
  state.tells_all = true;
  state.fields = std::move(read.sound.fields);
  state.classes = std::move(read.sound.interfaces);
  take_world(state, against);
  checking in{all, read, told, state, against, subject_finder(all)};
  const sink_set sink(in);
  deploy::merge_implementations(state.classes, read.sound.implementations, state.entries);
  for (const import_step step : STEPS) step(state);
  tell_losses(in.subjects, read.missing, state, told);
  if (against.refuse)
    tell_refusals(in.subjects, read.missing, against.refuse(sent_of(state)), told);
  // Where much is told its memory is needed for that.
  if (against.ends_soon && !is_full(told)) leave_lists(state, read);
  if (in.has_failed) throw std::bad_alloc();
}

}  // namespace lint
