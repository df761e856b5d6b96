#include "kxui/testing/fault_injection.h"

#include <dlfcn.h>
#include <execinfo.h>

#include <cstring>
#include <new>
#include <stdexcept>

#include "kxui/frame/failure.h"

namespace kxui::testing::fault {
namespace {

struct State {
  bool armed = false;
  bool track = false;
  bool fired = false;
  int64_t nth = 0;
  int64_t calls = 0;
  Kind kind = Kind::kFailure;
  Site fired_site;
  std::vector<Site> sites;
};
State& state() {
  static State s;
  return s;
}

// The first return address inside the library (libkxui), skipping the doubles' frames.
Site site_of(const char* member) {
  Site site{member, 0};
  void* frames[32];
  const int n = backtrace(frames, 32);
  for (int i = 1; i < n; ++i) {
    Dl_info info;
    if (dladdr(frames[i], &info) && info.dli_fname && std::strstr(info.dli_fname, "libkxui.so")) {
      site.offset = reinterpret_cast<uintptr_t>(frames[i]) -
                    reinterpret_cast<uintptr_t>(info.dli_fbase);
      break;
    }
  }
  return site;
}

}  // namespace

const char* kind_name(Kind kind) {
  switch (kind) {
    case Kind::kFailure: return "Failure";
    case Kind::kStdException: return "std::exception";
    case Kind::kBadAlloc: return "std::bad_alloc";
    case Kind::kForeign: return "non-standard value";
  }
  return "?";
}

void arm(int64_t nth, Kind kind, bool track_sites) {
  State& s = state();
  s = State{};
  s.armed = true;
  s.nth = nth;
  s.kind = kind;
  s.track = track_sites;
}

void disarm() { state().armed = false; }
bool armed() { return state().armed; }

void point(const char* member) {
  State& s = state();
  if (!s.armed) return;
  ++s.calls;
  if (s.track) s.sites.push_back(site_of(member));
  if (s.calls != s.nth) return;
  s.fired = true;
  s.fired_site = site_of(member);
  switch (s.kind) {
    case Kind::kFailure: throw Failure(kInjectedNumber, kInjectedSource, kInjectedText);
    case Kind::kStdException: throw std::runtime_error(kInjectedText);
    case Kind::kBadAlloc: throw std::bad_alloc();
    case Kind::kForeign: throw 42;
  }
}

int64_t calls() { return state().calls; }
bool fired() { return state().fired; }
const Site& fired_site() { return state().fired_site; }
const std::vector<Site>& sites() { return state().sites; }

}  // namespace kxui::testing::fault
