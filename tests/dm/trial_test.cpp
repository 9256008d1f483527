// The provisional 576: what a sequence of operations gives, and what is stored afterwards.
#include <sys/stat.h>
#include <unistd.h>

#include <sstream>

#include "bench.h"

static constexpr char F[] = "STRING F_NEW 5000\nINT F_HELD 16!\n";
static constexpr char F_GOOD[] = "STRING F_NEW 5000\n";
static constexpr char F_BAD[] = "STRING F_NEW 5000\nSTRING F_TAKEN 16\n";

static std::string carry_out(client& admin, const std::string& step) {
  if (step == "576") return admin.set_fields(F_GOOD);
  if (step == "576bad") return admin.set_fields(F_BAD);
  if (step == "576marked") return admin.set_fields(F);
  if (step == "576other") return admin.set_fields("STRING F_OTHER 5001\n");
  if (step == "578trial")
    return admin.set_classes("/t sql_table=t_t\n  STRING F_NEW sql_name=c\n", 128);
  if (step == "578trialbad") return admin.set_classes("/t\n", 128);
  if (step == "578") return admin.set_classes("/t sql_table=t_t\n  STRING F_NEW sql_name=c\n");
  if (step == "585") return admin.delete_fields(F_GOOD);
  if (step == "585bad") return admin.delete_fields(F_BAD);
  if (step == "585case") return admin.delete_fields("STRING f_new 5000\n");
  if (step == "585other") return admin.delete_fields("STRING F_OTHER 5001\n");
  if (step == "575") {
    const std::string fields = admin.fields("F_NEW\n");
    return fields == F_GOOD ? "found" : fields == "" ? "none" : fields;
  }
  if (step == "999") return admin.op(999, 0, fields_of(""));
  return admin.close();
}

static std::string results_of(client& admin, const std::string& steps) {
  std::string results;
  std::istringstream names(steps);
  for (std::string step; names >> step;) {
    results += (results.empty() ? "" : " ") + carry_out(admin, step);
  }
  return results;
}

struct trial_case {
  const char *steps, *results;
  bool stored;
  bool fields_writeable = true;
};

static const trial_case TRIALS[] = {
    {"576 close", "ok ok", true},
    {"576 575", "ok found", true},
    {"576 578", "ok ok", true},
    {"576 999", "ok BAD_OPCODE", true},
    {"576 576other close", "ok ok ok", true},
    {"576 585", "ok ok", false},
    {"576 585case", "ok ok", false},
    {"576 585other", "ok ok", true},
    {"576 578trial 585", "ok ok ok", false},
    {"576 578trialbad 585", "ok MISSING_FIELD TAV_FLD_SQL_TABLE ok", false},
    {"576 578trial close", "ok ok ok", false},
    {"576 578trial 575", "ok ok none", false},
    {"576 578trial 576 close", "ok ok ok ok", true},
    {"576 578trial 585 576 578", "ok ok ok ok ok", true},
    {"576 578trial 578trial 585", "ok ok BAD_VALUE TAV_FLD_FIELD_NAME ok", false},
    {"576 585 576 585", "ok ok ok ok", false},
    {"576bad 585bad", "CONFLICT TAV_FLD_FIELD_NUM ok", false},
    {"576bad 576 585", "CONFLICT TAV_FLD_FIELD_NUM ok ok", false},
    {"576bad close", "CONFLICT TAV_FLD_FIELD_NUM ok", false},
    {"576bad 578trial 585bad", "CONFLICT TAV_FLD_FIELD_NUM BAD_VALUE TAV_FLD_FIELD_NAME ok", false},
    {"576marked 585", "CONFLICT TAV_FLD_FIELD_NUM ok", false},
    {"576 578trial 585", "WRITE_REFUSED BAD_VALUE TAV_FLD_FIELD_NAME ok", false, false},
    {"576 585", "WRITE_REFUSED ok", false, false},
    {"576 576", "WRITE_REFUSED WRITE_REFUSED", false, false},
};

class trial : public dictionary {};

TEST_F(trial, sequences_of_operations) {
  for (const trial_case& row : TRIALS) {
    SCOPED_TRACE(row.steps);
    const std::string before = content();
    settings.fields_writeable = row.fields_writeable;
    {
      client admin(settings);
      EXPECT_EQ(results_of(admin, row.steps), row.results);
    }
    EXPECT_EQ(client(settings).fields("F_NEW\n"), row.stored ? F_GOOD : "");
    const bool deletes_at_last =
        std::string(row.steps) == "576 585 576 585" || std::string(row.steps) == "576bad 576 585";
    if (!row.stored && !deletes_at_last) {
      EXPECT_EQ(content(), before);
    }
    query(
        "DELETE FROM dd_tables; DELETE FROM dd_classes; DELETE FROM dd_fields WHERE number >= "
        "5000");
  }
}

