#include "orders.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>

drawn_runs::drawn_runs(int stride) : stride_(stride) {
  const char* asked = std::getenv("TAV_ORDERS");
  if (asked != nullptr && std::string(asked) == "all") stride_ = 1;
  if (stride_ == 1) return;
  offset_ = (asked != nullptr ? std::atoi(asked) : static_cast<int>(getpid())) % stride_;
  std::cout << "Orders " << offset_ << ", " << offset_ + stride_ << ", ...: TAV_ORDERS=" << offset_
            << "\n";
}

void orders::start_anew() {
  namespace fs = std::filesystem;
  dm::problem why;
  if (on_server()) {
    query("DROP SCHEMA " + schema + " CASCADE; CREATE SCHEMA " + schema);
    EXPECT_TRUE(make(settings, why)) << why.sentence;
    return fill();
  }
  if (kept_.empty()) {
    fill();
    fs::copy_file(path, kept_ = folder + "/kept.db");
  }
  for (const char* rest : {"-wal", "-shm"}) fs::remove(path + rest);
  fs::copy_file(kept_, path, fs::copy_options::overwrite_existing);
}
