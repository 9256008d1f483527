// The commands of tav_dict; each gives the exit status.
#ifndef DICT_COMMANDS_H
#define DICT_COMMANDS_H

#include <string>

#include "dm/problem.h"

namespace CLI {
class App;
}

namespace dict {

enum exit_status { DONE = 0, FOUND = 1, FAILED = 2 };

int init();
int add_database(const std::string& number);
// The journal must have a record with that hash; "" asks for none.
int check(const std::string& head);
int backup(const std::string& file);
int restore(const std::string& file);

// Commands with options of their own. Each call adds one to the command line; when it has run,
// `result` is the exit status.
void add_diff(CLI::App& app, int& result);
void add_explain(CLI::App& app, int& result);
void add_format(CLI::App& app, int& result);
void add_export(CLI::App& app, int& result);
void add_status(CLI::App& app, int& result);
void add_lint(CLI::App& app, int& result);
void add_list(CLI::App& app, int& result);
void add_next_id(CLI::App& app, int& result);
void add_uses(CLI::App& app, int& result);
void add_log(CLI::App& app, int& result);
void add_tag(CLI::App& app, int& result);
void add_apply(CLI::App& app, int& result);
void add_plan(CLI::App& app, int& result);
void add_prune(CLI::App& app, int& result);
void add_blame(CLI::App& app, int& result);
void add_show(CLI::App& app, int& result);
void add_site(CLI::App& app, int& result);
void add_upgrade(CLI::App& app, int& result);
void add_undo(CLI::App& app, int& result);
void add_revert_to(CLI::App& app, int& result);
void add_drop(CLI::App& app, int& result);
void add_drop_database(CLI::App& app, int& result);
void add_rename(CLI::App& app, int& result);
void add_move_storage(CLI::App& app, int& result);

// Reads a database number, N.N.N.N; false with the reason.
bool read_database(const std::string& text, uint64_t& number, dm::problem& why);

// Prints on standard error what went wrong; gives FAILED.
int fail(const dm::problem& why);

}  // namespace dict

#endif
