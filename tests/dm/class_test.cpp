// 577 and 578.
#include <algorithm>

#include "bench.h"
#include "dm/class_outline.h"

class classes : public dictionary {
 protected:
  classes() {
    admin.set_fields("");
    EXPECT_EQ(admin.set_fields("STRING S1 3001\nSTRING S2 3002\nARRAY A1 3003\nARRAY A2 3004\n"
                               "ARRAY A3 3005\nSUBSTRUCT U1 3006\nBUF B1 3007\nBUF B2 3008\n"),
              "ok");
  }
  client admin{settings};
};

TEST_F(classes, come_by_folded_name_or_in_the_order_asked_for) {
  EXPECT_EQ(
      admin.set_classes(
          "/b sql_table=t1\n/B/x\n/a sql_table=t2\n/b-c sql_table=t3\n/b/x/y\n/b0 sql_table=t4\n"),
      "ok");
  const std::string a = "{name:/a,sql_table:t2}\n", b = "{name:/b,sql_table:t1}\n",
                    bx = "{name:/B/x}\n", bxy = "{name:/b/x/y}\n", b0 = "{name:/b0,sql_table:t4}\n",
                    bc = "{name:/b-c,sql_table:t3}\n";
  EXPECT_EQ(admin.classes(), a + b + bc + bx + bxy + b0);
  EXPECT_EQ(admin.classes("/b/X/*\n/none\n/none/*\n/b\xff\n/b/*\n/b/x\n"), bx + bxy + b);
  EXPECT_EQ(admin.classes("/*\n/a\n"), a + b + bc + bx + bxy + b0);
  query("UPDATE dd_classes SET definition = '{}' WHERE name = '/B/x'");
  EXPECT_EQ(admin.classes("/b/*\n"), "STORAGE TAV_FLD_NAME");
}

TEST_F(classes, come_back_as_they_were_given) {
  EXPECT_EQ(
      admin.set_classes(
          "/a sql_table=t1 sql_storage=x~y descr= seq_start=-7 read_access=Self create_access=Any "
          "residency_type=3 attrvals=v1 attrvals=v2 location=l virtual_flag=0\n"
          "  STRING S1 sql_name=c1 order=-1.50 length=60 objectclasses=o label=x\n"
          "  ARRAY A1 sql_name=t2\n    STRING S1 sql_name=c1\n    ARRAY A2 sql_name=t3\n"
          "      STRING S1 sql_name=c1\n  BUF B1 sql_name=C=c2~T=t4 sql_storage=\n"),
      "ok");
  EXPECT_EQ(
      admin.classes("/A\n"),
      "{name:/a,sql_table:t1,sql_storage:x y,descr:,seq_start:-7,read_access:Self,"
      "create_access:Any,residency_type:3,virtual_flag:0,location:l,attrvals:[v1,v2],entries:["
      "{name:S1,type:5,sql_name:c1,order:-1.50,length:60,label:x,objectclasses:[o]},"
      "{name:A1,type:9,sql_name:t2,entries:[{name:S1,type:5,sql_name:c1},"
      "{name:A2,type:9,sql_name:t3,entries:[{name:S1,type:5,sql_name:c1}]}]},"
      "{name:B1,type:6,sql_name:C=c2 T=t4}]}\n");
  const std::string longest = "1." + std::string(2045, '7');
  EXPECT_EQ(admin.set_classes("/b sql_table=t5\n  STRING S1 sql_name=c order=" + longest + "\n"),
            "ok");
  EXPECT_NE(admin.classes("/b\n").find("order:" + longest + "}"), std::string::npos);
}

