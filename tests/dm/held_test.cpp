// What a trial found that the dictionary holds already is neither judged nor written again, as long
// as the list is the same and nobody wrote in between.
#include "bench.h"
#include "dd/values.h"

namespace {

constexpr uint32_t TRIAL = 128;
constexpr char FIELDS[] = "STRING F_A 5000 one\n";
constexpr char CLASSES[] = "/a sql_table=a_t descr=one\n  STRING F_A sql_name=c\n";
constexpr char STORED[] =
    "{name:/a,sql_table:a_t,descr:one,entries:[{name:F_A,type:5,sql_name:c}]}\n";

class held : public dictionary {
 protected:
  const dd_flist fields = fields_of(FIELDS);
  const dd_flist classes = classes_of(CLASSES);
  std::string before;

  void SetUp() override {
    client other(settings);
    ASSERT_EQ(write_all(other, classes), "ok ok");
    before = other.classes();
  }
  // Fetching ends the trial, so that others may write.
  std::string try_all(client& admin, const dd_flist& what) {
    const std::string first = admin.op(576, 0, fields);
    const std::string result = first + " " + admin.op(578, TRIAL, what);
    admin.fields("F_A\n");
    return result;
  }
  std::string write_all(client& admin, const dd_flist& what) {
    const std::string first = admin.op(576, 0, fields);
    return first + " " + admin.op(578, 0, what);
  }
};

TEST_F(held, is_not_read_again) {
  client admin(settings);
  EXPECT_EQ(try_all(admin, classes), "ok ok");
  query("UPDATE dd_classes SET definition = '{}' WHERE name = '/a'");
  query("UPDATE dd_fields SET number = 5001 WHERE name = 'F_A'");
  EXPECT_EQ(write_all(admin, classes), "ok ok");
  EXPECT_EQ(admin.op(576, 0, fields_of(FIELDS)), "CONFLICT TAV_FLD_FIELD_NUM");
  EXPECT_EQ(admin.op(578, 0, classes_of(CLASSES)), "STORAGE TAV_FLD_NAME");
}

TEST_F(held, is_judged_again_after_another_session_wrote) {
  client admin(settings);
  EXPECT_EQ(try_all(admin, classes), "ok ok");
  EXPECT_EQ(client(settings).set_classes("/a sql_table=a_t descr=two\n"), "ok");
  EXPECT_EQ(client(settings).set_fields("STRING F_A 5000 two\n"), "ok");
  EXPECT_EQ(write_all(admin, classes), "ok ok");
  EXPECT_EQ(admin.classes(), before);
  EXPECT_EQ(admin.fields("F_A\n"), FIELDS);
}

TEST_F(held, counts_for_the_very_list_only) {
  client admin(settings);
  EXPECT_EQ(try_all(admin, classes), "ok ok");
  tav_ebuf ebuf{};
  void* first = tavi_flist_get(classes.get(), TAV_FLD_OBJ_DESC, 0, 0, 0, &ebuf);
  dd_set_text(static_cast<tav_flist_t*>(first), TAV_FLD_DESCR, "two", &ebuf);
  EXPECT_EQ(write_all(admin, classes), "ok ok");
  EXPECT_EQ(admin.classes(), std::string(STORED).replace(before.find("one"), 3, "two"));
}

TEST_F(held, is_what_becomes_of_a_class_not_what_was_sent) {
  client admin(settings);
  const dd_flist other = classes_of("/a sql_table=kept descr=one\n  STRING F_A sql_name=kept\n");
  EXPECT_EQ(try_all(admin, other), "ok ok");
  query("UPDATE dd_classes SET definition = '{}' WHERE name = '/a'");
  EXPECT_EQ(write_all(admin, other), "ok ok");
}

}  // namespace
