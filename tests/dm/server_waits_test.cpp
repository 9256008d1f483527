// A server that does not answer, keeps writes away, or grants too little.
#include "dm/open.h"
#include "server.h"

static constexpr int BUSY = 300, ANSWER = 500;  // milliseconds
static constexpr char FIELD[] = "STRING F_ONE 5000\n";
static constexpr char CLASS[] = "/a sql_table=t\n";

// The process that serves the only session of this program, while that is silent.
static constexpr char BACKEND[] =
    "SELECT pid FROM pg_stat_activity WHERE application_name = 'test_dm' AND state LIKE 'idle%'";

static std::string first_line(const std::string& text) {
  return text.substr(0, text.find('\n'));
}

TEST_F(on_a_server, that_fell_silent_is_given_up_and_what_it_held_is_free) {
  client admin(settings, BUSY, ANSWER);
  EXPECT_EQ(admin.set_fields(FIELD), "ok");
  const std::string stopped = first_line(query(BACKEND));
  output_of("kill -STOP " + stopped);
  EXPECT_EQ(admin.set_classes(CLASS), "NOT_CONNECTED");
  expect_logged("cm", "nothing of the operation is stored");
  expect_logged("cm", "(no answer for 500 ms; entry 'answer_seconds' of section [dm] says");
  EXPECT_EQ(admin.classes(), "NOT_CONNECTED");
  admin.close();
  output_of("kill -CONT " + stopped);
  EXPECT_EQ(client(settings, 5000).set_classes(CLASS), "ok");
  EXPECT_EQ(client(settings).fields("F_ONE\n"), "");
}

// Then nobody answers whether it is at work.
TEST_F(on_a_server, that_fell_silent_as_a_whole_is_given_up) {
  client reader(settings, BUSY, ANSWER);
  const std::string all = first_line(query(BACKEND)) + " $(head -1 $PGHOST/data/postmaster.pid)";
  output_of("kill -STOP " + all);
  EXPECT_EQ(reader.fields("F_ONE\n"), "NOT_CONNECTED");
  output_of("kill -CONT " + all);
}

TEST_F(on_a_server, that_is_at_work_is_waited_for) {
  query(
      "CREATE FUNCTION slowly() RETURNS trigger LANGUAGE plpgsql AS"
      " 'BEGIN PERFORM pg_sleep(1.5); RETURN NEW; END';"
      "CREATE TRIGGER slow BEFORE INSERT ON dd_fields FOR EACH ROW EXECUTE FUNCTION slowly()");
  // Also where the server may not say so, but answers.
  static const char ROLE[] = "ALTER ROLE works_alone LOGIN CONNECTION LIMIT ";
  query("DO 'BEGIN CREATE ROLE works_alone; EXCEPTION WHEN duplicate_object THEN NULL; END'");
  const dm::settings usual = settings;
  for (const char* limit : {"-1", "1"}) {
    query(std::string(ROLE) + limit + "; GRANT ALL ON SCHEMA " + schema +
          " TO works_alone; GRANT ALL ON ALL TABLES IN SCHEMA " + schema + " TO works_alone");
    settings.dictionary = usual.dictionary + " user=works_alone";
    client admin(settings, BUSY, 1000);
    EXPECT_EQ(admin.set_fields(FIELD), "ok");
    EXPECT_EQ(admin.set_classes(CLASS), "ok") << limit << log("cm");
    EXPECT_EQ(admin.fields("F_ONE\n"), FIELD);
    query(
        "DELETE FROM dd_tables; DELETE FROM dd_classes; DELETE FROM dd_fields WHERE number = 5000");
  }
}

// What it hides from a reader would be missing in exports and backups that look whole.
TEST_F(on_a_server, row_security_that_hides_rows_fails_a_read) {
  query("DO 'BEGIN CREATE ROLE sees_less LOGIN; EXCEPTION WHEN duplicate_object THEN NULL; END'");
  query("GRANT USAGE ON SCHEMA " + schema + " TO sees_less; GRANT SELECT ON ALL TABLES IN SCHEMA " +
        schema +
        " TO sees_less; ALTER TABLE dd_fields ENABLE ROW LEVEL SECURITY;"
        "CREATE POLICY see ON dd_fields FOR SELECT USING (number > 100)");
  settings.dictionary += " user=sees_less";
  EXPECT_EQ(client(settings).fields(), "STORAGE");
  expect_logged("dm", "row security keeps rows of it from the role");
}

