// The check counts what it looks at, for the line that shows on a terminal.
#include <sstream>

#include "bench.h"
#include "dict/check/check.h"
#include "dm/open.h"

using check_progress = dictionary;

TEST_F(check_progress, counts_every_class) {
  client admin(settings);
  EXPECT_EQ(admin.set_classes("/a sql_table=t1\n/b sql_table=t2\n/b/c\n"), "ok");
  dm::problem why;
  const dm::store_owner store = dm::open_dictionary(settings, {}, why);
  ASSERT_TRUE(store->calls->begin(store.get(), false, why));
  dm::database_row database{};
  auto note = [&](const dm::database_row& row) { return database = row, true; };
  ASSERT_TRUE(store->calls->databases(store.get(), dm::visit<dm::database_row>(note), why));
  std::ostringstream told;
  dict::checker check(*store, told);
  check.shown.due = {};  // drawn at the first step, and a tenth of a second later at the earliest
  testing::internal::CaptureStderr();
  EXPECT_TRUE(dict::check_classes(check, database));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "\r\033[Kreading classes and tables 1");
  EXPECT_STREQ(check.shown.what, "checking classes");
  EXPECT_EQ(check.shown.total, 3u);
  EXPECT_EQ(check.shown.done, 3u);
  EXPECT_EQ(told.str(), "");
}
