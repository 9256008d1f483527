#include <gtest/gtest.h>

#include <cstdlib>

#include "dd/walk.h"
#include "dparse/read/reader.h"
#include "dparse/write/writer.h"
#include "language.h"

struct outcome {
  int result;
  std::string text;    // on the stream
  std::string errors;  // on standard error
};

template <class Write>
static outcome write(Write call) {
  char* text = nullptr;
  size_t size = 0;
  FILE* stream = open_memstream(&text, &size);
  testing::internal::CaptureStderr();
  const int result = call(stream);
  std::fclose(stream);
  const outcome done{result, std::string(text, size), testing::internal::GetCapturedStderr()};
  std::free(text);
  return done;
}

static outcome write_fields(lists& read) {
  tav_ebuf ebuf{};
  return write(
      [&](FILE* out) { return dparseExportInterfaceFields(out, read.fields.get(), &ebuf); });
}
static outcome write_classes(lists& read) {
  tav_ebuf ebuf{};
  return write([&](FILE* out) {
    return dparseExportInterfaceClasses(out, &read.fields, read.classes.get(), &ebuf);
  });
}
static outcome write_impls(lists& read) {
  tav_ebuf ebuf{};
  return write([&](FILE* out) {
    return dparseExportImplClasses(out, &read.fields, read.impls.get(), &ebuf);
  });
}

static const std::string WIDE = "#=======================================\n";
static const std::string NARROW = "#===================\n";

static std::string class_banner(const std::string& name) {
  return "\n" + WIDE + "#  Storable Class " + name + "\n" + WIDE + "\n";
}
static std::string fields_banner(const std::string& tabs) {
  return "\n" + tabs + NARROW + tabs + "#  Fields \n" + tabs + NARROW + "\n";
}

TEST(Writer, FieldDefinitions) {
  lists read;
  EXPECT_EQ(write_fields(read).text, "");
  read.read(
      "STRING TAV_FLD_EXAMPLE { DESCR = \"Two\\tparts\"; ID = 77; } INT64 F { ID = 1; DESCR = "
      "\"\"; }");
  const outcome written = write_fields(read);
  EXPECT_EQ(written.result, 1);
  EXPECT_EQ(written.text, "\n" + WIDE + "#  Field TAV_FLD_EXAMPLE\n" + WIDE +
                              "\nSTRING TAV_FLD_EXAMPLE {\n\n\tID = 77;\n"
                              "\tDESCR = \"Two\\tparts\";\n}\n\n"
                              "\n" +
                              WIDE + "#  Field F\n" + WIDE + "\nINT64 F {\n\n\tID = 1;\n}\n\n");
  EXPECT_EQ(written.errors, "");
}

TEST(Writer, Interfaces) {
  lists read;
  read.read(
      "ARRAY TAV_FLD_EXAMPLE_ITEMS { ID = 1; } INT TAV_FLD_EXAMPLE_COUNT { ID = 2; }"
      "STORABLE CLASS /example { DESCR = \"Example\"; ARRAY TAV_FLD_EXAMPLE_ITEMS {"
      " ORDER = 0; INT tav_fld_example_count { LENGTH = 10; } } }"
      "STORABLE CLASS /example/empty { IS_PARTITIONED = \"0\"; VIRTUAL_FLAG = \"-1\"; }");
  const outcome written = write_classes(read);
  EXPECT_EQ(written.result, 1);
  EXPECT_EQ(written.text,
            class_banner("/example") +
                "STORABLE CLASS /example {\n\n\tSEQ_START = \"0\";\n\tDESCR = \"Example\";\n" +
                fields_banner("\t") +
                "\tARRAY TAV_FLD_EXAMPLE_ITEMS {\n\n\t\tORDER = 0;\n\t\tAUDITABLE = 0;\n"
                "\t\tENCRYPTABLE = 0;\n\t\tSERIALIZABLE = 0;\n" +
                fields_banner("\t\t") +
                "\t\tINT tav_fld_example_count {\n\n\t\t\tORDER = 0;\n\t\t\tLENGTH = 10;\n"
                "\t\t\tAUDITABLE = 0;\n\t\t\tENCRYPTABLE = 0;\n\t\t\tSERIALIZABLE = 0;\n"
                "\t\t}\n\n\t}\n\n}\n\n" +
                class_banner("/example/empty") +
                "STORABLE CLASS /example/empty {\n\n\tIS_PARTITIONED = \"0\";\n}\n\n");
}

