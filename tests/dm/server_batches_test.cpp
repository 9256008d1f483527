// Changes of many rows, which the server takes in batches while the next is collected.
#include "server.h"

static constexpr int MANY = 1200;  // of 2 KB each: the last of them are in a third batch

static std::string number_text(int number) {
  return std::to_string(5000 + number);
}

static std::string many_fields() {
  std::string fields;
  for (int i = 0; i < MANY; ++i) {
    fields +=
        "STRING F_" + number_text(i) + " " + number_text(i) + " " + std::string(2000, 'x') + "\n";
  }
  return fields;
}

// The operation that follows the first makes its fields durable.
static std::string write(client& admin, const std::string& fields) {
  admin.set_fields(fields);
  return admin.delete_fields("STRING F_NONE 1\n");
}

TEST_F(on_a_server, a_batch_that_fails_on_its_way_leaves_nothing) {
  static constexpr char LOSE[] = "PERFORM pg_terminate_backend(pg_backend_pid())";
  const struct {
    int number;  // of the field at which it happens
    const char *event, *result, *component, *sentence;
  } rows[] = {
      {0, "RETURN NULL", "STORAGE", "dm", "it did not take all changes"},
      {700, "RETURN NULL", "STORAGE", "dm", "it did not take all changes"},
      {MANY - 1, "RETURN NULL", "STORAGE", "dm", "it did not take all changes"},
      {1, "NEW.number = 5000", "STORAGE", "dm", "breaks its own rules"},
      {0, LOSE, "NOT_CONNECTED", "cm", "the connection is lost, and nothing"},
      {700, LOSE, "NOT_CONNECTED", "cm", "the connection is lost, and nothing"},
  };
  const std::string before = content();
  for (const auto& row : rows) {
    const std::string place = number_text(row.number) + row.event;
    query(
        "CREATE FUNCTION happen() RETURNS trigger LANGUAGE plpgsql AS $$BEGIN"
        " IF NEW.number = " +
        number_text(row.number) + " THEN " + row.event +
        "; END IF; RETURN NEW; END$$; CREATE TRIGGER t BEFORE INSERT ON dd_fields"
        " FOR EACH ROW EXECUTE FUNCTION happen()");
    client admin(settings);
    EXPECT_EQ(write(admin, many_fields()), row.result) << place;
    expect_logged(row.component, row.sentence);
    query("DROP FUNCTION happen() CASCADE");
    EXPECT_TRUE(content() == before) << place;
  }
  client admin(settings);
  EXPECT_EQ(write(admin, many_fields()), "ok");
  EXPECT_EQ(query("SELECT count(*) FROM dd_fields WHERE length(descr) = 2000"), "1200\n");
}

static std::string many_classes(const std::string& stem) {
  std::string classes;
  for (int i = 0; i < 600; ++i) {
    const std::string name = stem + std::to_string(i);
    classes += "/" + name + " sql_table=" + name + " descr=" + std::string(2000, 'x') + "\n";
  }
  return classes;
}

TEST_F(on_a_server, a_refusal_while_a_batch_is_on_its_way_ends_the_transaction) {
  query(
      "CREATE FUNCTION wait() RETURNS trigger LANGUAGE plpgsql AS"
      " 'BEGIN PERFORM pg_sleep(0.2); RETURN NULL; END';"
      " CREATE TRIGGER t BEFORE INSERT ON dd_classes EXECUTE FUNCTION wait()");
  client admin(settings);
  EXPECT_EQ(admin.set_classes(many_classes("a") + "/none/b sql_table=t\n"),
            "BAD_VALUE TAV_FLD_NAME");
  EXPECT_EQ(client(settings).set_classes("/c sql_table=c\n"), "ok");
  EXPECT_EQ(admin.set_classes("/d sql_table=d\n"), "ok");
  EXPECT_EQ(query("SELECT name FROM dd_classes ORDER BY 1"), "/c\n/d\n");
}

TEST_F(on_a_server, many_definitions_are_compressed_by_lz4_where_nobody_wants_otherwise) {
  const auto put = [this](const std::string& stem) {
    EXPECT_EQ(client(settings).set_classes(many_classes(stem)), "ok");
    return query(
        "SELECT DISTINCT pg_column_compression(definition) FROM dd_classes WHERE name >= '/" +
        stem + "599'");
  };
  EXPECT_EQ(put("a"), "lz4\n");
  settings.dictionary +=
      " options='-c search_path=" + schema + " -c default_toast_compression=pglz'";
  EXPECT_EQ(put("b"), "pglz\n");
}