TEST_F(on_a_server, a_commit_that_is_not_answered_has_an_unknown_outcome) {
  client admin(settings, BUSY, ANSWER);
  query("ALTER SYSTEM SET synchronous_standby_names = none_such; SELECT pg_reload_conf()");
  wait_until("current_setting('synchronous_standby_names') = 'none_such'");
  EXPECT_EQ(admin.set_classes(CLASS), "NOT_CONNECTED");
  expect_logged("cm", "whether they are stored is UNKNOWN");
  wait_until("count(*) = 1 FROM pg_stat_activity WHERE wait_event = 'SyncRep'");  // not cancelled
  query("ALTER SYSTEM RESET synchronous_standby_names; SELECT pg_reload_conf()");
  wait_until("count(*) = 1 FROM dd_classes");
}

TEST_F(on_a_server, readers_behind_an_exclusive_lock_get_busy) {
  client opened_before(settings, BUSY, ANSWER);
  output_of("psql -qX -c 'BEGIN; LOCK TABLE " + schema + ".dd_schema, " + schema +
            ".dd_fields IN ACCESS EXCLUSIVE MODE; SELECT pg_sleep(60)' >/dev/null 2>&1 &");
  wait_until("count(*) = 1 FROM pg_locks WHERE granted AND relation = to_regclass('dd_fields')");
  EXPECT_EQ(opened_before.fields(), "BUSY");
  EXPECT_EQ(client(settings, BUSY, ANSWER).opened, "BUSY");
  EXPECT_EQ(client(settings, 3 * ANSWER, ANSWER).opened, "BUSY");
  query("SELECT pg_terminate_backend(pid) FROM pg_stat_activity WHERE query LIKE 'BEGIN; LOCK%'");
}

TEST_F(on_a_server, waiting_for_writers_counts_against_one_limit) {
  client writer(settings);
  EXPECT_EQ(writer.set_fields(FIELD), "ok");
  client second(settings, BUSY);
  EXPECT_EQ(second.set_classes(CLASS), "BUSY");
  messages_sent = 0;
  EXPECT_EQ(second.set_classes(CLASS), "BUSY");
  EXPECT_EQ(messages_sent, 2);  // to begin, and to undo that
  EXPECT_NE(last_limit.find("'lock_timeout', '1'"), std::string::npos) << last_limit;
}

TEST_F(on_a_server, rows_that_it_swallows_are_noticed_in_every_kind_of_write) {
  {
    client admin(settings);
    EXPECT_EQ(admin.set_fields("STRING F_ONE 5000\nSTRING F_TWO 5001\n"), "ok");
    EXPECT_EQ(
        admin.set_classes("/a sql_table=t\n  STRING F_ONE sql_name=c\n"
                          "  ARRAY TAV_FLD_ARGS sql_name=v\n    INT TAV_FLD_FLAGS sql_name=d\n"),
        "ok");
  }
  const std::string before = content();
  const auto sets = [](const char* fields) {
    return [=](client& admin) {
      admin.set_fields(fields);
      return admin.delete_fields("STRING F_NONE 1\n");  // makes the fields durable first
    };
  };
  const auto puts = [](const char* classes) {
    return [=](client& admin) { return admin.set_classes(classes); };
  };
  const struct {
    const char *verb, *table;
    std::function<std::string(client&)> write;
  } rows[] = {
      {"INSERT", "fields", sets("STRING F_NEW 5002\n")},
      {"UPDATE", "fields", sets("STRING F_ONE 5000 new\n")},
      {"UPDATE", "databases", sets("STRING F_ONE 5000 new\n")},
      {"DELETE", "fields",
       [](client& admin) { return admin.delete_fields("STRING F_TWO 5001\n"); }},
      {"INSERT", "classes", puts("/b sql_table=u\n")},
      {"UPDATE", "classes", puts("/a descr=new\n  STRING F_ONE\n  ARRAY TAV_FLD_ARGS\n")},
      {"INSERT", "tables", puts("/b sql_table=u\n")},
      {"DELETE", "tables", puts("/a\n  STRING F_ONE\n")},
  };
  query("CREATE FUNCTION swallow() RETURNS trigger LANGUAGE plpgsql AS 'BEGIN RETURN NULL; END'");
  for (const auto& row : rows) {
    const std::string table = std::string("dd_") + row.table;
    query(std::string("CREATE TRIGGER t BEFORE ") + row.verb + " ON " + table +
          " FOR EACH ROW EXECUTE FUNCTION swallow()");
    client admin(settings);
    EXPECT_EQ(row.write(admin), "STORAGE") << row.verb << row.table;
    admin.close();
    query("DROP TRIGGER t ON " + table);
    EXPECT_EQ(content(), before) << row.verb << row.table;
  }
  expect_logged("dm", "it did not take all changes");
}

