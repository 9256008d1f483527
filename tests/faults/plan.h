// Which fault the next run meets, and what it did until then. Child processes share it.
#ifndef TESTS_FAULTS_PLAN_H
#define TESTS_FAULTS_PLAN_H

#include <cstddef>
#include <cstdint>

#include "dd/error_codes.h"

enum class disk_fault {
  NONE,
  IO_ERROR,     // one call fails
  FULL,         // one call fails for want of room
  SHORT_WRITE,  // one write stops halfway
  BROKEN,       // this call and all that follow fail
  KILL,         // the process dies before the call
  POWER_LOSS    // ... and what was not synchronised is lost
};

struct fault_plan {
  long failing_call = 0;                   // of the client library; 0: none
  int32_t failing_code = TAV_ERR_STORAGE;  // what it leaves; TAV_ERR_NOT_FOUND spares walks' steps
  uint32_t refused_operation = 0;
  disk_fault disk = disk_fault::NONE;
  long failing_disk_call = 0;
  long failing_allocation = 0;   // 0: none
  bool is_memory_gone = false;   // for good, not for that one
  long failing_engine_call = 0;  // 0: none

  long calls = 0;  // made so far
  long disk_calls = 0;
  long allocations = 0;
  long engine_calls = 0;
  long ways_to_engine[2048] = {};  // the first calls that came each way, where none fails
  size_t way_count = 0;
  bool failed_a_sync = false;
  const char* failed_call = "";  // its name, and where the tool made it
  const char* failed_module = "";
  int failed_line = 0;
  size_t left_allocated = 0;
  uint32_t operations[16] = {};
  int operation_count = 0;
};

// The one plan.
fault_plan& plan();

// From now on this process's dictionaries are on a disk that fails by the plan.
void put_disk_under_plan();
// The same of its memory.
void put_memory_under_plan();
// The same of the calls of its engine.
void put_engine_under_plan();

#endif
