// The definition language: any text is read or refused with a message, and what was read, written
// and read again is the same but for what the language loses.
#include "dparse/read/reader.h"
#include <algorithm>
#include "dd/buf_storage.h"
#include "dd/values.h"
#include "dd/walk.h"
#include "dparse/write/writer.h"
#include "tests/dparse/language.h"
#include "tests/fuzz/target.h"

// What an export does not carry: the value, or any. What it writes as 0 counts as lost where it is
// 0.
static const struct {
  const char *name, *value;
} LOSSES[] = {
    {"CREATE_ACCESS", ""},    {"RESIDENCY_TYPE", ""},
    {"LOCATION", ""},         {"ATTRVAL", ""},
    {"ATTRVALS", ""},         {"ENTRY_TYPE", ""},
    {"LINK_OBJECT", ""},      {"ATTRIBUTE", ""},
    {"MULTIVALUED", ""},      {"RDN_PIECE", ""},
    {"LINK_ATTRIBUTE", ""},   {"OBJECTCLASS", ""},
    {"OBJECTCLASSES", ""},    {"LABEL", "\"\""},
    {"DESCR", "\"\""},        {"EVENT_TYPE", "\"\""},
    {"SQL_TABLE", "\"\""},    {"SQL_STORAGE", "\"\""},
    {"IS_PARTITIONED", "-1"}, {"VIRTUAL_FLAG", "-1"},
    {"SEQ_START", "0"},       {"ORDER", "0"},
    {"AUDITABLE", "0"},       {"ENCRYPTABLE", "0"},
    {"SERIALIZABLE", "0"},    {"QUERYABLE_ON_AUDIT", "0"},
    {"IGNORE_ON_AUDIT", "0"},
};

// Gives a class's or an entry's fields definitions where they have none. False where the entries
// cannot come back as they are: a field has one type, a BUF field's names are words, and a field
// with a column loses its storage clause.
static bool define_fields(tav_flist_t* list, dd_list& fields) {
  tav_ebuf ebuf{};
  bool carried = true;
  dd_walk entries(list, TAV_FLD_OBJ_ELEM);
  while (tav_flist_t* entry = entries.next(&ebuf)) {
    const int32_t type = dd_int(entry, TAV_FLD_FIELD_TYPE, &ebuf);
    const std::string names = dd_text(entry, TAV_FLD_SQL_TABLE, &ebuf);
    const bool has_table = type == TAV_FLDT_ARRAY || type == TAV_FLDT_SUBSTRUCT;
    tav_flist_t* field = fields.find(dd_text(entry, TAV_FLD_FIELD_NAME, &ebuf), &ebuf);
    if (field == nullptr) fields.append(dd_flist(tav_flist_copy(entry, &ebuf)), &ebuf);
    if (field != nullptr) carried = carried && dd_int(field, TAV_FLD_FIELD_TYPE, &ebuf) == type;
    if (type == TAV_FLDT_BUF && !names.empty()) {
      const std::string column(dd_buf_part(names, DD_COLUMN_MARK));
      const std::string table(dd_buf_part(names, DD_TABLE_MARK));
      carried = carried && names == "C=" + column + " T=" + table && table + column != "";
    } else if (!has_table) {
      carried = carried && *dd_text(entry, TAV_FLD_SQL_STORAGE, &ebuf) == '\0';
    }
    carried = define_fields(entry, fields) && carried;
  }
  return carried;
}

// The language has no way to write a backslash before a tab, and a tab takes two characters, of
// which a text has 2,047; a field without a number is not written.
static bool is_carried(lists& read, const std::string& text, dd_list& fields) {
  tav_ebuf ebuf{};
  const auto tabs = static_cast<size_t>(std::count(text.begin(), text.end(), '\t'));
  bool carried = text.find("\\\t") == text.npos && text.size() + tabs < 2000;
  dd_walk numbered(read.fields.get(), TAV_FLD_FIELD);
  while (tav_flist_t* field = numbered.next(&ebuf)) {
    carried = carried && dd_int(field, TAV_FLD_FIELD_NUM, &ebuf) != 0;
  }
  for (const dd_list* list : {&read.classes, &read.impls}) {
    dd_walk walk(list->get(), TAV_FLD_OBJ_DESC);
    while (tav_flist_t* element = walk.next(&ebuf)) {
      carried = define_fields(element, fields) && carried;
    }
  }
  return carried;
}

static std::string export_of(const lists& read, dd_list& fields, bool may_fail) {
  char* text = nullptr;
  size_t size = 0;
  tav_ebuf ebuf{};
  FILE* out = open_memstream(&text, &size);
  const bool written = dparseExportInterfaceFields(out, read.fields.get(), &ebuf) == 1 &&
                       dparseExportInterfaceClasses(out, &fields, read.classes.get(), &ebuf) == 1 &&
                       dparseExportImplClasses(out, &fields, read.impls.get(), &ebuf) == 1;
  std::fclose(out);
  const std::string result(text, size);
  std::free(text);
  claim(written || may_fail, "what was read can be written", result);
  return result;
}

static std::string without_losses(std::string text) {
  for (const auto& loss : LOSSES) lose(text, loss.name, loss.value);
  return text;
}

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  tav_err_set_level(0);
  const std::string text(reinterpret_cast<const char*>(data), size);
  lists first;
  const int result = first.read(text);
  // A definition's unknown attribute is the whole message: nothing for "" and a NUL byte.
  const bool names_nothing = text.find('\0') != text.npos || text.find("\"\"") != text.npos;
  claim(result == 1 || *dparseGetErrMsg() != '\0' || names_nothing, "a refusal says why");
  if (result != 1) return 0;
  dd_list fields(DD_FIELDS, dd_flist(tav_flist_copy(first.fields.get(), nullptr)));
  const bool carried = is_carried(first, first.text(), fields);
  const std::string written = export_of(first, fields, !carried);
  if (!carried) return 0;
  lists second;
  claim(second.read(written) == 1, "what was written can be read", written + reader_error());
  claim(without_losses(second.text()) == without_losses(first.text()), "no record is lost",
        first.text() + "\n" + second.text());
  claim(export_of(second, fields, false) == written, "what was read is written the same", written);
  return 0;
}
