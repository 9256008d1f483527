// What the page of a class tells.
#include "dd/buf_storage.h"
#include "dd/values.h"
#include "dict/diff/values.h"
#include "dict/site/parts.h"

namespace dict {

static constexpr char MODULE[] = "tav_dict";

namespace {

struct storage_names {
  std::string_view table, column;
};

// A class whose entries are being told. Containers are those around the next entry.
struct told_class {
  const char* name;
  size_t number;
  std::vector<const char*> path{};
  std::vector<int64_t> tables{};  // of the class, and of each entry on the path
};

}  // namespace

// Flat: keyword number, value, keyword number, value; in the order of blame.
static void put_attributes(site_parts& parts, data_writer& out, const element_kind& kind,
                           tav_flist_t* element) {
  out.StartArray();
  for (const value_change& value : values_of(kind, element, at(&parts.ebuf, HERE))) {
    out.Uint(parts.keywords.number_of(std::string(value.attribute)));
    put(out, value.after);
  }
  out.EndArray();
}

// --- Storage -------------------------------------------------------------------------------------

static storage_names storage_of(int32_t type, const char* sql_name) {
  if (type == TAV_FLDT_BUF) {
    const dd_buf_storage both = dd_split_buf(sql_name);
    return {both.table, both.column};
  }
  const bool has_table = type == TAV_FLDT_ARRAY || type == TAV_FLDT_SUBSTRUCT;
  return has_table ? storage_names{sql_name, {}} : storage_names{{}, sql_name};
}

// A column is one of the table around the entry, unless the entry has its own. Gives the table of
// what is inside.
static int64_t note_storage(site_parts& parts, const told_class& one, const storage_names& names) {
  int64_t table = one.tables.back();
  if (!names.table.empty()) {
    table = static_cast<int64_t>(parts.tables.size());
    parts.tables.push_back({std::string(names.table), one.number});
  }
  if (!names.column.empty()) {
    parts.columns.push_back({std::string(names.column), one.number, table});
  }
  return table;
}

// --- Entries -------------------------------------------------------------------------------------

// Of a long path only the end is told: a page has room for no more.
static void note_user(site_parts& parts, const told_class& one) {
  static constexpr size_t MOST = 16;
  data_page user;
  user.out.StartArray();
  put(user.out, one.name);
  if (one.path.size() > MOST) put(user.out, "...");
  for (size_t i = one.path.size() - std::min(MOST, one.path.size()); i < one.path.size(); ++i) {
    put(user.out, one.path[i]);
  }
  user.out.EndArray();
  field_users& users = parts.users[dm::folded(one.path.back())];
  append_value(users.paths, user.json());
  ++users.count;
}

// [depth, name, type, attributes, table, column]
static void put_entry(site_parts& parts, data_writer& out, told_class& one,
                      const dparse::outlined_entry& entry) {
  tav_ebuf* ebuf = &parts.ebuf;
  const auto depth = static_cast<size_t>(entry.depth);
  const char* name = entry.name != nullptr ? entry.name : "";
  const storage_names names = storage_of(dd_int(entry.entry, TAV_FLD_FIELD_TYPE, at(ebuf, HERE)),
                                         dd_text(entry.entry, TAV_FLD_SQL_TABLE, at(ebuf, HERE)));
  one.path.resize(depth - 1);
  one.tables.resize(depth);
  one.path.push_back(name);
  one.tables.push_back(note_storage(parts, one, names));
  note_user(parts, one);
  out.StartArray();
  out.Int(entry.depth);
  put(out, name);
  out.Uint(parts.types.number_of(type_of(ENTRY, entry.entry, at(ebuf, HERE))));
  put_attributes(parts, out, ENTRY, entry.entry);
  put(out, names.table);
  put(out, names.column);
  out.EndArray();
}

// --- A class -------------------------------------------------------------------------------------

static void add_class(site_parts& parts, const dparse::outlined_class& storable, size_t number) {
  tav_ebuf* ebuf = &parts.ebuf;
  told_class one{dd_text(storable.element, TAV_FLD_NAME, at(ebuf, HERE)), number};
  const char* table = dd_text(storable.element, TAV_FLD_SQL_TABLE, at(ebuf, HERE));
  one.tables.push_back(-1);
  one.tables.back() = note_storage(parts, one, {table, {}});
  data_page page;
  data_writer& out = page.out;
  out.StartObject();
  put(out, "name", one.name);
  put(out, "table", table);
  out.Key("attributes");
  put_attributes(parts, out, CLASS, storable.element);
  const auto entries = dparse::entries_of(parts.outline, storable);
  out.Key("entries");
  put_rows(out, entries, [&](const dparse::outlined_entry& e) { put_entry(parts, out, one, e); });
  put_past(parts, out, dm::change_of::CLASS, one.name);
  out.EndObject();
  append_value(details_of(parts, dm::change_of::CLASS, one.name).classes, page.json());
}

bool add_classes(site_parts& parts, dm::problem& why) {
  parts.outline = dparse::outline_classes(parts.source.all.classes.get(), parts.ebuf);
  if (!is_whole(parts.outline.failure)) return cannot_be_read(why);
  size_t number = 0;
  for (const dparse::outlined_class& one : parts.outline.classes) add_class(parts, one, number++);
  return is_whole(parts.ebuf) || cannot_be_read(why);
}

}  // namespace dict
