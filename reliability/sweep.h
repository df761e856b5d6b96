// What both sweeps share: the operations, the outcome of a call without faults, and the
// source each operation records its failures under.
#pragma once

#include <string>
#include <vector>

#include "kxui/testing/fault_injection.h"
#include "reliability/sweep_world.h"

namespace kxui::sweep {

struct Baseline {
  Outcome outcome;
  int64_t calls = 0;  // calls out of the library
  std::vector<testing::fault::Site> sites;
};

// Calls the operation without faults. The record sets the fakes answer with gain every
// column the operation asks for, so that it runs as far as plausible data takes it.
Baseline learn_baseline(const Operation& op, World& w);

// How an operation answers a failure, where it is not the frame's plain rule (record
// under "<Class>::<Operation>", return the failure value, leave p_CustomData alone).
struct Rule {
  const char* source = nullptr;      // records under this name instead
  const char* component = nullptr;   // a helper that re-raises under its own name
  const char* result = nullptr;      // the failure value, described, when not the type's
  bool keeps_result = false;         // returns what it had obtained before the failure
  bool writes_custom = false;        // puts a message of its own in p_CustomData
  bool writes_outs = false;          // out-arguments keep what was written before a failure
  const char* nested = nullptr;      // an inner operation that records and carries on
};
const Rule& rule_of(const Operation& op);

// "<Class>::<Operation>", or the name a class records under when it is not its own.
std::string expected_source(const Operation& op);

}  // namespace kxui::sweep
