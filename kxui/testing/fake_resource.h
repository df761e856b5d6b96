// A resource object for tests: a small string table that remembers its last call and
// can be told to fail.
#pragma once

#include <map>
#include <optional>
#include <string>

#include "kxui/business/resource.h"
#include "kxui/testing/test_runtime.h"

namespace kxui::testing {

class FakeResource : public business::Resource, public FakeBusinessObject {
 public:
  // A non-empty tag marks the answers ("<tag>:<text>") so a test sees which object of a
  // fallback chain answered.
  explicit FakeResource(std::string tag = {}) : tag(std::move(tag)) {}

  std::string LoadString(int16_t id, const std::string& default_string,
                         const Array& args) override {
    last_id = id;
    last_args = args;
    if (failure) throw *failure;
    auto it = strings.find(id);
    const std::string& text = it == strings.end() ? default_string : it->second;
    return tag.empty() ? text : tag + ":" + text;
  }

  std::string tag;
  std::map<int16_t, std::string> strings;
  std::optional<Failure> failure;  // thrown by LoadString when set
  int16_t last_id = 0;
  Array last_args;
};

}  // namespace kxui::testing