TEST_F(classes, are_refused_by_rule) {
  EXPECT_EQ(admin.set_classes("/held sql_table=held_t\n  ARRAY A1 sql_name=held_a\n/held/sub\n  "
                              "ARRAY A3 sql_name=held_b\n"),
            "ok");
  const struct {
    const char *text, *result;
  } rows[] = {
      {"a sql_table=t", "BAD_VALUE TAV_FLD_NAME"},
      {"/ sql_table=t", "BAD_VALUE TAV_FLD_NAME"},
      {"/held//b", "BAD_VALUE TAV_FLD_NAME"},
      {"/held/", "BAD_VALUE TAV_FLD_NAME"},
      {"/none/b", "BAD_VALUE TAV_FLD_NAME"},
      {"/n/b\n/n sql_table=t", "BAD_VALUE TAV_FLD_NAME"},
      {"/n sql_table=t\n/N/b", "ok"},
      {"/n sql_table=t descr=\xff", "BAD_VALUE TAV_FLD_DESCR"},
      {"/n sql_table=t attrvals=\xff", "BAD_VALUE TAV_FLD_ATTRVALS"},
      {"/n sql_table=t\n  STRING NONE sql_name=c", "BAD_VALUE TAV_FLD_FIELD_NAME"},
      {"/n sql_table=t\n  INT S1 sql_name=c", "WRONG_TYPE TAV_FLD_FIELD_TYPE"},
      {"/n sql_table=t\n  - S1 sql_name=c", "MISSING_FIELD TAV_FLD_FIELD_TYPE"},
      // placement
      {"/n sql_table=t\n  SUBSTRUCT U1 sql_name=u", "BAD_VALUE TAV_FLD_FIELD_TYPE"},
      {"/held/n\n  STRING S1 sql_name=c", "BAD_VALUE TAV_FLD_FIELD_TYPE"},
      {"/held/n\n  SUBSTRUCT U1 sql_name=u create=SYSTEM", "BAD_VALUE TAV_FLD_CREATE_PERMISSION"},
      {"/n sql_table=t\n  STRING S1 sql_name=c modify=System",
       "BAD_VALUE TAV_FLD_MODIFY_PERMISSION"},
      {"/n sql_table=t\n  POID Tav_Fld_Poid sql_name=c create=System", "ok"},
      {"/n sql_table=t\n  ARRAY A1 sql_name=a\n    STRING S1 sql_name=c create=System", "ok"},
      // nesting
      {"/n sql_table=t\n  STRING S1 sql_name=c\n    STRING S2 sql_name=d",
       "BAD_VALUE TAV_FLD_OBJ_ELEM"},
      {"/n sql_table=t\n  ARRAY A1 sql_name=a\n    SUBSTRUCT U1 sql_name=u",
       "BAD_VALUE TAV_FLD_OBJ_ELEM"},
      {"/held/n\n  SUBSTRUCT U1 sql_name=u\n    ARRAY A1 sql_name=a", "BAD_VALUE TAV_FLD_OBJ_ELEM"},
      {"/n sql_table=t\n  ARRAY A1 sql_name=a\n    ARRAY A2 sql_name=b\n      ARRAY A3 sql_name=c",
       "BAD_VALUE TAV_FLD_OBJ_ELEM"},
      {"/n sql_table=t\n  STRING S1 sql_name=c\n  STRING s1 sql_name=d",
       "CONFLICT TAV_FLD_FIELD_NAME"},
      {"/n sql_table=t\n  ARRAY A1 sql_name=a\n    STRING S1 sql_name=c\n    STRING s1 sql_name=d",
       "CONFLICT TAV_FLD_FIELD_NAME"},
      // the line of classes
      {"/held/n\n  ARRAY a1 sql_name=a", "CONFLICT TAV_FLD_FIELD_NAME"},
      {"/HELD/sub/n\n  ARRAY A3 sql_name=a", "CONFLICT TAV_FLD_FIELD_NAME"},
      {"/held\n  ARRAY A1\n  ARRAY A3 sql_name=a", "CONFLICT TAV_FLD_FIELD_NAME"},
      {"/held/n\n/held/n/m\n  ARRAY A2 sql_name=a\n/held/n\n  ARRAY A2 sql_name=b",
       "CONFLICT TAV_FLD_FIELD_NAME"},
      {"/heldnot sql_table=t\n  ARRAY A1 sql_name=a", "ok"},
      {"/held/n\n  ARRAY A2 sql_name=a\n    ARRAY A1 sql_name=b", "ok"},
      // storage
      {"/n", "MISSING_FIELD TAV_FLD_SQL_TABLE"},
      {"/n sql_table=", "MISSING_FIELD TAV_FLD_SQL_TABLE"},
      {"/n sql_table=t\n  STRING S1", "MISSING_FIELD TAV_FLD_SQL_TABLE"},
      {"/n sql_table=t\n  ARRAY A1", "MISSING_FIELD TAV_FLD_SQL_TABLE"},
      {"/n sql_table=t\n  BUF B1 sql_name=C=c", "MISSING_FIELD TAV_FLD_SQL_TABLE"},
      {"/n sql_table=t\n  BUF B1 sql_name=T=b~C=c", "MISSING_FIELD TAV_FLD_SQL_TABLE"},
      {"/n sql_table=HELD_A", "CONFLICT TAV_FLD_SQL_TABLE"},
      {"/n sql_table=t\n  BUF B1 sql_name=C=c~T=T", "CONFLICT TAV_FLD_SQL_TABLE"},
      {"/n sql_table=t\n  BUF B1 sql_name=C=c~T=b\n  BUF B2 sql_name=C=d~T=b",
       "CONFLICT TAV_FLD_SQL_TABLE"},
      {"/n sql_table=t\n/m sql_table=T", "CONFLICT TAV_FLD_SQL_TABLE"},
      {"/n sql_table=t\n  STRING S1 sql_name=c\n  STRING S2 sql_name=C",
       "CONFLICT TAV_FLD_SQL_TABLE"},
      {"/n sql_table=t\n  STRING S1 sql_name=c\n  STRING S2 sql_name=d\n"
       "  ARRAY A1 sql_name=c\n    STRING S2 sql_name=c",
       "ok"},
  };
  const std::string before = content();
  for (const auto& row : rows) {
    EXPECT_EQ(admin.set_classes(row.text, 128), row.result) << row.text;
    EXPECT_EQ(content(), before) << row.text;
    EXPECT_EQ(admin.set_classes(row.text), row.result) << row.text;
    if (std::string(row.result) != "ok") {
      EXPECT_EQ(content(), before) << row.text;
    }
    query(
        "DELETE FROM dd_tables WHERE folded NOT LIKE 'held%'; DELETE FROM dd_classes WHERE folded "
        "NOT IN ('/held', '/held/sub'); UPDATE dd_databases SET counter = " +
        before.substr(10, 1));
  }
  EXPECT_NE(
      log("dm").find("Operation 578: Class '/n', field 'A1.A2.A3' is an array in an array in an "
                     "array."),
      std::string::npos);
  EXPECT_EQ(admin.set_classes("/n sql_table=t\n", 64), "BAD_ARG");
  settings.objects_writeable = false;
  EXPECT_EQ(client(settings).set_classes("/n sql_table=t\n", 128), "WRITE_REFUSED");
}

