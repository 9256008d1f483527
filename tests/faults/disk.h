// A disk below the store's engine that fails as the plan says (tests/faults/plan.h).
#ifndef TESTS_FAULTS_DISK_H
#define TESTS_FAULTS_DISK_H

// From now on this process's dictionaries are on it.
void put_disk_under_plan();

#endif
