// A dictionary of its own for each test, sessions with it, and lists as text. It is a file, or,
// beside scripts/with-postgres, a schema on that server.
//
// Fields, one a line:      STRING NAME 100 A description
// (number 0: not given; "!" behind the number: marked as held by the server already).
// Classes and entries, members indented by two more:
//   /a sql_table=a_t
//     STRING NAME sql_name=c1 order=1.50
// with the attributes' keys of the stored definition; "~" in a value stands for a blank.
#ifndef TESTS_DM_BENCH_H
#define TESTS_DM_BENCH_H

#include <gtest/gtest.h>

#include <string>

#include "dd/owners.h"
#include "dm/data_manager.h"
#include "dm/settings.h"
#include "dm/store.h"

dd_flist fields_of(const std::string& text, uint64_t database = 1);
dd_flist classes_of(const std::string& text, uint64_t database = 1);
std::string text_of_fields(const tav_flist_t* list);
std::string text_of_classes(const tav_flist_t* list);

bool on_server();
// Makes the dictionary that the settings name, with database 1.
bool make(const dm::settings& settings, dm::problem& why);
// What a shell command prints. It must succeed where its status is not asked for.
std::string output_of(const std::string& command, int* status = nullptr);

class client {
 public:
  explicit client(const dm::settings& settings, int busy_milliseconds = 50,
                  int answer_milliseconds = 0);
  ~client();
  client(const client&) = delete;
  client& operator=(const client&) = delete;

  // "ok", or the error's code and, where one is concerned, the field ("CONFLICT
  // TAV_FLD_FIELD_NUM").
  std::string set_fields(const std::string& text, uint64_t database = 1);
  std::string delete_fields(const std::string& text);
  std::string set_classes(const std::string& text, uint32_t flags = 0);
  std::string op(uint32_t opcode, uint32_t flags, const dd_flist& input);
  // The answer as text, or the error. Names, one a line; none asks for all.
  std::string fields(const std::string& names = "", uint64_t database = 1);
  std::string classes(const std::string& names = "");
  std::string close();
  // How the connection failed, "ok" when it did not.
  std::string opened;
  tav_ebuf last{};  // of the last operation

 private:
  tav_dm_session* session_ = nullptr;
  dd_flist output_;
};

class dictionary : public testing::Test {
 protected:
  dictionary();
  ~dictionary() override;
  // Everything that the dictionary holds, as SQL would print it.
  std::string content() const;
  // Runs SQL text; gives the rows, columns divided by "|".
  std::string query(const std::string& text) const;
  // What the tavlogs ("dm", "cm") got since the test began.
  std::string log(const std::string& component) const;

  std::string folder;
  std::string path;
  std::string schema;
  dm::settings settings;
};

#endif
