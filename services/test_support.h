// Helpers shared by the services' tests.
#pragma once

#include <gmock/gmock.h>

#include <string>
#include <tuple>

#include "kxui/frame/failure.h"

namespace kxui::services::testing {

// Matches a callable that throws a Failure with this number and source whose description
// contains `culprit`.
MATCHER_P3(Fails, number, source, culprit, "") {
  try {
    arg();
  } catch (const Failure& f) {
    *result_listener << "threw " << f.number() << " from " << f.source() << ": " << f.description();
    return f.number() == number && f.source() == source &&
           f.description().find(culprit) != std::string::npos;
  }
  return false;
}

}  // namespace kxui::services::testing
