// A fresh folder with a tav.conf and a new dictionary, and programs run in it.
#ifndef TESTS_TOOL_WORKSHOP_H
#define TESTS_TOOL_WORKSHOP_H

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

std::string slurp(const std::filesystem::path& path);

struct run_result {
  int exit_status = -1;  // 128 and the signal for a program that was killed
  std::string out;
  std::string err;
  std::string log;  // what the run added to tav_deploy.tavlog, "SOURCE MESSAGE" a line
};

struct run_options {
  std::string input;             // a file in the folder, for standard input; empty: no input
  std::string output;            // a path for standard output in place of catching it
  std::vector<std::string> env;  // further NAME=VALUE
  std::string program;           // in place of the tool
  std::function<int(int, char**)> inside;  // run in a child process in place of a program
};

class workshop {
 public:
  workshop();
  ~workshop();
  workshop(const workshop&) = delete;
  workshop& operator=(const workshop&) = delete;

  void write(const std::string& name, const std::string& text) const;
  std::string read(const std::string& name) const;
  std::string path(const std::string& name) const { return (folder_ / name).string(); }
  // Runs the tool, or tav_dict where the first word is "dict".
  run_result run(std::vector<std::string> words, const run_options& options = {}) const;
  // Everything that the dictionary holds, as text.
  std::string dictionary() const;
  // What the server answers, where the dictionary is on one: values end with a '|', rows with a
  // line's end.
  std::string ask_server(const std::string& sql) const;
  // Keeps the dictionary as it is now, and puts it back.
  void save() const;
  void restore() const;

 private:
  run_result run_shell(const std::string& script) const;
  std::filesystem::path folder_;
};

// Whether dictionaries are made on a server: the tests run beside scripts/with-postgres then.
bool on_server();

#endif