TEST(Writer, Implementations) {
  lists read;
  read.read(
      "STRING CODE { ID = 1; } BUF BLOB { ID = 2; } ARRAY LIST { ID = 3; } BUF COLUMN { ID = 4; }"
      "STORABLE CLASS /example IMPLEMENTATION SQLSERVER7 { SQL_TABLE = \"example_t\";"
      " STRING CODE { SQL_COLUMN = \"code\"; SQL_STORAGE = \"lost\"; }"
      " BUF BLOB { SQL_COLUMN = \"blob\"; SQL_TABLE = \"example_blob_t\"; SQL_STORAGE = \"b\"; }"
      " ARRAY LIST { SQL_TABLE = \"l_t\"; SQL_STORAGE = \"s\"; BUF COLUMN { SQL_COLUMN = \"c\"; } }"
      "}");
  const outcome written = write_impls(read);
  EXPECT_EQ(written.result, 1);
  EXPECT_EQ(
      written.text,
      class_banner("/example") +
          "STORABLE CLASS /example IMPLEMENTATION TESSEL7 {\n\n\tSQL_TABLE = \"example_t\";\n" +
          fields_banner("\t") + "\tSTRING CODE {\n\n\t\tSQL_COLUMN = \"code\";\n\t}\n\n" +
          "\tBUF BLOB {\n\n\t\tSQL_TABLE = \"example_blob_t\";\n\t\tSQL_COLUMN = \"blob\";\n"
          "\t\tSQL_STORAGE = \"b\";\n\t}\n\n" +
          "\tARRAY LIST {\n\n\t\tSQL_TABLE = \"l_t\";\n\t\tSQL_STORAGE = \"s\";\n" +
          fields_banner("\t\t") +
          "\t\tBUF COLUMN {\n\n\t\t\tSQL_COLUMN = \"c\";\n\t\t}\n\n\t}\n\n}\n\n");
}

// The entries of one class or entry, at any depth.
TEST(Writer, EntriesOnTheirOwn) {
  lists read;
  read.read(
      "ARRAY L { ID = 1; } INT I { ID = 2; } STORABLE CLASS /a { ARRAY L { INT I { } } }"
      "STORABLE CLASS /a IMPLEMENTATION TESSEL7 { INT I { SQL_COLUMN = \"i\"; } }");
  tav_ebuf ebuf{};
  tav_flist_t* interface = read.classes.find("/a", &ebuf);
  tav_flist_t* array = dd_walk(interface, TAV_FLD_OBJ_ELEM).next(&ebuf);
  tav_flist_t* implementation = read.impls.find("/a", &ebuf);
  EXPECT_EQ(
      write([&](FILE* out) { return dparseExportClassFields(out, &read.fields, array, 3); }).text,
      fields_banner("\t\t\t") +
          "\t\t\tINT I {\n\n\t\t\t\tORDER = 0;\n\t\t\t\tAUDITABLE = 0;\n"
          "\t\t\t\tENCRYPTABLE = 0;\n\t\t\t\tSERIALIZABLE = 0;\n\t\t\t}\n\n");
  EXPECT_EQ(write([&](FILE* out) {
              return dparseExportImplClassFields(out, &read.fields, implementation, 1);
            }).text,
            fields_banner("\t") + "\tINT I {\n\n\t\tSQL_COLUMN = \"i\";\n\t}\n\n");
}

