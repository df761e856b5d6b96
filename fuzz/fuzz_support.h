// Shared by the fuzz targets: a finding is a crash, a sanitizer report or a broken
// invariant, which aborts with the reason.
#pragma once

#include <cstdio>
#include <cstdlib>

#define FUZZ_CHECK(cond)                                                         \
  do {                                                                           \
    if (!(cond)) {                                                               \
      std::fprintf(stderr, "invariant broken: %s (%s:%d)\n", #cond, __FILE__, __LINE__); \
      std::abort();                                                              \
    }                                                                            \
  } while (0)
