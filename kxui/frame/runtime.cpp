#include "kxui/frame/runtime.h"

#include <algorithm>
#include <cctype>

namespace kxui {

bool Runtime::Less::operator()(std::string_view a, std::string_view b) const {
  return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
    return std::tolower(static_cast<unsigned char>(x)) < std::tolower(static_cast<unsigned char>(y));
  });
}

void Runtime::Register(std::string_view name, Creator creator) {
  std::lock_guard lock(mutex_);
  auto it = creators_.find(name);
  if (it != creators_.end()) {
    it->second = std::move(creator);
  } else {
    creators_.emplace(std::string(name), std::move(creator));
  }
}

bool Runtime::Unregister(std::string_view name) {
  std::lock_guard lock(mutex_);
  auto it = creators_.find(name);
  if (it == creators_.end()) return false;
  creators_.erase(it);
  return true;
}

bool Runtime::IsRegistered(std::string_view name) const {
  std::lock_guard lock(mutex_);
  return creators_.find(name) != creators_.end();
}

ObjectPtr Runtime::Create(std::string_view name) const {
  Creator creator;
  {
    std::lock_guard lock(mutex_);
    auto it = creators_.find(name);
    if (it == creators_.end()) fail(err::kCannotCreateObject, name, name);
    creator = it->second;
  }
  // Run outside the lock: a creator may create further objects.
  ObjectPtr obj = creator();
  if (!obj) fail(err::kCannotCreateObject, name, name);
  return obj;
}

std::shared_ptr<Runtime> Runtime::process() {
  static const auto instance = std::make_shared<Runtime>();
  return instance;
}

}  // namespace kxui