TEST(Writer, Pieces) {
  const auto text = [](auto call) {
    const outcome written = write(call);
    EXPECT_EQ(written.result, 1);
    return written.text;
  };
  EXPECT_EQ(text([](FILE* out) { return dparseExportComment(out, 1, 2, "a", nullptr); }),
            "\t\t#\n\t\t#  a \n\t\t#\n");
  EXPECT_EQ(text([](FILE* out) { return dparseExportComment(out, 3, -1, nullptr, "b"); }),
            "#==\n#   b\n#==\n");
  EXPECT_EQ(text([](FILE* out) { return dparseExportString(out, "K", "a\"\\\t\n", 0); }),
            "K = \"a\"\\\\t\\n\";\n");
  EXPECT_EQ(text([](FILE* out) { return dparseExportString(out, nullptr, "%s", 1); }),
            "\t = \"%s\";\n");
  EXPECT_EQ(text([](FILE* out) { return dparseExportString(out, "K", "", 1); }), "");
  const std::string large(200'000, 'x');  // more than a piece
  EXPECT_EQ(text([&](FILE* out) { return dparseExportString(out, "K", large.c_str(), 12); }),
            std::string(12, '\t') + "K = \"" + large + "\";\n");
  EXPECT_EQ(text([](FILE* out) { return dparseExportFieldType(out, 0); }), "UNUSED");
  EXPECT_EQ(text([](FILE* out) {
              return dparseExportClassImplFieldAttrs(out, TAV_FLDT_BUF, "C=c T=", "s", 1);
            }),
            "\tSQL_COLUMN = \"c\";\n\tSQL_STORAGE = \"s\";\n");
  EXPECT_EQ(text([](FILE* out) {
              return dparseExportClassImplFieldAttrs(out, TAV_FLDT_ARRAY, "t", "", 0);
            }),
            "SQL_TABLE = \"t\";\n");
  EXPECT_EQ(text([](FILE* out) {
              return dparseExportClassImplFieldAttrs(out, TAV_FLDT_OBJ, "c", nullptr, 0);
            }),
            "SQL_COLUMN = \"c\";\n");
  char* value = strdup(("\t" + std::string(4000, 'x') + "\n").c_str());
  EXPECT_EQ(dparseEncodeTabsNewlines(&value), 1);
  EXPECT_EQ(value, "\\t" + std::string(4000, 'x') + "\\n");
  std::free(value);
  EXPECT_TRUE(dparseIsTopLevelClass("/a"));
  EXPECT_FALSE(dparseIsTopLevelClass("/a/b"));
  EXPECT_FALSE(dparseIsTopLevelClass(""));
}

static void set_type(dd_list& fields, const char* name, int32_t type) {
  tav_ebuf ebuf{};
  tavi_flist_set(fields.find(name, &ebuf), TAV_FLD_FIELD_TYPE, 0, 0, &type, &ebuf);
}

TEST(Writer, UnknownTypesStopTheExport) {
  lists read;
  read.read("INT A { ID = 1; } INT B { ID = 2; }");
  set_type(read.fields, "B", 15);
  const outcome written = write_fields(read);
  EXPECT_EQ(written.result, -1);
  EXPECT_EQ(written.text.substr(written.text.rfind(WIDE) + WIDE.size()),
            "\nUNKNOWN FIELD TYPE: 15\n");
  EXPECT_EQ(written.errors, "UNKNOWN FIELD TYPE: 15\nError: Unable to export field type");
  EXPECT_EQ(take_log(), "Unknown field type | Unable to export field type");
}

TEST(Writer, UnknownFieldsStopTheExportLevelByLevel) {
  lists read;
  read.read(
      "ARRAY L { ID = 1; } STORABLE CLASS /a { ARRAY L { INT M { } } }"
      "STORABLE CLASS /b IMPLEMENTATION TESSEL7 { INT %n { } }");
  outcome written = write_classes(read);
  EXPECT_EQ(written.result, -1);
  EXPECT_EQ(written.errors,
            "UKNOWN FIELD NAME: M\nError: Unable to determine field type from name: M"
            "Error: Unable to export class fieldsError: Unable to export class fields");
  EXPECT_EQ(take_log(),
            "Unknown field name"
            " | Unable to determine field type from name"
            " | Unable to export class fields"
            " | Unable to export class fields");
  written = write_impls(read);
  EXPECT_EQ(written.text, class_banner("/b") + "STORABLE CLASS /b IMPLEMENTATION TESSEL7 {\n\n" +
                              fields_banner("\t"));
  EXPECT_EQ(written.errors,
            "UKNOWN FIELD NAME: %n\nError: Unable to determine field type from name: %n"
            "Error: Unable to export storable class implementation");
  take_log();
}

TEST(Writer, OtherFailures) {
  lists read;
  read.read("INT A { } STORABLE CLASS /a IMPLEMENTATION TESSEL7 { INT A { SQL_COLUMN = \"a\"; } }");
  EXPECT_EQ(write_fields(read).errors, "Error: Internal Error\n");  // a field without a number
  EXPECT_EQ(take_log(), "Flist error");
  set_type(read.fields, "A", TAV_FLDT_UNUSED);
  outcome written = write_impls(read);  // told, but not stopped
  EXPECT_EQ(written.result, 1);
  EXPECT_NE(written.text.find("\tUNUSED A {\n\n\t}\n\n"), std::string::npos);
  EXPECT_EQ(written.errors, "Error: Internal Error");
  EXPECT_EQ(take_log(), "Invalid field type");
  tav_ebuf ebuf{};
  tavi_flist_drop(read.fields.find("A", &ebuf), TAV_FLD_FIELD_TYPE, 0, &ebuf);
  written = write([&](FILE*) { return dparseGetTypeFromField(&read.fields, "a"); });
  EXPECT_EQ(written.errors, "MISSING FIELD TYPE FOR FIELD: a\n");
  written = write([&](FILE*) { return dparseGetTypeFromField(&read.fields, nullptr); });
  EXPECT_EQ(written.errors, "Error: Internal Error");
  written = write([&](FILE* out) { return dparseExportInterfaceFields(out, nullptr, nullptr); });
  EXPECT_EQ(written.result, -1);
  EXPECT_EQ(written.errors, "\n*** Error buffer not initialized ***\n");
  EXPECT_EQ(take_log(), "Missing field type for field | null pointer");
}

// What an export does not carry.
static const char* const LOSSES[] = {
    " CREATE_ACCESS=\"Root\"",  // never written
    " RESIDENCY_TYPE=4",        // never written
    " IGNORE_ON_AUDIT=0",       // NO is left out
    " LOCATION=\"lost\"",       // nothing of a directory is written
    " SQL_STORAGE=\"lost\"",    // of a field with a column of its own
};

TEST(RoundTrip, EveryAttributeComesBackExceptTheLosses) {
  lists first;
  ASSERT_EQ(
      first.read(
          "INT I { ID = 1; DESCR = \"a\\tb\\nc \\\\n\"; } ARRAY L { ID = 2; } BUF B { ID = 3; }"
          "STORABLE CLASS /a { SEQ_START = \"7\"; LABEL = \"l\"; READ_ACCESS = Self;"
          " WRITE_ACCESS = Global; DESCR = \"d\"; IS_PARTITIONED = \"1\"; PARTITION_MODE ="
          " Historic; AUDIT_SCHEME = EXPANDED; EVENT_TYPE = \"/e\"; VIRTUAL_FLAG = \"2\";"
          " CREATE_ACCESS = ROOT; RESIDENCY_TYPE = \"4\";"
          " ARRAY L { ORDER = 0; AUDITABLE = 1; ENCRYPTABLE = 1; SERIALIZABLE = 1;"
          "  INT I { LABEL = \"l\"; DESCR = \"d\"; ORDER = 1.50; LENGTH = 3; CREATE = Required;"
          "   MODIFY = Not_Writeable; AUDITABLE = 0; ENCRYPTABLE = 0; SERIALIZABLE = 0;"
          "   QUERYABLE_ON_AUDIT = YES; IGNORE_ON_AUDIT = NO; } } }"
          "STORABLE CLASS /a IMPLEMENTATION SQLGENERIC { SQL_TABLE = \"t\"; SQL_STORAGE = \"s\";"
          " ARRAY L { SQL_TABLE = \"l\"; SQL_STORAGE = \"s\"; INT I { SQL_COLUMN = \"i\";"
          " SQL_STORAGE = \"lost\"; } } BUF B { SQL_TABLE = \"b\"; SQL_COLUMN = \"c\"; } }"
          "STORABLE CLASS /b IMPLEMENTATION LDAPV3 { LOCATION = \"lost\"; }"),
      1)
      << reader_error();
  const auto export_all = [](lists& read) {
    return write_fields(read).text + write_classes(read).text + write_impls(read).text;
  };
  std::string expected = first.text();
  for (const std::string loss : LOSSES) {
    const size_t found = expected.find(loss);
    ASSERT_NE(found, std::string::npos) << loss;
    expected.erase(found, loss.size());
  }
  const std::string text = export_all(first);
  lists second;
  ASSERT_EQ(second.read(text), 1) << reader_error();
  EXPECT_EQ(second.text(), expected);
  EXPECT_EQ(export_all(second), text);
}
