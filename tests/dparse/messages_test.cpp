#include "dparse/read/messages.h"

#include <gtest/gtest.h>

#include "dparse/read/reader.h"
#include "language.h"

// The id of the message that stands, and those of the logged ones.
static std::string ids() {
  const auto id = [](dparse::message message) {
    return message == dparse::message::NONE ? std::string("none") : dparse::row_of(message).id;
  };
  std::string all = id(dparse::standing_message()) + ":";
  for (const dparse::message logged : dparse::logged_messages()) all.append(" ").append(id(logged));
  return all;
}

TEST(Messages, StandAndAreLogged) {
  const std::string word(2047, 'w');
  const std::pair<std::string, std::string> cases[] = {
      {"STRING F { LABEL = \"x\"; }", "unknown-field-attribute: unknown-field-attribute"},
      {"INT A { }", "none:"},
      {"STRING F { ID = \"5\"; }", "id-expected: id-expected id-not-read"},
      {"%s", "invalid-token:"},
      {"STRING F { DESCR = \"x\n",
       "string-not-closed: quoted-string-expected field-attribute-not-read"},
      {"INT " + word + " ;", "word-too-long: field-brace-expected"},
      {"INT " + word + " { }", "word-too-long:"},
      {"STRING F { \"\" }", "none: unknown-field-attribute"},  // the text that stands is empty
      {"INT F { ID = 1; } INT F { ID = 2; }",
       "duplicate-field-ids: duplicate-field-ids field-id-differs"},
      {"STORABLE CLASS /a { } STORABLE CLASS /A { }",
       "duplicate-class: duplicate-class duplicate-interface interface-not-read"},
      {"STORABLE CLASS /a { ARRAY L { INT F { LENGTH = -1",
       "invalid-length: invalid-length member-not-read member-not-read member-not-read "
       "interface-not-read"},
      {"STORABLE CLASS /a IMPLEMENTATION TESSEL7 { INT F { x",
       "unknown-storage-member: unknown-storage-member unknown-class-member "
       "implementation-not-read"},
      {"STORABLE CLASS /a IMPLEMENTATION LDAPV3 { INT F { OBJECTCLASS=\"a\"; OBJECTCLASS=\"b\";",
       "several-objectclasses: several-objectclasses unknown-storage-member unknown-class-member "
       "implementation-not-read"},
  };
  for (const auto& [text, expected] : cases) {
    lists().read(text);
    EXPECT_EQ(ids(), expected) << text;
  }
  lists().read("");
  dparseSetErrMsg("a text from elsewhere");
  EXPECT_EQ(ids(), "none:");
  lists().read(";");
  dparse_errmsg[0] = '\0';
  EXPECT_EQ(ids(), "none:");
  take_log();
}
