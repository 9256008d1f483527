#include "lint/held.h"

#include <new>

#include "dd/field_ids.h"
#include "dd/report.h"
#include "dd/values.h"
#include "deploy/import/import.h"
#include "lint/judge.h"

namespace lint {

namespace {

struct predefined {
  const char* name;
  int32_t type;
  int32_t number;
};

constexpr predefined PREDEFINED[] = {
#define PREDEFINED_ROW(name, type, number, description) {#name, type, number},
    DD_FIELD_IDS(PREDEFINED_ROW)
#undef PREDEFINED_ROW
};

}  // namespace

static dd_flist field_of(const predefined& row, tav_ebuf* ebuf) {
  dd_flist field(tav_flist_create(ebuf));
  dd_set_text(field.get(), TAV_FLD_FIELD_NAME, row.name, ebuf);
  dd_set_int(field.get(), TAV_FLD_FIELD_TYPE, row.type, ebuf);
  dd_set_int(field.get(), TAV_FLD_FIELD_NUM, row.number, ebuf);
  return field;
}

static void add_predefined(dd_list& fields) {
  tav_ebuf ebuf{};
  for (const predefined& row : PREDEFINED)
    if (fields.find(row.name, &ebuf) == nullptr) fields.append(field_of(row, &ebuf), &ebuf);
  if (dd_failed(ebuf)) throw std::bad_alloc();
}

dd_flist predefined_fields() {
  tav_ebuf ebuf{};
  dd_flist list(tav_flist_create(&ebuf));
  for (const predefined& row : PREDEFINED)
    dd_append(list.get(), TAV_FLD_FIELD, field_of(row, &ebuf), &ebuf);
  if (dd_failed(ebuf)) throw std::bad_alloc();
  return list;
}

bool read_held(const std::string& text, dd_list& fields, dd_list& classes, std::string& fault) {
  definitions read;
  tav_err_set_level(0);
  const verdict told = judge(text, read);
  if (!told.is_sound()) {
    fault = "line " + std::to_string(told.line) + ": " + told.sentence;
    return false;
  }
  std::vector<std::string> dropped;
  deploy::class_entries entries;
  dd_take_errors(&dropped);
  deploy::merge_implementations(read.interfaces, read.implementations, entries);
  dd_take_errors(nullptr);
  add_predefined(read.fields);
  fields = std::move(read.fields);
  classes = std::move(read.interfaces);
  return true;
}

}  // namespace lint
