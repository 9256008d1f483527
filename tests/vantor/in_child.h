// Running code in a process of its own: what the library reads or opens once per process is fresh.
#ifndef TESTS_VANTOR_IN_CHILD_H
#define TESTS_VANTOR_IN_CHILD_H

#include <functional>
#include <string>

// Runs the code in a child process whose current folder is new and empty, without TAV_CONF in its
// environment. Gives what the code gives, or "died".
std::string in_child(const std::function<std::string()>& code);

void write_file(const std::string& path, const std::string& text, int mode = 0600);
// "" for a file that is not there.
std::string read_file(const std::string& path);
// The text without its first `words` words, line ends kept.
std::string after_words(const std::string& line, int words);

#endif