// What a sentence tells the owner to say.
static std::string remedy_in(const std::string& log) {
  static constexpr char START[] = "say: ";
  const size_t at = log.rfind(START);
  if (at == log.npos) return "no remedy in " + log;
  const std::string rest = log.substr(at + sizeof START - 1);
  return rest.substr(0, std::min({rest.find(" (42501"), rest.find(".\n"), rest.size()}));
}

TEST_F(on_a_server, what_a_role_lacks_is_named_and_helps) {
  query(
      "DO 'BEGIN CREATE ROLE lacking LOGIN;"
      " EXCEPTION WHEN duplicate_object THEN NULL; END'");
  const dm::settings owner = settings;
  EXPECT_EQ(client(owner).set_classes(CLASS), "ok");
  settings.dictionary += " user=lacking";
  EXPECT_EQ(client(settings).opened, "STORAGE");
  expect_logged("cm", "GRANT USAGE ON SCHEMA");
  dm::problem why;
  EXPECT_FALSE(make(settings, why));
  EXPECT_EQ(why.code, TAV_ERR_STORAGE) << why.sentence;
  query(remedy_in(log("cm")));
  EXPECT_EQ(client(settings).opened, "STORAGE");
  expect_logged("cm", "(42501: permission denied for table dd_schema)");
  query("GRANT SELECT ON dd_schema, dd_databases TO lacking");
  {
    client half(settings);
    EXPECT_EQ(half.classes(), "STORAGE");
    EXPECT_EQ(half.set_classes("/b sql_table=u\n"), "WRITE_REFUSED");
  }
  query(remedy_in(log("dm").substr(0, log("dm").find("(42501"))));
  query("GRANT INSERT ON dd_classes TO lacking");
  {
    client reader(settings);
    EXPECT_EQ(reader.classes(), "{name:/a,sql_table:t}\n");
    messages_sent = 0;
    EXPECT_EQ(reader.set_classes("/b sql_table=u\n"), "WRITE_REFUSED");
    EXPECT_EQ(messages_sent, 1);  // which ends the snapshot
    EXPECT_EQ(reader.classes(), "{name:/a,sql_table:t}\n");
  }
  query(remedy_in(log("dm")));
  client writer(settings);
  EXPECT_EQ(writer.set_classes("/b sql_table=u\n"), "ok");
  query("REVOKE UPDATE ON dd_schema FROM lacking");
  EXPECT_EQ(writer.set_classes("/c sql_table=v\n"), "WRITE_REFUSED");
  EXPECT_EQ(writer.classes(), "{name:/a,sql_table:t}\n{name:/b,sql_table:u}\n");
  query(
      "GRANT UPDATE ON dd_schema TO lacking; ALTER TABLE dd_classes ENABLE ROW LEVEL SECURITY;"
      "CREATE POLICY see ON dd_classes FOR SELECT USING (true)");
  EXPECT_EQ(writer.set_classes("/a descr=new\n"), "STORAGE");
  expect_logged("dm", "it did not take all changes");
  query(
      "ALTER TABLE dd_schema ENABLE ROW LEVEL SECURITY;"
      "CREATE POLICY see ON dd_schema FOR SELECT USING (true)");
  EXPECT_EQ(writer.set_classes(CLASS), "STORAGE");  // it could not be alone in the dictionary
}
