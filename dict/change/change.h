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
#include "dm/changes/changes.h"

namespace dict {

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
};

// Begins the snapshot: of the dictionary, or with a database chosen as begin_reading does. False
// with the reason.
bool begin_change(intended_change& change, dm::problem& why);
bool begin_change(const std::string& database, intended_change& change, dm::problem& why);

// Adds a refusal of the command's own: "Field 'NAME' FAULT.".
void refuse(intended_change& change, dm::change_of what, const std::string& name,
            std::string_view fault);

// The state of a thing in the snapshot, and whether it is there. One that is not there is refused.
// False when the store fails.
bool find_there(intended_change& change, dm::change_of what, const std::string& name,
                std::optional<std::string>& state, dm::problem& why);

// A JSON object of texts, for `detail`.
std::string detail_of(const std::vector<std::pair<const char*, std::string>>& members);

// Tells, asks and carries out. Gives the exit status: DONE also where there is nothing to do, FOUND
// where anything was refused.
int carry_out(intended_change& change, const change_options& how);

}  // namespace dict

#endif
