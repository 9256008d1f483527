#include "bench.h"

#include <sqlite3.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "dd/values.h"
#include "dm/class_json.h"
#include "dm/open.h"
#include "dm/predefined.h"

namespace fs = std::filesystem;

static dd_flist list_for(uint64_t database) {
  dd_flist list(tav_flist_create(nullptr));
  const dd_poid target(tav_poid_create(database, "/dd", 1, nullptr));
  tavi_flist_set(list.get(), TAV_FLD_POID, 0, 0, target.get(), nullptr);
  return list;
}

static int32_t type_of(const std::string& keyword) {
  for (int32_t type = 0; type < 20; ++type) {
    const char* known = dd_type_keyword(type);
    if (known != nullptr && known == keyword) return type;
  }
  return 99;
}

static tav_flist_t* add(tav_flist_t* list, uint32_t array) {
  return tav_flist_elem_add(list, array, tav_flist_elem_count(list, array, nullptr), nullptr);
}

dd_flist fields_of(const std::string& text, uint64_t database) {
  dd_flist list = list_for(database);
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    tav_ebuf ebuf{};
    std::istringstream words(line);
    std::string keyword, name, number, descr;
    words >> keyword >> name >> number >> std::ws;
    tav_flist_t* field = add(list.get(), TAV_FLD_FIELD);
    if (name.empty()) {  // one word alone is a name that is asked for
      dd_set_text(field, TAV_FLD_FIELD_NAME, keyword.c_str(), &ebuf);
      continue;
    }
    dd_set_text(field, TAV_FLD_FIELD_NAME, name.c_str(), &ebuf);
    dd_set_int(field, TAV_FLD_FIELD_TYPE, type_of(keyword), &ebuf);
    if (number != "0") dd_set_int(field, TAV_FLD_FIELD_NUM, std::atoi(number.c_str()), &ebuf);
    if (number.back() == '!') dd_set_int(field, TAV_FLD_FLAGS, DD_FIELD_ON_SERVER, &ebuf);
    if (std::getline(words, descr)) dd_set_text(field, TAV_FLD_DESCR, descr.c_str(), &ebuf);
  }
  return list;
}

template <size_t N>
static void set_attribute(tav_flist_t* element, const std::array<dd_attribute, N>& rows,
                          const std::string& key, std::string value) {
  tav_ebuf ebuf{};
  for (char& c : value) c = c == '~' ? ' ' : c;
  for (const dd_attribute& row : rows) {
    if (key != row.key) continue;
    if (row.kind == dd_value_kind::TEXT) dd_set_text(element, row.field, value.c_str(), &ebuf);
    if (row.kind == dd_value_kind::NUMBER) {
      dd_set_int(element, row.field, std::atoi(value.c_str()), &ebuf);
    }
    if (row.kind == dd_value_kind::DECIMAL) {
      dd_put(element, row.field, 0, dd_decimal(tav_decimal(value.c_str(), &ebuf)), &ebuf);
    }
    if (row.kind == dd_value_kind::TEXTS) {
      dd_set_text(add(element, row.field), row.text, value.c_str(), &ebuf);
    }
    return;
  }
  ADD_FAILURE() << "no attribute " << key;
}

dd_flist classes_of(const std::string& text, uint64_t database) {
  dd_flist list = list_for(database);
  std::vector<tav_flist_t*> above;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    tav_ebuf ebuf{};
    const size_t depth = line.find_first_not_of(' ') / 2;
    std::istringstream words(line);
    std::string first, word;
    words >> first;
    above.resize(depth);
    tav_flist_t* element = add(depth == 0 ? list.get() : above.back(),
                               depth == 0 ? TAV_FLD_OBJ_DESC : TAV_FLD_OBJ_ELEM);
    above.push_back(element);
    if (depth == 0) dd_set_text(element, TAV_FLD_NAME, first.c_str(), &ebuf);
    if (depth > 0) {
      if (first != "-") dd_set_int(element, TAV_FLD_FIELD_TYPE, type_of(first), &ebuf);
      words >> word;
      dd_set_text(element, TAV_FLD_FIELD_NAME, word.c_str(), &ebuf);
    }
    while (words >> word) {
      const size_t sign = word.find('=');
      const std::string key = word.substr(0, sign);
      if (depth == 0) set_attribute(element, dm::CLASS_ATTRIBUTES, key, word.substr(sign + 1));
      if (depth > 0) set_attribute(element, dm::ENTRY_ATTRIBUTES, key, word.substr(sign + 1));
    }
  }
  return list;
}

