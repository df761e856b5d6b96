#include "kxui/frame/runtime.h"

#include <atomic>
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

namespace {
std::atomic<uint64_t> g_runtimes{0};

// The entry of the last name a thread created, valid while its runtime's table has not
// changed (entries of the table never move while it stays the same).
struct LastCreated {
  uint64_t runtime = 0;
  uint64_t generation = 0;
  std::string name;  // exactly as asked for
  const void* entry = nullptr;
};
thread_local LastCreated t_last;
}  // namespace

Runtime::Runtime() : id_(++g_runtimes) {}

const std::shared_ptr<const Runtime::Creator>* Runtime::find_locked(std::string_view name) const {
  LastCreated& last = t_last;
  if (last.runtime == id_ && last.generation == generation_ && last.name == name) {
    return static_cast<const std::shared_ptr<const Creator>*>(last.entry);
  }
  auto it = creators_.find(name);
  if (it == creators_.end()) return nullptr;
  last.runtime = id_;
  last.generation = generation_;
  last.name.assign(name);
  last.entry = &it->second;
  return &it->second;
}

void Runtime::Register(std::string_view name, Creator creator) {
  auto shared = std::make_shared<const Creator>(std::move(creator));
  std::lock_guard lock(mutex_);
  ++generation_;
  auto it = creators_.find(name);
  if (it != creators_.end()) {
    it->second = std::move(shared);
  } else {
    creators_.emplace(std::string(name), std::move(shared));
  }
}

bool Runtime::Unregister(std::string_view name) {
  std::lock_guard lock(mutex_);
  ++generation_;
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
    const std::shared_ptr<const Creator>* entry = find_locked(name);
    if (!entry) fail(err::kCannotCreateObject, name, name);
    creator = *entry;
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
