// The definition language: any text is read or refused with a message, and what was read, written
// and read again is the same but for what the language loses.
#include <algorithm>

#include "dd/values.h"
#include "dd/walk.h"
#include "dparse/dparse.h"
#include "dparse/dparse_export.h"
#include "dparse/dparse_sql_name.h"
#include "tests/dparse/language.h"
#include "tests/fuzz/target.h"

namespace {

enum when { ALWAYS, IF_EMPTY, IF_ZERO, IF_MINUS_ONE };

// What an export does not carry. (A missing 0 comes back as 0.)
constexpr struct {
  uint32_t field;
  when lost;
} LOSSES[] = {
    {TAV_FLD_CREATE_ACCESS, ALWAYS},
    {TAV_FLD_RESIDENCY_TYPE, ALWAYS},
    {TAV_FLD_LOCATION, ALWAYS},
    {TAV_FLD_ATTRVALS, ALWAYS},
    {TAV_FLD_ENTRY_TYPE, ALWAYS},
    {TAV_FLD_LINK_OBJECT, ALWAYS},
    {TAV_FLD_ATTRIBUTE, ALWAYS},
    {TAV_FLD_MULTIVALUED, ALWAYS},
    {TAV_FLD_RDN_PIECE, ALWAYS},
    {TAV_FLD_LINK_ATTRIBUTE, ALWAYS},
    {TAV_FLD_OBJECTCLASSES, ALWAYS},
    {TAV_FLD_LABEL, IF_EMPTY},
    {TAV_FLD_DESCR, IF_EMPTY},
    {TAV_FLD_EVENT_TYPE, IF_EMPTY},
    {TAV_FLD_SQL_TABLE, IF_EMPTY},
    {TAV_FLD_SQL_STORAGE, IF_EMPTY},
    {TAV_FLD_IS_PARTITIONED, IF_MINUS_ONE},
    {TAV_FLD_VIRTUAL_FLAG, IF_MINUS_ONE},
    {TAV_FLD_SEQ_START, IF_ZERO},
    {TAV_FLD_AUDITABLE, IF_ZERO},
    {TAV_FLD_ENCRYPTABLE, IF_ZERO},
    {TAV_FLD_SERIALIZABLE, IF_ZERO},
    {TAV_FLD_QUERYABLE_ON_AUDIT, IF_ZERO},
    {TAV_FLD_IGNORE_ON_AUDIT, IF_ZERO},
};

void drop_lost(tav_flist_t* list, uint32_t field, when lost) {
  tav_ebuf ebuf{};
  if (DD_FIELD_ID_TYPE(field) == TAV_FLDT_ARRAY) {
    dd_walk walk(list, field);
    while (walk.take(&ebuf) != nullptr) {
    }
    return;
  }
  if (tavi_flist_get(list, field, 0, 1, 0, &ebuf) == nullptr) return;
  const bool drops = lost == IF_EMPTY ? *dd_text(list, field, &ebuf) == '\0'
                     : lost == ALWAYS ? true
                                      : dd_int(list, field, &ebuf) == (lost == IF_ZERO ? 0 : -1);
  if (drops) tavi_flist_drop(list, field, 0, &ebuf);
}

// A backslash and a tab are written as what reads as a backslash, a backslash and a "t"; and a tab
// takes two characters, of which a text has 2,047 at most.
bool is_carried(const std::string& text) {
  const auto tabs =
      std::count_if(text.begin(), text.end(), [](char c) { return c == '\t' || c == '\n'; });
  return text.find("\\\t") == text.npos && text.size() + static_cast<size_t>(tabs) < 2048;
}

// The two names of a BUF field are words in one text.
void split_names(tav_flist_t* entry, int32_t type) {
  tav_ebuf ebuf{};
  const std::string names = dd_text(entry, TAV_FLD_SQL_TABLE, &ebuf);
  if (type != TAV_FLDT_BUF || names.empty()) return;
  const std::string table(dparse_sql_part(names, DPARSE_TABLE_MARK));
  const std::string column(dparse_sql_part(names, DPARSE_COLUMN_MARK));
  const std::string both = table + column == "" ? "" : table + " " + column;
  dd_set_text(entry, TAV_FLD_SQL_TABLE, both.c_str(), &ebuf);
}

// Leaves what an export carries of a definition or an entry and what stands in it; false where that
// does not read back. Gives fields that have no definition theirs.
bool keep_carried(tav_flist_t* list, dd_list& fields) {
  tav_ebuf ebuf{};
  bool carried = true;
  const int32_t type = dd_int(list, TAV_FLD_FIELD_TYPE, &ebuf);
  if (type != 0) {
    tav_flist_t* field = fields.find(dd_text(list, TAV_FLD_FIELD_NAME, &ebuf), &ebuf);
    if (field == nullptr) fields.append(dd_flist(tav_flist_copy(list, &ebuf)), &ebuf);
    carried = field == nullptr || dd_int(field, TAV_FLD_FIELD_TYPE, &ebuf) == type;
    const bool has_table = type == TAV_FLDT_ARRAY || type == TAV_FLDT_SUBSTRUCT;
    if (!has_table && type != TAV_FLDT_BUF) dd_set_text(list, TAV_FLD_SQL_STORAGE, "", &ebuf);
    if (tavi_flist_get(list, TAV_FLD_ORDER, 0, 1, 0, &ebuf) == nullptr) {
      dd_put(list, TAV_FLD_ORDER, 0, dd_decimal(tav_decimal("0", &ebuf)), &ebuf);
    }
  }
  split_names(list, type);
  for (const auto& row : LOSSES) {
    if (row.lost == IF_EMPTY) carried = carried && is_carried(dd_text(list, row.field, &ebuf));
    drop_lost(list, row.field, row.lost);
  }
  dd_walk entries(list, TAV_FLD_OBJ_ELEM);
  while (tav_flist_t* entry = entries.next(&ebuf)) carried = keep_carried(entry, fields) && carried;
  return carried;
}

// What an export carries of all lists, as text; "" where it does not read back.
std::string carried_of(const lists& read, dd_list& fields) {
  tav_ebuf ebuf{};
  bool carried = true;
  std::string text;
  for (const dd_list* list : {&read.fields, &read.classes, &read.impls}) {
    const dd_flist copy(tav_flist_copy(list->get(), &ebuf));
    dd_walk walk(copy.get(), list == &read.fields ? TAV_FLD_FIELD : TAV_FLD_OBJ_DESC);
    while (tav_flist_t* element = walk.next(&ebuf)) {
      carried = keep_carried(element, fields) && carried;
    }
    text += text_of(copy.get()) + "\n";
  }
  claim(ebuf.err_code == 0, "lists can be walked");
  return carried ? text : "";
}

std::string export_of(const lists& read, dd_list& fields) {
  char* text = nullptr;
  size_t size = 0;
  tav_ebuf ebuf{};
  FILE* out = open_memstream(&text, &size);
  claim(dparseExportInterfaceFields(out, read.fields.get(), &ebuf) == 1 &&
            dparseExportInterfaceClasses(out, &fields, read.classes.get(), &ebuf) == 1 &&
            dparseExportImplClasses(out, &fields, read.impls.get(), &ebuf) == 1,
        "what was read can be written");
  std::fclose(out);
  const std::string result(text, size);
  std::free(text);
  return result;
}

// A field that was given no number cannot be written.
void number_fields(dd_list& fields) {
  tav_ebuf ebuf{};
  const int32_t number = 1;
  dd_walk walk(fields.get(), TAV_FLD_FIELD);
  while (tav_flist_t* field = walk.next(&ebuf)) {
    if (dd_int_or_null(field, TAV_FLD_FIELD_NUM, &ebuf) == nullptr) {
      dd_set_int(field, TAV_FLD_FIELD_NUM, number, &ebuf);
    }
  }
}

// The same by characters that no stream has read ahead.
void read_singly(const std::string& text, const lists& expected, int result) {
  const std::string message = reader_error();
  lists singly;
  const file stream = stream_of(text, false);
  claim(dparseDefFile(stream.get(), &singly.fields, &singly.classes, &singly.impls) == result &&
            singly.text() == expected.text() && reader_error() == message,
        "a text reads the same however the stream is buffered", message);
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  tav_err_set_level(0);
  const std::string text(reinterpret_cast<const char*>(data), size);
  lists first;
  const int result = first.read(text);
  // A definition's unknown attribute is the whole message: nothing for "" and a NUL byte.
  const bool names_nothing = text.find('\0') != text.npos || text.find("\"\"") != text.npos;
  claim(result == 1 || *dparseGetErrMsg() != '\0' || names_nothing, "a refusal says why");
  read_singly(text, first, result);
  if (result != 1) return 0;
  number_fields(first.fields);
  dd_list fields(DD_FIELDS, dd_flist(tav_flist_copy(first.fields.get(), nullptr)));
  const std::string carried = carried_of(first, fields);
  const std::string written = export_of(first, fields);
  if (carried.empty()) return 0;
  lists second;
  claim(second.read(written) == 1, "what was written can be read", written + reader_error());
  claim(carried_of(second, fields) == carried, "no record is lost", written);
  claim(export_of(second, fields) == written, "what was read is written the same", written);
  return 0;
}
