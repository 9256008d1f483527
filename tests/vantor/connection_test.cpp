#include <gtest/gtest.h>

#include "dd/owners.h"
#include "in_child.h"
#include "manager_double.h"

TEST(Connection, PassesOperationsOn) {
  the_manager = {};
  tav_ebuf ebuf{};
  tcm_context_t* context = nullptr;
  uint64_t database = 0;
  tcm_connect(&context, &database, &ebuf);
  dd_flist input(tav_flist_create(&ebuf));
  tav_flist_t* output = nullptr;
  tcm_op(context, TCM_OP_SDK_SET_OBJ_SPECS, TCM_OPFLG_TRIAL, input.get(), &output, &ebuf);
  const dd_flist owned(output);
  EXPECT_NE(output, nullptr);
  EXPECT_EQ(database, 1u);
  EXPECT_EQ(ebuf.err_code, TAV_ERR_NONE);
  ebuf.err_code = TAV_ERR_BUSY;
  tcm_op(context, TCM_OP_SDK_GET_FLD_SPECS, 0, input.get(), &output, &ebuf);
  EXPECT_EQ(output, nullptr);
  tcm_context_close(context, 0, &ebuf);  // also after an error, which stays
  EXPECT_EQ(ebuf.err_code, TAV_ERR_BUSY);
  EXPECT_EQ(the_manager.calls, "connect op 578 128 close ");
}

TEST(Connection, SaysThatItIsNotOpen) {
  const std::string log = in_child([] {
    the_manager.connect_error = TAV_ERR_STORAGE;
    tav_ebuf ebuf{};
    tcm_context_t* context = reinterpret_cast<tcm_context_t*>(&ebuf);
    uint64_t database = 0;
    tcm_connect(&context, &database, &ebuf);
    std::string text = std::to_string(ebuf.location) + " " + std::to_string(ebuf.err_code) + "\n";
    ebuf = {};
    tav_flist_t* output = nullptr;
    tcm_op(context, TCM_OP_SDK_GET_FLD_SPECS, 0, nullptr, &output, &ebuf);
    text += std::to_string(ebuf.location) + " " + std::to_string(ebuf.err_code) + "\n";
    return text + read_file("cm.tavlog");
  });
  EXPECT_EQ(log.substr(0, 8), "5 9\n3 8\n");
  EXPECT_NE(log.find("tav.conf has no usable userid"), std::string::npos) << log;
}
