// 575, 576 and 585.
#include "bench.h"

class fields : public dictionary {
 protected:
  // The session's first 576 is provisional; these tests are about the ordinary ones.
  fields() {
    admin.set_fields("");
    EXPECT_EQ(admin.set_fields("STRING F_TEXT 3000 old\nINT F_INT 2999\n"), "ok");
  }
  client admin{settings};
};

TEST_F(fields, come_by_number_or_in_the_order_asked_for) {
  const std::string all = admin.fields();
  EXPECT_EQ(all.substr(0, 60), "POID TAV_FLD_POID 16 Object id: the target of an operation.\n");
  EXPECT_NE(all.find("TIMESTAMP TAV_FLD_MOD_T 19 "), std::string::npos);
  EXPECT_EQ(all.substr(all.find("INT F_INT")), "INT F_INT 2999\nSTRING F_TEXT 3000 old\n");
  EXPECT_EQ(admin.fields("f_text\nNONE\nF_INT\nF_TEXT\n"),
            "STRING F_TEXT 3000 old\nINT F_INT 2999\n");
  EXPECT_EQ(admin.fields("", 2), "UNKNOWN_DATABASE TAV_FLD_POID");
  EXPECT_EQ(admin.op(575, 0, dd_flist(tav_flist_create(nullptr))), "MISSING_FIELD TAV_FLD_POID");
}

TEST_F(fields, keep_their_first_spelling_and_take_a_new_description) {
  EXPECT_EQ(admin.set_fields(
                "STRING f_Text 3000 new\nINT F_INT 2999! \nTIMESTAMP TAV_FLD_MOD_T 19 mine\n"),
            "ok");
  EXPECT_EQ(admin.fields("F_TEXT\nF_INT\nTAV_FLD_MOD_T\n"),
            "STRING F_TEXT 3000 new\nINT F_INT 2999\nTIMESTAMP TAV_FLD_MOD_T 19 mine\n");
  EXPECT_EQ(
      admin.set_fields("STRING F_TWICE 3001 one\nSTRING f_twice 3001\nSTRING F_TWICE 3001 two\n"
                       "STRING F_TEXT 3000\nSTRING f_text 3000 newest\n"),
      "ok");
  EXPECT_EQ(admin.fields("F_TWICE\nF_TEXT\n"),
            "STRING F_TWICE 3001 two\nSTRING F_TEXT 3000 newest\n");
}