TEST_F(classes, keep_what_a_replacement_may_not_change) {
  EXPECT_EQ(
      admin.set_classes("/a sql_table=t1 descr=old label=old create_access=Any residency_type=1 "
                        "location=l attrvals=v\n"
                        "  STRING S1 sql_name=c1 sql_storage=s descr=old attribute=x rdn_piece=1\n"
                        "  STRING S2 sql_name=c2\n"
                        "  ARRAY A1 sql_name=t2\n    STRING S1 sql_name=c3 multivalued=1\n    "
                        "STRING S2 sql_name=c4\n"
                        "  BUF B1 sql_name=C=b~T=t3\n"),
      "ok");
  EXPECT_EQ(admin.set_classes("/A sql_table=new sql_storage=added descr=new residency_type=2\n"
                              "  ARRAY a1 sql_name=new\n    STRING S2 sql_name=new\n    STRING S1\n"
                              "  STRING s1 sql_name=new sql_storage=new order=2\n"
                              "  ARRAY A2 sql_name=t3\n"),
            "ok");
  EXPECT_EQ(admin.classes(),
            "{name:/a,sql_table:t1,sql_storage:added,descr:new,create_access:Any,residency_type:2,"
            "location:l,attrvals:[v],entries:[{name:A1,type:9,sql_name:t2,entries:["
            "{name:S2,type:5,sql_name:c4},{name:S1,type:5,sql_name:c3,multivalued:1}]},"
            "{name:S1,type:5,sql_name:c1,sql_storage:s,order:2,attribute:x,rdn_piece:1},"
            "{name:A2,type:9,sql_name:t3}]}\n");
  EXPECT_NE(log("dm").find("'/A' is replaced without its field 'S2'."), std::string::npos);
  EXPECT_NE(log("dm").find("without its field 'B1'."), std::string::npos);
  EXPECT_EQ(log("dm").find("without its field 'A1"), std::string::npos);
  const std::string before = content();
  EXPECT_EQ(admin.set_classes("/a descr=new\n  ARRAY A1\n    STRING S2\n    STRING S1\n  STRING S1 "
                              "order=2\n  ARRAY A2\n"),
            "ok");
  EXPECT_EQ(content(), before);  // nothing changed, so nothing was written
}

