// Commands that change what the dictionary holds (dm/changes/changes.h): each finds what it wants
// in a snapshot; then it is told, a person is asked, and it is carried out if nobody changed
// anything meanwhile.
#ifndef DICT_CHANGE_CHANGE_H
#define DICT_CHANGE_CHANGE_H

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "dict/commands.h"
#include "dict/history/history.h"
#include "dict/terminal/json.h"
#include "dm/changes/changes.h"

namespace dict {

inline constexpr char NOBODY_ASKED[] =
    "With --json nobody is asked; --yes says that it is meant, --dry-run only tells.";

struct change_options {
  bool is_trial = false;
  bool is_sure = false;
  bool is_json = false;
};
// --dry-run, --yes and --json.
void add_change_options(CLI::App& command, change_options& how);

struct intended_change {
  reading from{};
  int64_t seen_end = 0;  // last record of the journal in the snapshot
  std::vector<dm::wanted_thing> wanted{};
  std::vector<dm::refused_change> refused{};
  std::vector<std::string> notes{};  // what a person should know before agreeing
  // How what is changed was and will be spelled, where nothing but that differs.
  std::pair<std::string, std::string> respelled{};
  std::string detail{};  // of the record
  int64_t undone = 0;    // the deployment that is taken back; 0: none
};

// Begins the snapshot: of the dictionary, or with a database chosen as begin_reading does. False
// with the reason.
bool begin_change(intended_change& change, dm::problem& why);
bool begin_change(const std::string& database, intended_change& change, dm::problem& why);

// Adds a refusal of the command's own: "Field 'NAME' FAULT.".
void refuse(intended_change& change, dm::change_of what, const std::string& name,
            std::string_view fault);

// Takes a thing that is not as the journal left it as a refusal. False where the reason is another.
bool refuse_altered(intended_change& change, const dm::problem& why);

// The state of a thing in the snapshot, and whether it is there. One that is not there is refused.
// False when the store fails.
bool find_there(intended_change& change, dm::change_of what, const std::string& name,
                std::optional<std::string>& state, dm::problem& why);

// Whether a person could be asked who has seen what would be done; false with the reason.
bool may_ask(const change_options& how, dm::problem& why);

// Prints what was refused, and that nothing was changed.
void print_refused(const std::vector<dm::refused_change>& all);
void put_refused(json_writer& out, const dm::refused_change& refused);

// Tells, asks and carries out. Gives the exit status: DONE also where there is nothing to do, FOUND
// where anything was refused.
int carry_out(intended_change& change, const change_options& how);

}  // namespace dict

#endif