TEST_F(fields, are_refused_all_or_none) {
  const std::string longest(2046, 'x');
  const struct {
    std::string field, result;
  } rows[] = {
      {"STRING F_TEXT 3001", "CONFLICT TAV_FLD_FIELD_NUM"},
      {"INT F_TEXT 3000", "CONFLICT TAV_FLD_FIELD_TYPE"},
      {"STRING F_NEW 2999", "CONFLICT TAV_FLD_FIELD_NUM"},
      {"STRING F_NEW 4001\nINT F_OTHER 4001", "CONFLICT TAV_FLD_FIELD_NUM"},
      {"STRING F_NEW 4001\nSTRING f_new 4002", "CONFLICT TAV_FLD_FIELD_NUM"},
      {"STRING F_NEW 0", "MISSING_FIELD TAV_FLD_FIELD_NUM"},
      {"STRING F_NEW -1", "BAD_VALUE TAV_FLD_FIELD_NUM"},
      {"STRING F_NEW 16777216", "BAD_VALUE TAV_FLD_FIELD_NUM"},
      {"UNUSED F_NEW 4001", "BAD_VALUE TAV_FLD_FIELD_TYPE"},
      {"UINT F_NEW 4001", "BAD_VALUE TAV_FLD_FIELD_TYPE"},
      {"STRING a{b 4001", "BAD_VALUE TAV_FLD_FIELD_NAME"},
      {"STRING #a 4001", "BAD_VALUE TAV_FLD_FIELD_NAME"},
      {"STRING \"a 4001", "BAD_VALUE TAV_FLD_FIELD_NAME"},
      {"STRING a\xc3 4001", "BAD_VALUE TAV_FLD_FIELD_NAME"},
      {"STRING Serializable 4001", "BAD_VALUE TAV_FLD_FIELD_NAME"},
      {"STRING F_NEW 4001 \xed\xa0\x80", "BAD_VALUE TAV_FLD_DESCR"},
      {"STRING F_NEW 4001 \xf5\x80\x80\x80", "BAD_VALUE TAV_FLD_DESCR"},
      {"STRING F_NEW 4001 \xc0\x80", "BAD_VALUE TAV_FLD_DESCR"},
      {"STRING F_NEW 4001 \xf0\x9f\x98", "BAD_VALUE TAV_FLD_DESCR"},
      {"STRING F_NEW 4001 " + longest + "xx", "BAD_VALUE TAV_FLD_DESCR"},
      {"STRING F_NEW 4001 " + longest + "\t", "BAD_VALUE TAV_FLD_DESCR"},
  };
  const std::string before = content();
  for (const auto& row : rows) {
    EXPECT_EQ(admin.set_fields("INT F_FIRST 4000\n" + row.field + "\n"), row.result) << row.field;
  }
  EXPECT_EQ(content(), before);
  EXPECT_NE(
      log("dm").find("Operation 576: Field 'F_NEW' cannot have the number 2999: another field "
                     "has it."),
      std::string::npos);
  EXPECT_EQ(admin.set_fields("STRING F_MOST 16777215 " + longest + "x\nEBUF #\xc3\xa9 1\n"),
            "BAD_VALUE TAV_FLD_FIELD_NAME");
  EXPECT_EQ(admin.set_fields("STRING F_MOST 16777215 " + longest +
                             "x\nEBUF \xc3\xa9\xf0\x9f\x98\x80#\" 2001 \xe2\x82\xac\"\n"),
            "ok");
  settings.fields_writeable = false;
  EXPECT_EQ(client(settings).set_fields("STRING F_TEXT 3000\n"), "WRITE_REFUSED");
}

TEST_F(fields, many_at_once_are_judged_as_one_by_one) {
  std::string many;
  for (int i = 0; i < 300; ++i) {
    const std::string number = std::to_string(4000 + i);
    many += "STRING F_" + number + " " + number + "\n";
  }
  const std::string before = content();
  EXPECT_EQ(admin.set_fields(many + "STRING F_NEW 2999\n"), "CONFLICT TAV_FLD_FIELD_NUM");
  EXPECT_EQ(admin.set_fields(many + "INT f_text 3000\n"), "CONFLICT TAV_FLD_FIELD_TYPE");
  EXPECT_EQ(content(), before);
  EXPECT_EQ(admin.set_fields(many + "STRING f_text 3000 new\n"), "ok");
  EXPECT_EQ(admin.set_fields(many), "ok");
  EXPECT_EQ(admin.fields("F_TEXT\nF_4299\n"), "STRING F_TEXT 3000 new\nSTRING F_4299 4299\n");
}

TEST_F(fields, are_deleted_when_nothing_needs_them) {
  EXPECT_EQ(admin.set_classes("/a sql_table=a_t\n  INT F_INT sql_name=c\n"), "ok");
  const std::string before = content();
  EXPECT_EQ(admin.delete_fields("STRING F_TEXT 3000\nINT F_INT 2999\n"),
            "IN_USE TAV_FLD_FIELD_NAME");
  EXPECT_EQ(admin.delete_fields("STRING F_TEXT 3000\nPOID TAV_FLD_POID 16\n"),
            "IN_USE TAV_FLD_FIELD_NAME");
  settings.fields_writeable = false;
  EXPECT_EQ(client(settings).delete_fields("STRING F_TEXT 3000\n"), "WRITE_REFUSED");
  EXPECT_EQ(client(settings).delete_fields("INT F_TEXT 3000\nSTRING F_TEXT 3001\n- F_TEXT 3000\n"),
            "ok");
  EXPECT_EQ(content(), before);
  EXPECT_NE(log("dm").find("Field 'F_INT' cannot be deleted: class '/a' uses it."),
            std::string::npos);
  EXPECT_EQ(admin.delete_fields("STRING f_text 3000\nSTRING NONE 7\n"), "ok");
  EXPECT_EQ(admin.fields("F_TEXT\nF_INT\n"), "INT F_INT 2999\n");
}
