// A field F_S that class /s uses, and the ways to change both that deployments do not have.
#ifndef TESTS_DM_WAYS_H
#define TESTS_DM_WAYS_H

#include "dm/changes/changes.h"
#include "told.h"

enum way { RENAME, DROP, UNDO };

// A class /s with that description, as a client deploys it.
std::string class_wanted(const std::string& descr);
// Deploys both in a new dictionary, and anew with other descriptions: deployments 3 and 5.
void deploy_twice(const dm::settings& settings);

// What the way wants: that the field is called F_R, that the class is gone, or what was before
// deployment 5. False where that is refused, or, with the reason, where the store fails. Needs an
// open transaction.
bool find_wanted(way which, dm::store& store, std::vector<dm::wanted_thing>& wanted,
                 dm::problem& why);

#endif
