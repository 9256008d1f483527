#include "in_child.h"

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

static void run(const std::function<std::string()>& code, const char* folder, int out) {
  unsetenv("TAV_CONF");
  if (chdir(folder) != 0) _exit(1);
  const std::string result = code();
  const bool written = write(out, result.data(), result.size()) >= 0;
  _exit(written ? 0 : 1);
}

static std::string read_all(int in) {
  std::string text;
  char part[4096];
  for (ssize_t n; (n = read(in, part, sizeof part)) > 0;) text.append(part, static_cast<size_t>(n));
  return text;
}

std::string in_child(const std::function<std::string()>& code) {
  std::string folder = (std::filesystem::temp_directory_path() / "vantorXXXXXX").string();
  int ends[2];
  if (mkdtemp(folder.data()) == nullptr || pipe(ends) != 0) return "no folder or pipe";
  const pid_t child = fork();
  if (child == 0) run(code, folder.c_str(), ends[1]);
  close(ends[1]);
  const std::string result = read_all(ends[0]);
  close(ends[0]);
  int status = 0;
  waitpid(child, &status, 0);
  std::filesystem::remove_all(folder);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? result : "died";
}

void write_file(const std::string& path, const std::string& text, int mode) {
  std::ofstream(path) << text;
  chmod(path.c_str(), static_cast<mode_t>(mode));
}

std::string read_file(const std::string& path) {
  std::ostringstream text;
  text << std::ifstream(path).rdbuf();
  return text.str();
}

std::string after_words(const std::string& line, int words) {
  size_t at = 0;
  while (words-- > 0 && at != std::string::npos) at = line.find(' ', at + 1);
  return at == std::string::npos ? "" : line.substr(at + 1);
}
