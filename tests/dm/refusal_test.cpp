// What the error buffer of a refused operation says beside its code: where, of what kind, which
// field, which element.
#include "bench.h"

class refusals : public dictionary {
 protected:
  refusals() {
    admin.set_fields("");
    EXPECT_EQ(admin.set_fields("STRING S1 3001\n"), "ok");
    EXPECT_EQ(admin.set_classes("/a sql_table=t\n  STRING S1 sql_name=c\n"), "ok");
  }
  client admin{settings};
};

TEST_F(refusals, name_the_field_and_the_element) {
  dd_flist nameless = classes_of("/b sql_table=u\n/c sql_table=v\n");
  tavi_flist_drop(
      static_cast<tav_flist_t*>(tavi_flist_get(nameless.get(), TAV_FLD_OBJ_DESC, 1, 0, 0, nullptr)),
      TAV_FLD_NAME, 0, nullptr);
  dd_flist unnamed = fields_of("INT F1 4001\nINT F2 4002\n");
  tavi_flist_drop(
      static_cast<tav_flist_t*>(tavi_flist_get(unnamed.get(), TAV_FLD_FIELD, 1, 0, 0, nullptr)),
      TAV_FLD_FIELD_NAME, 0, nullptr);
  EXPECT_EQ(admin.op(585, 0, unnamed), "ok");  // there is none to delete
  dd_flist of_nameless = classes_of("/b sql_table=u\n  STRING S1 sql_name=c\n");
  auto* holder = static_cast<tav_flist_t*>(
      tavi_flist_get(of_nameless.get(), TAV_FLD_OBJ_DESC, 0, 0, 0, nullptr));
  auto* entry =
      static_cast<tav_flist_t*>(tavi_flist_get(holder, TAV_FLD_OBJ_ELEM, 0, 0, 0, nullptr));
  tavi_flist_drop(entry, TAV_FLD_FIELD_NAME, 0, nullptr);
  const struct {
    uint32_t opcode;
    dd_flist input;
    int32_t code;
    uint32_t field;
    int32_t rec_id;
  } rows[] = {
      {576, fields_of("INT F1 4001\nINT F2 0\n"), TAV_ERR_MISSING_FIELD, TAV_FLD_FIELD_NUM, 1},
      {576, fields_of("INT F1 4001\nINT F2 4002\n- F3 4003\n"), TAV_ERR_BAD_VALUE,
       TAV_FLD_FIELD_TYPE, 2},
      {576, fields_of("INT F1 4001\nINT S1 3001\n"), TAV_ERR_CONFLICT, TAV_FLD_FIELD_TYPE, 1},
      {576, fields_of("INT F1 4001\nINT F2 3001\n"), TAV_ERR_CONFLICT, TAV_FLD_FIELD_NUM, 1},
      {585, fields_of("INT F1 4001\nSTRING S1 3001\n"), TAV_ERR_IN_USE, TAV_FLD_FIELD_NAME, 1},
      {575, std::move(unnamed), TAV_ERR_MISSING_FIELD, TAV_FLD_FIELD_NAME, 1},
      {577, dd_flist(tav_flist_copy(nameless.get(), nullptr)), TAV_ERR_MISSING_FIELD, TAV_FLD_NAME,
       1},
      {578, std::move(nameless), TAV_ERR_MISSING_FIELD, TAV_FLD_NAME, 1},
      {578, std::move(of_nameless), TAV_ERR_MISSING_FIELD, TAV_FLD_FIELD_NAME, 0},
      {578, classes_of("/b sql_table=u\n  STRING S1 sql_name=c\n  INT NONE sql_name=d\n"),
       TAV_ERR_BAD_VALUE, TAV_FLD_FIELD_NAME, 1},
      {578, classes_of("/b sql_table=u\n/none/c\n"), TAV_ERR_BAD_VALUE, TAV_FLD_NAME, 1},
      {575, fields_of("", 2), TAV_ERR_UNKNOWN_DATABASE, TAV_FLD_POID, 0},
      {500, fields_of(""), TAV_ERR_BAD_OPCODE, 0, 0},
  };
  const std::string before = content();
  for (const auto& row : rows) {
    SCOPED_TRACE(&row - rows);
    EXPECT_NE(admin.op(row.opcode, 0, row.input), "ok");
    EXPECT_EQ(admin.last.err_code, row.code);
    EXPECT_EQ(admin.last.location, TAV_ERRLOC_DM);
    EXPECT_EQ(admin.last.err_class, TAV_ERRCLASS_REQUEST);
    EXPECT_EQ(admin.last.field, row.field) << tav_name_of_field(admin.last.field);
    EXPECT_EQ(admin.last.rec_id, row.rec_id);
    EXPECT_EQ(content(), before);
  }
}
