// Helpers shared by the services' tests.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "kxui/frame/failure.h"

namespace kxui::services::testing {

// The Failure `f` throws; a test failure (and a Failure numbered 0) when it throws none.
template <class F>
Failure failure_of(F&& f) {
  try {
    std::forward<F>(f)();
  } catch (const Failure& e) {
    return e;
  }
  ADD_FAILURE() << "expected a Failure";
  return Failure(0, "", "");
}

// Text with the no-break spaces ICU puts into numbers written as visible markers, so
// that a mismatch shows which space is which.
inline std::string show_spaces(std::string s) {
  for (auto [from, to] : {std::pair<std::string, std::string>{"\u00A0", "<NBSP>"},
                          {"\u202F", "<NNBSP>"}}) {
    for (size_t p = s.find(from); p != std::string::npos; p = s.find(from, p)) s.replace(p, from.size(), to);
  }
  return s;
}

}  // namespace kxui::services::testing
