// A list of many classes: after 50 look-ups the rest is answered from memory.
#include "server.h"

static std::string many(int count, const std::string& attributes) {
  std::string list;
  for (int i = 0; i < count; ++i) {
    const std::string number = std::to_string(100 + i);
    list += "/m" + number + " sql_table=t" + number + attributes + "\n";
  }
  return list;
}

TEST_F(on_a_server, classes_of_a_long_list_are_as_the_list_left_them) {
  client admin(settings);
  EXPECT_EQ(admin.set_classes(many(60, "")), "ok");
  EXPECT_EQ(admin.set_classes(many(60, " descr=d") +
                              "/n sql_table=n residency_type=5\n/N location=l\n/n descr=d\n"
                              "/M159 residency_type=6\n/m159 label=x\n"),
            "ok");
  EXPECT_EQ(admin.classes("/n\n/m159\n"),
            "{name:/n,sql_table:n,descr:d,residency_type:5,location:l}\n"
            "{name:/m159,sql_table:t159,label:x,residency_type:6}\n");
  admin.classes();
  EXPECT_EQ(client(settings).set_classes("/n descr=theirs\n"), "ok");
  EXPECT_EQ(admin.set_classes(many(60, " descr=f") + "/n descr=f\n"), "CONFLICT TAV_FLD_NAME");
}

TEST_F(on_a_server, a_class_more_in_a_long_list_is_no_message_more) {
  client admin(settings);
  const auto messages = [&](int count, const char* attributes) {
    messages_sent = 0;
    EXPECT_EQ(admin.set_classes(many(count, attributes)), "ok");
    return messages_sent;
  };
  messages(260, "");
  const int few = messages(60, " descr=new");
  EXPECT_LE(messages(260, " descr=newer"), few + 60);
}
