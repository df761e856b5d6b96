// A counting interposer on every call the library makes out to the objects tests give
// it (business objects and their error objects, the session, the locale services, the
// settings reader, the factory and every creation): each double calls fault::point
// first. Idle, a point costs one branch. Armed, it counts the calls, and the N-th one
// throws the chosen kind of failure, so a sweep can make each call of an operation fail
// in turn and check what the operation did about it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kxui::testing::fault {

enum class Kind {
  kFailure,       // the library's own Failure (number kInjectedNumber, source kInjectedSource)
  kStdException,  // a std::runtime_error
  kBadAlloc,      // std::bad_alloc
  kForeign,       // a thrown int: not an exception class at all
};
inline constexpr Kind kAllKinds[] = {Kind::kFailure, Kind::kStdException, Kind::kBadAlloc,
                                     Kind::kForeign};
inline constexpr int32_t kInjectedNumber = 0x7F0F;
inline constexpr const char* kInjectedSource = "FaultInjected";
inline constexpr const char* kInjectedText = "injected fault";
const char* kind_name(Kind kind);

// Where a call left the library: the member called and the return address inside the
// library's shared object (as an offset from its base, so runs compare).
struct Site {
  std::string member;
  uintptr_t offset = 0;
  bool operator<(const Site& o) const {
    return offset != o.offset ? offset < o.offset : member < o.member;
  }
  bool operator==(const Site& o) const { return offset == o.offset && member == o.member; }
};

// Starts counting; the `nth` call (1-based) throws `kind`; 0 only counts. With
// `track_sites`, every counted call records its Site.
void arm(int64_t nth, Kind kind, bool track_sites = false);
void disarm();
bool armed();

// Counts one call out of the library (see above). `member` names what was called.
void point(const char* member);

int64_t calls();               // counted since arm
bool fired();                  // the armed call was reached
const Site& fired_site();      // valid when fired()
const std::vector<Site>& sites();  // with track_sites

}  // namespace kxui::testing::fault
