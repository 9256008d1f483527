// The inner loops: tokens, definitions, list operations, look-ups, and the store's fetch and
// commit.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "dd/list.h"
#include "dd/values.h"
#include "dd/walk.h"
#include "dparse/read/reader.h"

namespace {

// `count` field definitions and as many field entries in classes of ten, as definition text.
std::string definitions(int count) {
  std::string text;
  char line[256];
  for (int i = 0; i < count; ++i) {
    std::snprintf(line, sizeof line,
                  "STRING B_FIELD_%d {\n\tID = %d;\n\tDESCR = \"A field of the benchmark, of no "
                  "use elsewhere.\";\n}\n",
                  i, 20000 + i);
    text += line;
  }
  for (int i = 0; i < count; ++i) {
    if (i % 10 == 0) {
      std::snprintf(line, sizeof line, "%sSTORABLE CLASS /b_%d {\n", i > 0 ? "}\n" : "", i);
      text += line;
    }
    std::snprintf(line, sizeof line,
                  "\tSTRING B_FIELD_%d {\n\t\tORDER = %d;\n\t\tLENGTH = 60;\n\t\tCREATE = OPTIONAL;"
                  "\n\t\tMODIFY = WRITEABLE;\n\t}\n",
                  i, i % 10);
    text += line;
  }
  return text + "}\n";
}

FILE* open_text(std::string& text) {
  return fmemopen(text.data(), text.size(), "r");
}

struct lists {
  dd_list fields{DD_FIELDS, dd_flist(tav_flist_create(nullptr))};
  dd_list classes{DD_CLASSES, dd_flist(tav_flist_create(nullptr))};
  dd_list impls{DD_CLASSES, dd_flist(tav_flist_create(nullptr))};
};

void read(std::string& text, lists& into) {
  FILE* in = open_text(text);
  if (dparseDefFile(in, &into.fields, &into.classes, &into.impls) < 1) {
    std::fprintf(stderr, "%s\n", dparseGetErrMsg());
    std::abort();
  }
  std::fclose(in);
}

void tokens(benchmark::State& state) {
  std::string text = definitions(1000);
  int64_t count = 0;
  for (auto _ : state) {
    FILE* in = open_text(text);
    char token[dparse::TEXT_SIZE];
    while (dparseGetToken(in, token, sizeof token) != DPARSE_TOKEN_EOF) ++count;
    std::fclose(in);
  }
  state.SetItemsProcessed(count);
}
BENCHMARK(tokens);

void read_definitions(benchmark::State& state) {
  const int count = static_cast<int>(state.range(0));
  std::string text = definitions(count);
  for (auto _ : state) {
    lists into;
    read(text, into);
  }
  state.SetItemsProcessed(state.iterations() * count * 2);
}
BENCHMARK(read_definitions)->Arg(1000)->Arg(10000);

dd_flist numbered(int count) {
  tav_ebuf ebuf{};
  dd_flist list(tav_flist_create(&ebuf));
  for (int i = 0; i < count; ++i) {
    tav_flist_t* element = tav_flist_elem_add(list.get(), TAV_FLD_FIELD, i, &ebuf);
    dd_set_text(element, TAV_FLD_FIELD_NAME, ("B_FIELD_" + std::to_string(i)).c_str(), &ebuf);
    dd_set_int(element, TAV_FLD_FIELD_NUM, i, &ebuf);
    dd_set_int(element, TAV_FLD_FIELD_TYPE, TAV_FLDT_STRING, &ebuf);
  }
  return list;
}

void list_build(benchmark::State& state) {
  const int count = static_cast<int>(state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(numbered(count).get());
  state.SetItemsProcessed(state.iterations() * count);
}
BENCHMARK(list_build)->Arg(1000)->Arg(100000);

void list_walk(benchmark::State& state) {
  const int count = static_cast<int>(state.range(0));
  const dd_flist list = numbered(count);
  for (auto _ : state) {
    tav_ebuf ebuf{};
    dd_walk walk(list.get(), TAV_FLD_FIELD);
    int64_t sum = 0;
    while (tav_flist_t* e = walk.next(&ebuf)) sum += dd_int(e, TAV_FLD_FIELD_NUM, &ebuf);
    benchmark::DoNotOptimize(sum);
  }
  state.SetItemsProcessed(state.iterations() * count);
}
BENCHMARK(list_walk)->Arg(1000)->Arg(100000);

void list_copy(benchmark::State& state) {
  const dd_flist list = numbered(static_cast<int>(state.range(0)));
  for (auto _ : state) dd_flist copy(tav_flist_copy(list.get(), nullptr));
}
BENCHMARK(list_copy)->Arg(1000)->Arg(100000);

void look_up(benchmark::State& state) {
  const int count = static_cast<int>(state.range(0));
  dd_list fields(DD_FIELDS, numbered(count));
  tav_ebuf ebuf{};
  int i = 0;
  char name[32];
  for (auto _ : state) {
    std::snprintf(name, sizeof name, "b_field_%d", i);
    benchmark::DoNotOptimize(fields.find(name, &ebuf));
    i = (i + 7919) % count;
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(look_up)->Arg(1000)->Arg(100000);

// --- The store
// ----------------------------------------------------------------------------------------

// A folder with a new dictionary, as the working folder.
void enter_new_dictionary() {
  char folder[] = "/tmp/tav_bench_XXXXXX";
  if (mkdtemp(folder) == nullptr || chdir(folder) != 0) std::abort();
  FILE* conf = std::fopen("tav.conf", "w");
  std::fputs("userid = 0.0.0.1 /admin 1\n[dm]\nfields_writeable = yes\nobjects_writeable = yes\n",
             conf);
  std::fclose(conf);
  if (std::system(TAV_DICT " init >/dev/null") != 0) std::abort();
}

dd_poid target() {
  return dd_poid(tav_poid_create(1, "/dd/fields", 1, nullptr));
}

dd_flist operate(tcm_context_t* connection, uint32_t opcode, tav_flist_t* input) {
  tav_ebuf ebuf{};
  dd_put(input, TAV_FLD_POID, 0, target(), &ebuf);
  tav_flist_t* output = nullptr;
  tcm_op(connection, opcode, 0, input, &output, &ebuf);
  if (dd_failed(ebuf)) std::abort();
  return dd_flist(output);
}

tcm_context_t* connect() {
  tcm_context_t* connection = nullptr;
  uint64_t database = 0;
  tcm_connect(&connection, &database, nullptr);
  if (connection == nullptr) std::abort();
  return connection;
}

void store_commit_and_fetch(benchmark::State& state, bool commit) {
  std::string text = definitions(10000);
  enter_new_dictionary();
  lists input;
  read(text, input);
  const auto store = [&] {
    tcm_context_t* connection = connect();
    operate(connection, TCM_OP_SDK_SET_FLD_SPECS, input.fields.get());
    tcm_context_close(connection, 0, nullptr);
  };
  if (!commit) store();
  for (auto _ : state) {
    if (commit) {
      state.PauseTiming();
      if (std::system("rm -f dictionary.db*; " TAV_DICT " init >/dev/null") != 0) std::abort();
      state.ResumeTiming();
      store();
      continue;
    }
    tcm_context_t* connection = connect();
    dd_flist request(tav_flist_create(nullptr));
    benchmark::DoNotOptimize(operate(connection, TCM_OP_SDK_GET_FLD_SPECS, request.get()).get());
    tcm_context_close(connection, 0, nullptr);
  }
  state.SetItemsProcessed(state.iterations() * 10000);
}
BENCHMARK_CAPTURE(store_commit_and_fetch, commit_10000_fields, true);
BENCHMARK_CAPTURE(store_commit_and_fetch, fetch_10000_fields, false);

}  // namespace

BENCHMARK_MAIN();
