#include "kxui/frame/runtime.h"

#include <cstdint>
#include <cstring>

#include "kxui/frame/text.h"

namespace kxui {

// ASCII upper case to lower case in all eight bytes of x at once.
inline uint64_t fold8(uint64_t x) {
  constexpr uint64_t ones = 0x0101010101010101ull;
  const uint64_t low7 = x & (0x7f * ones);
  const uint64_t ge_a = low7 + (0x80 - 'A') * ones;  // high bit set where byte >= 'A'
  const uint64_t gt_z = low7 + (0x7f - 'Z') * ones;  // high bit set where byte > 'Z'
  const uint64_t upper = (ge_a ^ gt_z) & ~x & (0x80 * ones);
  return x | (upper >> 2);  // 0x80 >> 2 is the case bit 0x20
}

size_t Runtime::FoldedHash::operator()(std::string_view s) const noexcept {
  // Eight bytes a step: creation by name sits on the path of every operation.
  uint64_t h = 0x9e3779b97f4a7c15ull ^ s.size();
  size_t i = 0;
  for (; i + 8 <= s.size(); i += 8) {
    uint64_t x;
    std::memcpy(&x, s.data() + i, 8);
    h = (h ^ fold8(x)) * 0xff51afd7ed558ccdull;
    h ^= h >> 32;
  }
  if (i < s.size()) {
    uint64_t x = 0;
    std::memcpy(&x, s.data() + i, s.size() - i);
    h = (h ^ fold8(x)) * 0xff51afd7ed558ccdull;
    h ^= h >> 32;
  }
  return static_cast<size_t>(h);
}

bool Runtime::FoldedEqual::operator()(std::string_view a, std::string_view b) const noexcept {
  return text::iequals(a, b);
}

void Runtime::Register(std::string_view name, Creator creator) {
  auto shared = std::make_shared<const Creator>(std::move(creator));
  std::lock_guard lock(mutex_);
  auto it = creators_.find(name);
  if (it != creators_.end()) {
    it->second = std::move(shared);
  } else {
    creators_.emplace(std::string(name), std::move(shared));
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
  std::shared_ptr<const Creator> creator;
  {
    std::lock_guard lock(mutex_);
    auto it = creators_.find(name);
    if (it == creators_.end()) fail(err::kCannotCreateObject, name, name);
    creator = it->second;
  }
  // Run outside the lock: a creator may create further objects.
  ObjectPtr obj = (*creator)();
  if (!obj) fail(err::kCannotCreateObject, name, name);
  return obj;
}

std::shared_ptr<Runtime> Runtime::process() {
  static const auto instance = std::make_shared<Runtime>();
  return instance;
}

}  // namespace kxui