std::string text_of_fields(const tav_flist_t* list) {
  std::ostringstream text;
  uint32_t position = 0;
  int32_t id = 0;
  for (int32_t expected = 0;; ++expected) {
    const tav_node* node = tav_node_next(tav_node_of(list), TAV_FLD_FIELD, &position, &id);
    if (node == nullptr) return text.str();
    EXPECT_EQ(id, expected);
    const auto number = [node](uint32_t field) {
      const void* value = tav_node_get(node, field);
      return value != nullptr ? *static_cast<const int32_t*>(value) : 0;
    };
    const void* descr = tav_node_get(node, TAV_FLD_DESCR);
    text << dd_type_keyword(number(TAV_FLD_FIELD_TYPE)) << ' '
         << static_cast<const char*>(tav_node_get(node, TAV_FLD_FIELD_NAME)) << ' '
         << number(TAV_FLD_FIELD_NUM);
    if (descr != nullptr) text << ' ' << static_cast<const char*>(descr);
    text << '\n';
    EXPECT_EQ(number(TAV_FLD_FIELD_FLAGS),
              number(TAV_FLD_FIELD_NUM) < 2000 ? DD_FIELD_PREDEFINED : 0);
    EXPECT_EQ(tav_node_get(node, TAV_FLD_FLAGS), nullptr);
  }
}

// The stored form is a text form of everything that a class holds.
std::string text_of_classes(const tav_flist_t* list) {
  std::string text;
  uint32_t position = 0;
  int32_t id = 0;
  dm::class_writer writer;
  dm::class_def definition;
  for (int32_t expected = 0;; ++expected) {
    const tav_node* node = tav_node_next(tav_node_of(list), TAV_FLD_OBJ_DESC, &position, &id);
    if (node == nullptr) return text;
    EXPECT_EQ(id, expected);
    dm::read_class(node, id, definition);
    for (const dm::entry_def& entry : definition.entries) EXPECT_GE(entry.elem_id, 0);
    for (const char c : writer.write(definition)) {
      if (c != '"') text += c;
    }
    text += '\n';
  }
}

static std::string result_of(const tav_ebuf& ebuf, int32_t location) {
  if (ebuf.err_code == TAV_ERR_NONE) return "ok";
  if (ebuf.err_code == TAV_ERR_NOT_CONNECTED) location = TAV_ERRLOC_CM;
  EXPECT_EQ(ebuf.location, location);
  const std::string code = tav_taverr_to_str(ebuf.err_code);
  return code.substr(8) + (ebuf.field != 0 ? std::string(" ") + tav_name_of_field(ebuf.field) : "");
}

client::client(const dm::settings& settings, int busy_milliseconds, int answer_milliseconds) {
  tav_ebuf ebuf{};
  session_ = dm::open_session(settings, {busy_milliseconds, answer_milliseconds}, &ebuf);
  opened = result_of(ebuf, TAV_ERRLOC_CM);
}

client::~client() {
  close();
}

std::string client::close() {
  tav_ebuf ebuf{};
  if (session_ != nullptr) tav_bound_data_manager()->close(session_, &ebuf);
  session_ = nullptr;
  return result_of(ebuf, TAV_ERRLOC_DM);
}

std::string client::op(uint32_t opcode, uint32_t flags, const dd_flist& input) {
  if (session_ == nullptr) return "NOT_CONNECTED";
  tav_ebuf ebuf{};
  output_.reset(tav_bound_data_manager()->op(session_, opcode, flags, input.get(), &ebuf));
  EXPECT_EQ(output_ == nullptr, ebuf.err_code != TAV_ERR_NONE);
  last = ebuf;
  return result_of(ebuf, TAV_ERRLOC_DM);
}

std::string client::set_fields(const std::string& text, uint64_t database) {
  return op(TCM_OP_SDK_SET_FLD_SPECS, 0, fields_of(text, database));
}

std::string client::delete_fields(const std::string& text) {
  return op(TCM_OP_SDK_DEL_FLD_SPECS, 0, fields_of(text));
}

std::string client::set_classes(const std::string& text, uint32_t flags) {
  return op(TCM_OP_SDK_SET_OBJ_SPECS, flags, classes_of(text));
}

