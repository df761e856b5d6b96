// Every public operation of every class, with each call it makes out of the library made
// to fail in turn (N = 1, 2, ... until the call completes untouched), with each kind of
// failure, on the success path and on the path where the business tier refuses.
//
// After each faulted call: nothing escaped (the operations are noexcept: an escape ends
// the program), and either the operation absorbed the fault (the same outcome as without
// it) or it returned its failure value with Error holding the fault's number under the
// operation's own source, Success cleared and p_CustomData untouched. Every object the
// call was handed is released, and the next call on the same instance behaves as if the
// fault had never happened.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <set>

#include "kxui/frame/errors.h"
#include "reliability/sweep.h"

namespace kxui::sweep {
namespace {

namespace fault = testing::fault;

int32_t number_of(fault::Kind kind) {
  switch (kind) {
    case fault::Kind::kFailure: return fault::kInjectedNumber;
    case fault::Kind::kStdException: return err::kAutomationError;
    case fault::Kind::kBadAlloc: return err::kOutOfMemory;
    case fault::Kind::kForeign: return err::kInternalError;
  }
  return 0;
}

const char* plain_source(fault::Kind kind) {
  return kind == fault::Kind::kFailure ? fault::kInjectedSource : "";
}

std::string source_of(const Operation& op, fault::Kind kind) {
  const Rule& rule = rule_of(op);
  return expected_source(op) + " " +
         (rule.component ? rule.component
                         : kind == fault::Kind::kFailure ? fault::kInjectedSource : "");
}

struct Totals {
  int operations = 0;
  int calling_out = 0;
  int covered = 0;
  int clean_success = 0;  // success-path calls that end without any failure
  int64_t faults = 0;
  int64_t absorbed = 0;
  std::set<fault::Site> sites_reached;
  std::set<fault::Site> sites_faulted;
  std::map<std::string, int> absorbed_by_member;
};

// One operation on one path with one kind of fault, N = 1, 2, ...; false on the first
// broken rule (reported).
bool sweep_kind(const Operation& op, World& w, const Outcome& baseline, fault::Kind kind,
                Totals& t) {
  const std::string where = op.cls + "::" + op.name + (w.answer_bool ? " (success path)" :
                                                                       " (refusal path)") +
                            " with " + fault::kind_name(kind);
  for (int64_t n = 1;; ++n) {
    auto inst = op.make(w);
    const std::string custom_before = describe(Variant("custom data"));
    w.reset_arguments();
    const std::string baseline_outs_before = w.describe_outs();
    fault::arm(n, kind);
    Outcome o = inst->call(w);
    fault::disarm();
    if (!fault::fired()) return true;
    ++t.faults;
    const fault::Site site = fault::fired_site();
    t.sites_faulted.insert(site);
    const std::string at = where + ", call " + std::to_string(n) + " (" + site.member + ")";
    const bool same = o.result == baseline.result && o.number == baseline.number &&
                      o.source == baseline.source && o.success == baseline.success;
    const Rule& rule = rule_of(op);
    // An inner operation recorded the fault under its own name and the call carried on.
    const bool nested = rule.nested && o.result == baseline.result &&
                        o.number == number_of(kind) &&
                        o.source.rfind(std::string(rule.nested) + " ", 0) == 0;
    if (same || nested) {
      ++t.absorbed;
      ++t.absorbed_by_member[site.member];
    } else {
      const bool recorded =
          o.number == number_of(kind) &&
          (o.source == source_of(op, kind) ||
           (rule.component && o.source == expected_source(op) + " " + plain_source(kind)));
      const bool failure_value = rule.result ? o.result == rule.result
                                             : rule.keeps_result || o.failure_value;
      const bool custom_kept = rule.writes_custom || o.custom == custom_before;
      const bool outs_kept = rule.writes_outs || o.outs == baseline_outs_before;
      if (!failure_value || !recorded || o.success.value_or(false) || !custom_kept ||
          !outs_kept) {
        ADD_FAILURE() << at << ": returned " << o.result << ", Error " << o.number << " from \""
                      << o.source << "\" (" << o.description << "), Success "
                      << (o.success ? describe(*o.success) : "-") << ", p_CustomData "
                      << o.custom << ", other arguments " << o.outs << "; expected the failure value, Error " << number_of(kind)
                      << " from \"" << source_of(op, kind) << "\"";
        return false;
      }
    }
    Outcome next = inst->call(w);
    if (next.result != baseline.result || next.number != baseline.number ||
        next.source != baseline.source) {
      ADD_FAILURE() << at << ": the next call returned " << next.result << " with Error "
                    << next.number << " from \"" << next.source << "\"; without a fault "
                    << baseline.result << " with Error " << baseline.number;
      return false;
    }
    inst.reset();
    for (const auto& p : w.made) {
      if (!p.expired()) {
        ADD_FAILURE() << at << ": an object handed to the call outlived it: "
                      << w.made_types[&p - w.made.data()];
        return false;
      }
    }
    w.made.clear();
    w.made_types.clear();
  }
}

TEST(FaultSweep, EveryCallOutOfEveryOperationFailsCleanly) {
  Totals t;
  std::vector<std::string> silent;
  for (const Operation& op : all_operations()) {
    ++t.operations;
    bool calls_out = false, ok = true;
    for (bool answer : {true, false}) {
      World w;
      w.answer_bool = answer;
      const Baseline base = learn_baseline(op, w);
      if (base.calls == 0) {
        silent.push_back(op.cls + "::" + op.name + ": " + base.outcome.result + ", Error " +
                         std::to_string(base.outcome.number) + " " + base.outcome.description);
        continue;
      }
      calls_out = true;
      if (answer) t.clean_success += base.outcome.number == 0;
      t.sites_reached.insert(base.sites.begin(), base.sites.end());
      for (fault::Kind kind : fault::kAllKinds) ok = sweep_kind(op, w, base.outcome, kind, t) && ok;
    }
    t.calling_out += calls_out;
    t.covered += calls_out && ok;
  }
  std::printf("fault sweep: %d operations, %d call out, %d of them (%.0f%%) pass every fault\n",
              t.operations, t.calling_out, t.covered,
              t.calling_out ? 100.0 * t.covered / t.calling_out : 0.0);
  std::printf("fault sweep: call sites reached %zu, faulted %zu; faults injected %lld, "
              "absorbed %lld\n",
              t.sites_reached.size(), t.sites_faulted.size(), static_cast<long long>(t.faults),
              static_cast<long long>(t.absorbed));
  std::printf("fault sweep: %d operations run to the end without a failure on the success "
              "path\n", t.clean_success);
  for (const auto& [member, n] : t.absorbed_by_member) {
    std::printf("  absorbed at %-40s %d\n", member.c_str(), n);
  }
  for (const std::string& s : silent) std::printf("  calls nothing out: %s\n", s.c_str());
  EXPECT_EQ(t.covered, t.calling_out);
  EXPECT_TRUE(std::includes(t.sites_faulted.begin(), t.sites_faulted.end(),
                            t.sites_reached.begin(), t.sites_reached.end()))
      << "a call site reached without faults was never made to fail";
  EXPECT_GT(t.calling_out, 150);
}

}  // namespace
}  // namespace kxui::sweep
