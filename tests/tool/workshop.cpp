#include "tests/tool/workshop.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace fs = std::filesystem;

static const char CONFIGURATION[] =
    "userid = 0.0.0.1 /admin 1\n[dm]\nfields_writeable = yes\nobjects_writeable = yes\n";

std::string slurp(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

static fs::path new_folder() {
  std::string pattern = (fs::temp_directory_path() / "tav_test_XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no folder for a test");
  return pattern;
}

static int open_or_die(const std::string& path, int flags) {
  const int fd = open(path.c_str(), flags, 0600);
  if (fd < 0) _exit(126);
  return fd;
}

static int spawn(const fs::path& folder, const std::string& program,
                 const std::vector<std::string>& words, const run_options& options,
                 const std::string& out, const std::string& err) {
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    if (chdir(folder.c_str()) != 0) _exit(126);
    dup2(open_or_die(options.input.empty() ? "/dev/null" : options.input, O_RDONLY), 0);
    dup2(open_or_die(out, O_WRONLY | O_CREAT | O_TRUNC), 1);
    dup2(open_or_die(err, O_WRONLY | O_CREAT | O_TRUNC), 2);
    for (const std::string& variable : options.env) putenv(strdup(variable.c_str()));
    std::vector<char*> argv;
    for (const std::string& word : words) argv.push_back(const_cast<char*>(word.c_str()));
    argv.push_back(nullptr);
    if (options.inside) std::exit(options.inside(static_cast<int>(words.size()), argv.data()));
    execv(program.c_str(), argv.data());
    _exit(127);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

// "TIME HOST PROGRAM[PID] LEVEL SOURCE:LINE MESSAGE" as "SOURCE MESSAGE". Further lines of a
// message are indented by four blanks and joined by "\\n" here; what follows them (an error buffer,
// a list) is left out.
static std::string records(const std::string& log) {
  std::istringstream lines(log);
  std::string line, text;
  bool in_message = false;
  while (std::getline(lines, line)) {
    if (line.empty() || line[0] == ' ') {
      in_message = in_message && line.rfind("    ", 0) == 0;
      if (in_message) text.replace(text.size() - 1, 1, "\\n" + line.substr(4) + "\n");
      continue;
    }
    std::istringstream words(line);
    std::string time, host, program, level, source, message;
    words >> time >> host >> program >> level >> source;
    std::getline(words, message);
    text += source.substr(0, source.find(':')) + message + "\n";
    in_message = true;
  }
  return text;
}

// A dictionary made once; every workshop starts with a copy.
static const fs::path& template_dictionary() {
  static const fs::path made = [] {
    const fs::path folder = new_folder();
    std::ofstream(folder / "tav.conf") << CONFIGURATION;
    if (spawn(folder, TAV_DICT, {"tav_dict", "init"}, {}, "out", "err") != 0) {
      throw std::runtime_error("tav_dict init failed: " + slurp(folder / "err"));
    }
    return folder / "dictionary.db";
  }();
  return made;
}

// Each dictionary is a schema of its own then.
bool on_server() {
  return std::getenv("TAV_POSTGRES_RESTART") != nullptr;
}

static void make_on_server(const fs::path& folder) {
  const std::string make =
      "psql -qXc 'CREATE SCHEMA \"" + folder.filename().string() + "\"' && " + TAV_DICT + " init";
  if (spawn(folder, "/bin/sh", {"sh", "-c", make}, {}, ".out", ".err") == 0) return;
  throw std::runtime_error("no dictionary on the server: " + slurp(folder / ".err"));
}

workshop::workshop() : folder_(new_folder()) {
  unsetenv("TAV_CONF");
  write("tav.conf", CONFIGURATION);
  if (on_server()) {
    make_on_server(folder_);
  } else {
    fs::copy_file(template_dictionary(), folder_ / "dictionary.db");
  }
}

workshop::~workshop() {
  std::error_code ignored;
  fs::remove_all(folder_, ignored);
}

void workshop::write(const std::string& name, const std::string& text) const {
  std::ofstream file(folder_ / name, std::ios::binary);
  file << text;
  if (name != "tav.conf" || !on_server()) return;
  file << "dictionary = options='-c search_path=\"" << folder_.filename().string() << "\"'\n";
}

std::string workshop::read(const std::string& name) const {
  return slurp(folder_ / name);
}

run_result workshop::run(std::vector<std::string> words, const run_options& options) const {
  const bool dict = !words.empty() && words[0] == "dict";
  if (dict) words.erase(words.begin());
  words.insert(words.begin(), dict ? "tav_dict" : "tav_deploy");
  const std::string program = !options.program.empty() ? options.program
                              : dict                   ? TAV_DICT
                                                       : TAV_DEPLOY;
  const size_t logged = read("tav_deploy.tavlog").size();
  run_result result;
  const std::string out = options.output.empty() ? path(".out") : options.output;
  result.exit_status = spawn(folder_, program, words, options, out, path(".err"));
  if (options.output.empty()) result.out = slurp(out);
  result.err = read(".err");
  result.log = records(read("tav_deploy.tavlog").substr(logged));
  return result;
}

std::string workshop::dictionary() const {
  run_options dump;
  dump.program = SQLITE3;
  return run({"dictionary.db", ".dump"}, dump).out;
}

static void copy_dictionary(const fs::path& from, const fs::path& to) {
  for (const char* name : {"dictionary.db", "dictionary.db-wal", "dictionary.db-shm"}) {
    fs::remove(to / name);
    if (fs::exists(from / name)) fs::copy_file(from / name, to / name);
  }
}

run_result workshop::run_shell(const std::string& script) const {
  run_options shell;
  shell.program = "/bin/sh";
  shell.env = {"SCHEMA=\"" + folder_.filename().string() + "\""};
  const run_result result = run({"-c", script}, shell);
  if (result.exit_status != 0) throw std::runtime_error(script + ": " + result.err);
  return result;
}

std::string workshop::ask_server(const std::string& sql) const {
  write(".sql", sql);
  return run_shell(
             "PGOPTIONS=\"-c search_path=$SCHEMA -c client_min_messages=error\" "
             "psql -qAtX -R '|\n' -F '|' -v ON_ERROR_STOP=1 -f .sql")
      .out;
}

void workshop::save() const {
  if (on_server()) {
    run_shell("pg_dump --schema=\"$SCHEMA\" >.saved.sql");
    return;
  }
  fs::create_directory(folder_ / ".saved");
  copy_dictionary(folder_, folder_ / ".saved");
}

void workshop::restore() const {
  if (on_server()) {
    run_shell(
        "psql -qX -v ON_ERROR_STOP=1 -c 'SET client_min_messages = error'"
        " -c \"DROP SCHEMA $SCHEMA CASCADE\" -f .saved.sql");
    return;
  }
  copy_dictionary(folder_ / ".saved", folder_);
}