std::string client::fields(const std::string& names, uint64_t database) {
  const std::string result = op(TCM_OP_SDK_GET_FLD_SPECS, 0, fields_of(names, database));
  return result == "ok" ? text_of_fields(output_.get()) : result;
}

std::string client::classes(const std::string& names) {
  const std::string result = op(TCM_OP_SDK_GET_OBJ_SPECS, 0, classes_of(names));
  return result == "ok" ? text_of_classes(output_.get()) : result;
}

// The library reads tav.conf once in a process, so all tests share one, and the logs with it.
struct shared_folder {
  shared_folder() : name((fs::temp_directory_path() / "dm_logs.XXXXXX").string()) {
    std::ofstream(std::string(mkdtemp(name.data())) + "/tav.conf") << "userid = 0.0.0.1 /admin 1\n";
    setenv("TAV_CONF", (name + "/tav.conf").c_str(), 1);
  }
  ~shared_folder() { fs::remove_all(name); }
  std::string name;
};

static const std::string& log_folder() {
  static const shared_folder made;
  return made.name;
}

bool on_server() {
  return std::getenv("TAV_POSTGRES_RESTART") != nullptr;
}

std::string output_of(const std::string& command, int* status) {
  FILE* pipe = popen((command + " 2>&1").c_str(), "r");
  std::string output;
  for (int c; (c = fgetc(pipe)) != EOF;) output += static_cast<char>(c);
  const int ended = WEXITSTATUS(pclose(pipe));
  if (status != nullptr) *status = ended;
  EXPECT_TRUE(status != nullptr || ended == 0) << output;
  return output;
}

bool make(const dm::settings& settings, dm::problem& why) {
  const auto fill = [](dm::store& s, dm::problem& p) { return dm::make_first_database(s, 1, p); };
  std::string name;
  return dm::create_dictionary(settings, fill, name, why);
}

dictionary::dictionary() {
  tav_err_set_level(1);  // what plans are made with turns the log off
  for (const char* name : {"/dm.tavlog", "/cm.tavlog"}) {
    if (fs::exists(log_folder() + name)) fs::resize_file(log_folder() + name, 0);
  }
  folder = (fs::temp_directory_path() / "dm_test.XXXXXX").string();
  if (mkdtemp(folder.data()) == nullptr) ADD_FAILURE() << "no folder";
  path = folder + "/dictionary.db";
  settings = {"sqlite:" + path, true, true, true, 1};
  if (on_server()) {
    schema = "\"" + folder.substr(folder.rfind('.') + 1) + "\"";
    settings.dictionary = "options='-c search_path=" + schema + "'";
    query("CREATE SCHEMA " + schema);
  }
  dm::problem why;
  EXPECT_TRUE(make(settings, why)) << why.sentence;
}

dictionary::~dictionary() {
  fs::remove_all(folder);
}

static std::string query_file(const std::string& path, const std::string& text) {
  std::string rows;
  sqlite3* db = nullptr;
  const auto take = [](void* to, int count, char** values, char**) {
    auto& all = *static_cast<std::string*>(to);
    for (int i = 0; i < count; ++i) {
      all += std::string(i > 0 ? "|" : "") + (values[i] != nullptr ? values[i] : "");
    }
    all += "\n";
    return 0;
  };
  EXPECT_EQ(sqlite3_open_v2(path.c_str(), &db, SQLITE_OPEN_READWRITE, nullptr), SQLITE_OK);
  EXPECT_EQ(sqlite3_exec(db, text.c_str(), take, &rows, nullptr), SQLITE_OK) << sqlite3_errmsg(db);
  sqlite3_close(db);
  return rows;
}

std::string dictionary::query(const std::string& text) const {
  if (!on_server()) return query_file(path, text);
  const std::string file = folder + "/query.sql";
  std::ofstream(file) << "SET client_min_messages = error; SET search_path = " << schema << ";"
                      << text;
  return output_of("psql -qAtX -v ON_ERROR_STOP=1 -f " + file);
}

std::string dictionary::content() const {
  std::string text;
  for (const char* table : {"databases", "fields", "classes", "tables"}) {
    text += std::string("SELECT * FROM dd_") + table + " ORDER BY 1, 2;";
  }
  return query(text);
}

std::string dictionary::log(const std::string& component) const {
  std::ostringstream text;
  text << std::ifstream(log_folder() + "/" + component + ".tavlog").rdbuf();
  return text.str();
}
