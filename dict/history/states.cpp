#include "dict/history/history.h"
#include "dict/history/moments.h"
#include "dm/class_json.h"
#include "dm/ops/operations.h"
#include "dm/session.h"

namespace dict {

// --- Definitions from states -----------------------------------------------------------------

struct definitions_maker::parts {
  definitions& result;
  tav_ebuf ebuf{};
  dd_flist fields{tav_flist_create(&ebuf)};
  dd_flist classes{tav_flist_create(&ebuf)};
  int32_t field_count = 0;
  int32_t class_count = 0;
  dm::class_reader reader{};
};

definitions_maker::definitions_maker(definitions& result) : parts_(new parts{result}) {}
definitions_maker::~definitions_maker() = default;

static bool is_whole(const tav_ebuf& ebuf, dm::problem& why) {
  if (dict::is_whole(ebuf)) return true;
  why.code = ebuf.err_code;
  why.sentence = "The list of definitions cannot be built.";
  return false;
}

bool definitions_maker::add(const dm::field_row& row, dm::problem& why) {
  dm::add_field(parts_->fields.get(), parts_->field_count++, row, &parts_->ebuf);
  return is_whole(parts_->ebuf, why);
}

bool definitions_maker::add(const dm::class_row& row, dm::problem& why) {
  const char* fault = nullptr;
  tav_flist_t* list = parts_->classes.get();
  if (parts_->reader.read(row.definition, list, parts_->class_count++, fault) != nullptr) {
    return true;
  }
  why.code = TAV_ERR_STORAGE;
  why.is_damage = true;
  why.sentence = dm::join({"The journal's definition of class ", dm::quoted(row.name), " ", fault,
                           "; see 'tav_dict check'."});
  return false;
}

bool definitions_maker::add(dm::change_of what, const std::string& name, std::string state,
                            dm::problem& why) {
  if (what == dm::change_of::CLASS) {
    return add(dm::class_row{0, nullptr, name.c_str(), 0, state.c_str()}, why);
  }
  dm::field_row row{};
  return dm::read_field_state(state, row) ? add(row, why) : dm::damaged_record(0, why);
}

bool definitions_maker::finish(dm::problem& why) {
  if (!is_whole(parts_->ebuf, why)) return false;
  parts_->result.fields.give(std::move(parts_->fields));
  parts_->result.classes.give(std::move(parts_->classes));
  return true;
}

// --- The way back ----------------------------------------------------------------------------

namespace {

// Where the journal begins.
struct beginning {
  dm::journal_record first{};
  int64_t known_from = 0;  // the record after which all states are known
};

}  // namespace

// A dictionary that was there before its journal is told of by the first deployment's records: what
// was there before them is known only once all of them are read.
static bool find_beginning(dm::store& store, beginning& start, dm::problem& why) {
  const auto look = [&](const dm::journal_record& record) {
    if (start.first.number == 0) {
      start = {record, record.number - 1};
      return record.kind == dm::journal_kind::UPGRADE || record.kind == dm::journal_kind::RESTORE;
    }
    const bool is_same = record.deployment == start.first.deployment;
    if (is_same) start.known_from = record.number;
    return is_same;
  };
  return dm::walk_records(store, {}, look, why);
}

bool look_back_to(reading& from, int64_t record, dm::past& found, dm::problem& why) {
  beginning start;
  if (!find_beginning(*from.store, start, why)) return false;
  if (record >= start.known_from) {
    return dm::look_back(*from.store, from.database, record, found, why);
  }
  why.code = TAV_ERR_NOT_FOUND;
  why.sentence =
      dm::join({"The journal begins with deployment ", std::to_string(start.first.deployment),
                " of ", local_time(start.first.time), " (", start.first.kind,
                "); what was there before it is not known."});
  return false;
}

static bool add_past(reading& from, const dm::past& at, definitions& result, dm::problem& why) {
  definitions_maker maker(result);
  bool is_added = true;
  auto field = [&](const dm::field_row& row) { return is_added = maker.add(row, why); };
  auto one = [&](const dm::class_row& row) { return is_added = maker.add(row, why); };
  dm::store& store = *from.store;
  const int64_t id = from.database.id;
  return dm::past_fields(store, id, at, dm::visit<dm::field_row>(field), why) && is_added &&
         dm::past_classes(store, id, at, dm::visit<dm::class_row>(one), why) && is_added &&
         maker.finish(why);
}

bool fetch_at(reading& from, const std::string& point, definitions& result, dm::problem& why) {
  int64_t record = 0;
  dm::past at;
  const bool is_past = !point.empty();
  if (is_past ? !find_point_of(from, point, record, why) || !look_back_to(from, record, at, why)
              : !dm::find_database(*from.store, from.database.number, 0, from.database, why)) {
    return false;
  }
  return add_past(from, at, result, why);
}

}  // namespace dict