// Who may only read tries as well; what would be stored is refused, when it is known to be meant.
static const trial_case READER_TRIALS[] = {
    {"576 578trial 585", "ok ok ok", false},
    {"576 585", "ok ok", false},
    {"578trial 578trial", "BAD_VALUE TAV_FLD_FIELD_NAME BAD_VALUE TAV_FLD_FIELD_NAME", false},
    {"576 578trialbad 585", "ok MISSING_FIELD TAV_FLD_SQL_TABLE ok", false},
    {"576bad 585bad", "CONFLICT TAV_FLD_FIELD_NUM ok", false},
    {"576bad close", "CONFLICT TAV_FLD_FIELD_NUM ok", false},
    {"576 close", "ok WRITE_REFUSED", false},
    {"576 575", "ok WRITE_REFUSED", false},
    {"576 578", "ok WRITE_REFUSED", false},
    {"576 578trial 578 585", "ok ok WRITE_REFUSED ok", false},
    {"576 578trial 585 576 close", "ok ok ok WRITE_REFUSED ok", false},
    {"578 576 close", "WRITE_REFUSED ok WRITE_REFUSED", false},
};

TEST_F(trial, of_a_reader_works_on_a_snapshot_and_waits_for_nobody) {
  const uid_t owner = geteuid();
  if (!on_server() && owner != 0) GTEST_SKIP() << "only root can become somebody who may not write";
  const std::string before = content();
  dm::settings reading = settings;
  chmod(path.c_str(), 0644);
  chmod(folder.c_str(), 0755);
  if (on_server()) {
    query(
        "DO 'BEGIN CREATE ROLE only_reads LOGIN; EXCEPTION WHEN duplicate_object THEN NULL; END'");
    query("GRANT USAGE ON SCHEMA " + schema +
          " TO only_reads; GRANT SELECT ON ALL TABLES IN SCHEMA " + schema + " TO only_reads");
    reading.dictionary += " user=only_reads";
  }
  for (const trial_case& row : READER_TRIALS) {
    SCOPED_TRACE(row.steps);
    // A writer holds the dictionary meanwhile.
    client writer(settings);
    EXPECT_EQ(writer.set_fields("STRING F_OTHER 5001\n"), "ok");
    if (!on_server()) {
      ASSERT_EQ(seteuid(65534), 0);
    }
    {
      client reader(reading);
      EXPECT_EQ(results_of(reader, row.steps), row.results);
    }
    EXPECT_EQ(seteuid(owner), 0);
    EXPECT_EQ(writer.delete_fields("STRING F_OTHER 5001\n"), "ok");
    EXPECT_EQ(content(), before);
  }
}

TEST_F(trial, own_changes_are_no_conflict) {
  client one(settings), two(settings);
  EXPECT_EQ(one.set_fields("STRING F_A 5000 old\nSTRING F_B 5001 old\n"), "ok");
  EXPECT_EQ(one.set_classes("/a sql_table=a_t\n/b sql_table=b_t\n"), "ok");
  one.fields(), one.classes(), two.fields(), two.classes();
  EXPECT_EQ(two.set_fields("STRING F_A 5000 two\n"), "ok");
  EXPECT_EQ(two.set_fields("STRING F_A 5000 again\n"), "ok");  // its own
  EXPECT_EQ(two.set_classes("/a descr=two\n/new sql_table=n_t\n"), "ok");
  EXPECT_EQ(two.set_classes("/a descr=again\n/a descr=twice\n"), "ok");
  EXPECT_EQ(one.set_fields("STRING F_A 5000 one\n"), "CONFLICT TAV_FLD_FIELD_NAME");
  EXPECT_EQ(one.set_fields("STRING F_B 5001 one\nSTRING F_A 5000\n"), "ok");  // changes F_B only
  EXPECT_EQ(one.delete_fields("STRING F_A 5000\n"), "CONFLICT TAV_FLD_FIELD_NAME");
  EXPECT_EQ(one.set_classes("/a descr=one\n"), "CONFLICT TAV_FLD_NAME");
  EXPECT_EQ(one.set_classes("/new sql_table=n_t\n"), "CONFLICT TAV_FLD_NAME");
  EXPECT_EQ(one.set_classes("/b descr=one\n"), "ok");
  EXPECT_EQ(one.classes(),
            "{name:/a,sql_table:a_t,descr:twice}\n"
            "{name:/b,sql_table:b_t,descr:one}\n{name:/new,sql_table:n_t}\n");
  EXPECT_EQ(one.set_classes("/a descr=one\n"), "ok");  // has seen it now
}
