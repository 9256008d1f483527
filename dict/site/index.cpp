// What is found by name, and the fields' own details.
#include "dd/values.h"
#include "dict/next_id.h"
#include "dict/site/parts.h"
#include "dm/predefined.h"
#include "dparse/attributes.h"
#include "dparse/tokens.h"

namespace dict {

static constexpr char MODULE[] = "tav_dict";

uint32_t numbered_texts::number_of(const std::string& text) {
  const auto [at, is_new] = numbers.try_emplace(text, static_cast<uint32_t>(texts.size()));
  if (is_new) texts.push_back(text);
  return at->second;
}

bool cannot_be_read(dm::problem& why) {
  why.sentence = "The list of definitions cannot be read.";
  return false;
}

// --- Details -------------------------------------------------------------------------------------

void lay_out(site_parts& parts) {
  static constexpr size_t THINGS = 128, MOST = 256;
  const auto count = [&](dd_list& list) {
    return static_cast<size_t>(list.count(at(&parts.ebuf, HERE)));
  };
  const size_t things = count(parts.source.all.fields) + count(parts.source.all.classes);
  size_t files = 1;
  while (files < MOST && files * THINGS < things) files *= 2;
  parts.details.resize(files);
}

// FNV-1a, which the pages compute too.
details_file& details_of(site_parts& parts, dm::change_of what, std::string_view name) {
  uint32_t hash = 0x811c9dc5u;
  std::string key(1, static_cast<char>(what));
  key += dm::folded(as_utf8(std::string(name)));
  for (const char c : key) hash = (hash ^ static_cast<unsigned char>(c)) * 0x01000193u;
  return parts.details[hash % parts.details.size()];
}

void append_value(std::string& values, std::string_view json) {
  if (!values.empty()) values += ',';
  values += json;
}

static void put_numbers(data_writer& out, const char* key, const std::vector<int64_t>& numbers) {
  out.Key(key);
  put_rows(out, numbers, [&](int64_t number) { out.Int64(number); });
}

void put_past(const site_parts& parts, data_writer& out, dm::change_of what,
              std::string_view name) {
  const auto found = parts.source.past.things.find(dm::thing_key(what, name));
  if (found == parts.source.past.things.end()) return;
  put_numbers(out, "history", found->second.deployments);
  put_numbers(out, "blame", found->second.blame);
}

static void add_field(site_parts& parts, const char* name, std::string users) {
  data_page page;
  page.out.StartObject();
  put(page.out, "name", name);
  page.out.Key("users");
  users.insert(0, 1, '[').append("]");
  page.out.RawValue(users.data(), users.size(), rapidjson::kArrayType);
  put_past(parts, page.out, dm::change_of::FIELD, name);
  page.out.EndObject();
  append_value(details_of(parts, dm::change_of::FIELD, name).fields, page.json());
}

// Behind the fields that are defined come those that classes use nevertheless.
bool add_fields(site_parts& parts, dm::problem& why) {
  dd_walk fields(parts.source.all.fields.get(), TAV_FLD_FIELD);
  while (tav_flist_t* field = fields.next(at(&parts.ebuf, HERE))) {
    const char* name = dd_text(field, TAV_FLD_FIELD_NAME, at(&parts.ebuf, HERE));
    const auto users = parts.users.extract(dm::folded(name));
    parts.used.push_back(users.empty() ? 0 : users.mapped().count);
    add_field(parts, name, users.empty() ? "" : users.mapped().paths);
  }
  for (auto& [name, users] : parts.users) add_field(parts, name.c_str(), std::move(users.paths));
  return is_whole(parts.ebuf) || cannot_be_read(why);
}

// --- Index ---------------------------------------------------------------------------------------

// A member for each value of the rows, because many small arrays take long to read.
template <class Rows, class Put>
static void put_column(data_writer& out, const char* key, const Rows& rows, Put put_value) {
  out.Key(key);
  put_rows(out, rows, put_value);
}

static std::vector<tav_flist_t*> elements_of(site_parts& parts, tav_flist_t* list, uint32_t array) {
  std::vector<tav_flist_t*> elements;
  dd_walk walk(list, array);
  while (tav_flist_t* element = walk.next(at(&parts.ebuf, HERE))) elements.push_back(element);
  return elements;
}

static void put_fields(site_parts& parts, data_writer& out) {
  tav_ebuf* ebuf = &parts.ebuf;
  const auto fields = elements_of(parts, parts.source.all.fields.get(), TAV_FLD_FIELD);
  const auto type_of = [&](tav_flist_t* field) {
    const int32_t type = dd_int(field, TAV_FLD_FIELD_TYPE, at(ebuf, HERE));
    return std::string(dd_is_field_type(type) ? dd_type_keyword(type) : "");
  };
  out.Key("fields");
  out.StartObject();
  put_column(out, "names", fields, [&](tav_flist_t* field) {
    put(out, dd_text(field, TAV_FLD_FIELD_NAME, at(ebuf, HERE)));
  });
  put_column(out, "texts", fields,
             [&](tav_flist_t* field) { put(out, dd_text(field, TAV_FLD_DESCR, at(ebuf, HERE))); });
  put_column(out, "numbers", fields, [&](tav_flist_t* field) {
    out.Int(dd_int(field, TAV_FLD_FIELD_NUM, at(ebuf, HERE)));
  });
  put_column(out, "types", fields,
             [&](tav_flist_t* field) { out.Uint(parts.types.number_of(type_of(field))); });
  put_column(out, "flags", fields, [&](tav_flist_t* field) {
    out.Int(dd_int(field, TAV_FLD_FIELD_FLAGS, at(ebuf, HERE)));
  });
  put_column(out, "used", parts.used, [&](size_t count) { out.Uint64(count); });
  out.EndObject();
}

static void put_classes(site_parts& parts, data_writer& out) {
  const auto put_texts_of = [&](const char* key, uint32_t field) {
    put_column(out, key, parts.outline.classes, [&](const dparse::outlined_class& one) {
      put(out, dd_text(one.element, field, at(&parts.ebuf, HERE)));
    });
  };
  out.Key("classes");
  out.StartObject();
  put_texts_of("names", TAV_FLD_NAME);
  put_texts_of("texts", TAV_FLD_DESCR);
  out.EndObject();
}

template <class Rows>
static void put_stored(data_writer& out, const Rows& rows) {
  put_column(out, "names", rows, [&](const auto& row) { put(out, row.name); });
  put_column(out, "classes", rows, [&](const auto& row) { out.Uint64(row.class_number); });
}

// In which block of a class's definition the attribute is written.
static int block_of(const std::string& keyword) {
  enum { INTERFACE, IMPLEMENTATION, NONE };
  for (const dparse::attribute& row : dparse::attributes()) {
    if (dparse::keyword_text(row.token) != keyword) continue;
    if ((row.read_in & (DD_IN_SQL_CLASS | DD_IN_SQL_ENTRY)) != 0) return IMPLEMENTATION;
    return row.written_in != 0 ? INTERFACE : NONE;
  }
  return NONE;
}

// [key, name of today, deployment]
static void put_left_names(const site_parts& parts, data_writer& out) {
  put_column(out, "left", parts.source.past.left, [&](const left_name& one) {
    out.StartArray();
    put(out, one.key);
    put(out, one.now);
    out.Int64(one.deployment);
    out.EndArray();
  });
}

// [name, number, type]: definition files use them without defining them.
static void put_predefined(const site_parts& parts, data_writer& out) {
  if (!parts.source.database.empty()) return;
  put_column(out, "predefined", dm::predefined_fields(), [&](const dm::field_row& row) {
    out.StartArray();
    put(out, row.name);
    out.Int(row.number);
    put(out, dd_type_keyword(row.type));
    out.EndArray();
  });
}

void put_index(site_parts& parts, data_writer& out) {
  out.StartObject();
  put_left_names(parts, out);
  put_predefined(parts, out);
  out.Key("reserved");
  out.Int(FIRST_OF_ADMINISTRATORS - 1);
  put_fields(parts, out);
  put_classes(parts, out);
  out.Key("tables");
  out.StartObject();
  put_stored(out, parts.tables);
  out.EndObject();
  out.Key("columns");
  out.StartObject();
  put_stored(out, parts.columns);
  put_column(out, "tables", parts.columns, [&](const auto& row) { out.Int64(row.table); });
  out.EndObject();
  put_column(out, "types", parts.types.texts, [&](const std::string& text) { put(out, text); });
  put_column(out, "keywords", parts.keywords.texts,
             [&](const std::string& text) { put(out, text); });
  put_column(out, "blocks", parts.keywords.texts,
             [&](const std::string& text) { out.Int(block_of(text)); });
  out.EndObject();
}

}  // namespace dict