// A trial judges the second against the first, too.
TEST_F(classes, may_stand_twice_in_a_list) {
  const char* list =
      "/a sql_table=t1\n  ARRAY A1 sql_name=t2\n/a\n  ARRAY A1\n/b sql_table=b_t\n/a\n/b\n  ARRAY "
      "A1 sql_name=t2\n";
  EXPECT_EQ(admin.set_classes(list, 128), "ok");
  EXPECT_EQ(admin.classes(), "");
  EXPECT_EQ(admin.set_classes(list), "ok");
  EXPECT_EQ(
      admin.classes(),
      "{name:/a,sql_table:t1}\n{name:/b,sql_table:b_t,entries:[{name:A1,type:9,sql_name:t2}]}\n");
}

TEST_F(classes, below_another_need_no_table) {
  EXPECT_EQ(admin.set_classes("/a sql_table=t1\n/a/b sql_table=t1\n"), "ok");
  EXPECT_EQ(admin.classes(), "{name:/a,sql_table:t1}\n{name:/a/b}\n");
  const std::string note = "Subclass '/a/b' needs no table: its table 't1' is not stored.",
                    once = log("dm");
  EXPECT_NE(once.find(note), std::string::npos);
  const dd_flist again = classes_of("/a sql_table=t1\n/a/b sql_table=t1\n");
  EXPECT_EQ(admin.op(578, 128, again), "ok");
  EXPECT_EQ(admin.op(578, 0, again), "ok");  // known from the trial
  EXPECT_NE(log("dm").find(note, once.size()), std::string::npos);
}

TEST(outlines, of_arrays_where_none_belong_are_damage) {
  for (const char* definition : {R"({"entries":[[]]})", R"({"attrvals":[{"attrvals":[]}]})"}) {
    dm::problem why;
    EXPECT_EQ(dm::outline_reader().read({1, "/a", "/a", 0, definition}, why), nullptr);
  }
}

TEST_F(classes, many_at_once_are_judged_as_one_by_one) {
  std::string many;
  for (int i = 0; i < 250; ++i) {
    const std::string n = std::to_string(i);
    many += "/m" + n + " sql_table=m" + n + "\n  STRING S1 sql_name=c\n";
  }
  EXPECT_EQ(admin.set_classes("/held sql_table=held_t\n"), "ok");
  const std::string before = content();
  EXPECT_EQ(admin.set_classes(many + "/n sql_table=HELD_T\n"), "CONFLICT TAV_FLD_SQL_TABLE");
  EXPECT_EQ(admin.set_classes(many + "/n sql_table=n\n  STRING NONE sql_name=c\n"),
            "BAD_VALUE TAV_FLD_FIELD_NAME");
  EXPECT_EQ(admin.set_classes(many + "/none/n\n"), "BAD_VALUE TAV_FLD_NAME");
  EXPECT_EQ(content(), before);
  EXPECT_EQ(admin.set_classes(many + "/held/n\n"), "ok");
  EXPECT_EQ(admin.classes("/m249\n/HELD/*\n"),
            "{name:/m249,sql_table:m249,entries:[{name:S1,type:5,sql_name:c}]}\n{name:/"
            "held,sql_table:held_t}\n{name:/held/n}\n");
}

TEST_F(classes, many_are_replaced_in_any_order) {
  std::string first, again;
  for (int i = 0; i < 600; ++i) {
    const std::string name = std::to_string(1000 + i * 7 % 600);
    first += "/m" + name + " sql_table=t" + name + "\n";
    again += "/M" + name + " descr=new\n";
  }
  EXPECT_EQ(admin.set_classes(first), "ok");
  EXPECT_EQ(admin.set_classes(again + "/m1000/s\n/m1001 descr=last\n/n sql_table=u\n"), "ok");
  const std::string all = admin.classes();
  EXPECT_EQ(std::count(all.begin(), all.end(), '\n'), 602);
  EXPECT_EQ(all.substr(0, 101),
            "{name:/m1000,sql_table:t1000,descr:new}\n{name:/m1000/s}\n"
            "{name:/m1001,sql_table:t1001,descr:last}\n{nam");
  EXPECT_EQ(query("SELECT count(*) FROM dd_tables"), "601\n");
}
