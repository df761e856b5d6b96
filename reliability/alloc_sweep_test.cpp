// Every public operation with the N-th allocation inside it failing, N = 1, 2, ... until
// the call allocates no more than N - 1 times: once in an ordinary call, and once while
// a failure (injected at the operation's first call out) is already being recorded. No
// run may end the program; each returns either what it returns without the failure, or
// its failure value; and the next call on the same instance behaves normally.
//
// This program replaces the global allocation functions with a countdown.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <new>

#include "kxui/frame/errors.h"
#include "reliability/sweep.h"

namespace {

// < 0: off. Otherwise the allocation that makes it reach 0 fails.
int64_t g_countdown = -1;
int64_t g_allocations = 0;
bool g_counting = false;
bool g_only_after_fault = false;  // count only once the injected fault is in flight
bool g_failed = false;
bool g_armed = false;  // a countdown is set for the next operation call

void* allocate(std::size_t n, bool nothrow) {
  if (g_counting && (!g_only_after_fault || kxui::testing::fault::fired())) {
    ++g_allocations;
    if (g_countdown > 0 && --g_countdown == 0) {
      g_failed = true;
      if (nothrow) return nullptr;
      throw std::bad_alloc();
    }
  }
  void* p = std::malloc(n ? n : 1);
  if (!p && !nothrow) throw std::bad_alloc();
  return p;
}

void* allocate_aligned(std::size_t n, std::align_val_t align, bool nothrow) {
  if (g_counting && (!g_only_after_fault || kxui::testing::fault::fired())) {
    ++g_allocations;
    if (g_countdown > 0 && --g_countdown == 0) {
      g_failed = true;
      if (nothrow) return nullptr;
      throw std::bad_alloc();
    }
  }
  const std::size_t a = static_cast<std::size_t>(align);
  void* p = std::aligned_alloc(a, (n + a - 1) / a * a);
  if (!p && !nothrow) throw std::bad_alloc();
  return p;
}

}  // namespace

void* operator new(std::size_t n) { return allocate(n, false); }
void* operator new[](std::size_t n) { return allocate(n, false); }
void* operator new(std::size_t n, const std::nothrow_t&) noexcept { return allocate(n, true); }
void* operator new[](std::size_t n, const std::nothrow_t&) noexcept { return allocate(n, true); }
void* operator new(std::size_t n, std::align_val_t a) { return allocate_aligned(n, a, false); }
void* operator new[](std::size_t n, std::align_val_t a) { return allocate_aligned(n, a, false); }
void operator delete(void* p) noexcept { std::free(p); }
void operator delete[](void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
void operator delete[](void* p, std::size_t) noexcept { std::free(p); }
void operator delete(void* p, std::align_val_t) noexcept { std::free(p); }
void operator delete[](void* p, std::align_val_t) noexcept { std::free(p); }
void operator delete(void* p, std::size_t, std::align_val_t) noexcept { std::free(p); }
void operator delete[](void* p, std::size_t, std::align_val_t) noexcept { std::free(p); }

namespace kxui::sweep {
namespace {

namespace fault = testing::fault;

struct Counts {
  int operations = 0;
  int64_t runs = 0;
  int64_t failed_allocations = 0;
  int64_t during_recording = 0;
  int64_t longest = 0;  // the most allocations one call made
};

// One operation on the world's path; `while_recording` injects a Failure at the first
// call out and fails allocations made from then on. False on the first broken rule.
bool sweep_allocations(const Operation& op, World& w, const Outcome& baseline,
                       bool while_recording, Counts& c) {
  const std::string where = op.cls + "::" + op.name +
                            (w.answer_bool ? " (success path)" : " (refusal path)") +
                            (while_recording ? " while recording a failure" : "");
  for (int64_t n = 1;; ++n) {
    auto inst = op.make(w);
    if (while_recording) fault::arm(1, fault::Kind::kFailure);
    g_only_after_fault = while_recording;
    g_failed = false;
    g_countdown = n;
    g_armed = true;
    Outcome o = inst->call(w);
    g_armed = false;
    g_countdown = -1;
    fault::disarm();
    if (!g_failed) {
      c.longest = std::max(c.longest, n - 1);
      return true;
    }
    if (o.not_called) continue;  // the caller's own argument failed to allocate
    ++c.runs;
    (while_recording ? c.during_recording : c.failed_allocations) += 1;
    const std::string at = where + ", allocation " + std::to_string(n);
    const bool same = o.result == baseline.result;
    const Rule& rule = rule_of(op);
    const bool failure_value = rule.result ? o.result == rule.result
                                           : rule.keeps_result || o.failure_value;
    if (!same && !failure_value) {
      ADD_FAILURE() << at << ": returned " << o.result << " (without the failure "
                    << baseline.result << ")";
      return false;
    }
    if (!same && !while_recording && o.number != err::kOutOfMemory) {
      ADD_FAILURE() << at << ": returned its failure value with Error " << o.number << " from \""
                    << o.source << "\" (" << o.description << "), not 7 (Out of memory)";
      return false;
    }
    Outcome next = inst->call(w);
    if (next.result != baseline.result || next.number != baseline.number) {
      ADD_FAILURE() << at << ": the next call returned " << next.result << " with Error "
                    << next.number << "; without a failure " << baseline.result;
      return false;
    }
  }
}

TEST(AllocationSweep, EveryAllocationOfEveryOperationMayFail) {
  g_call_hooks.enter = [] { g_counting = g_armed; };
  g_call_hooks.leave = [] { g_counting = false; };
  Counts c;
  int passed = 0;
  for (const Operation& op : all_operations()) {
    ++c.operations;
    bool ok = true;
    for (bool answer : {true, false}) {
      World w;
      w.answer_bool = answer;
      const Baseline base = learn_baseline(op, w);
      ok = sweep_allocations(op, w, base.outcome, false, c) && ok;
      if (base.calls > 0) ok = sweep_allocations(op, w, base.outcome, true, c) && ok;
    }
    passed += ok;
  }
  std::printf("allocation sweep: %d operations, %d pass; %lld allocations failed in calls, "
              "%lld while a failure was being recorded; at most %lld in one call\n",
              c.operations, passed, static_cast<long long>(c.failed_allocations),
              static_cast<long long>(c.during_recording), static_cast<long long>(c.longest));
  EXPECT_EQ(passed, c.operations);
}

}  // namespace
}  // namespace kxui::sweep
