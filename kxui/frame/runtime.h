// Runtime: the component registry. Classes are registered under a class name or ProgID
// (compared case-insensitively) and created by that name; creating an unregistered
// name fails with 429. Façades take a runtime in their constructor so tests can inject
// their own; the process runtime serves everything else.
#pragma once

#include <cstdint>
#include <functional>
#include <typeinfo>
#include <unordered_map>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <string_view>

#include "kxui/frame/errors.h"
#include "kxui/frame/failure.h"
#include "kxui/frame/object.h"
#include "kxui/frame/variant.h"

namespace kxui {

class Runtime {
 public:
  using Creator = std::function<ObjectPtr()>;

  Runtime();
  Runtime(const Runtime&) = delete;
  Runtime& operator=(const Runtime&) = delete;

  // Registers (or replaces) the creator of a name.
  void Register(std::string_view name, Creator creator);
  // True when the name was registered.
  bool Unregister(std::string_view name);
  bool IsRegistered(std::string_view name) const;
  // A new object; 429 "Component can't create object" when nothing is registered under
  // the name or the creator returns nothing; a creator's own Failure passes through.
  ObjectPtr Create(std::string_view name) const;

  // The runtime of the process, shared by every façade created without one.
  static std::shared_ptr<Runtime> process();

 private:
  // Names compare case-insensitively (ASCII), looked up without building a key.
  struct FoldedHash {
    using is_transparent = void;
    size_t operator()(std::string_view s) const noexcept;
  };
  struct FoldedEqual {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const noexcept;
  };
  using Creators =
      std::unordered_map<std::string, std::shared_ptr<const Creator>, FoldedHash, FoldedEqual>;
  const std::shared_ptr<const Creator>* find_locked(std::string_view name) const;

  mutable std::mutex mutex_;  // the process runtime is shared between threads
  // Shared, so Create can take a creator out of the lock without copying it.
  Creators creators_;
  // Which runtime this is, never reused, and how often its table changed: each thread
  // remembers the entry of the last name it created against both.
  const uint64_t id_;
  uint64_t generation_ = 0;  // guarded by mutex_
};

// The interface T of an object: 91 for Nothing, 438 when the object lacks it.
template <class T>
std::shared_ptr<T> query(const ObjectPtr& obj) {
  if (!obj) fail(err::kObjectNotSet);
  auto typed = std::dynamic_pointer_cast<T>(obj);
  if (!typed) fail(err::kNoSuchMember);
  return typed;
}

// The same, taking the object over. Services are often one shared instance, so each
// thread remembers the last object cast to T: the same object of the same type has its
// T at the same place, and the cast is skipped.
template <class T>
std::shared_ptr<T> query(ObjectPtr&& obj) {
  if (!obj) fail(err::kObjectNotSet);
  struct Last {
    const Object* object = nullptr;
    const std::type_info* type = nullptr;
    T* typed = nullptr;
  };
  thread_local Last last;
  const Object& object = *obj;
  const std::type_info& type = typeid(object);
  T* typed;
  if (obj.get() == last.object && type == *last.type) {
    typed = last.typed;
  } else {
    typed = dynamic_cast<T*>(obj.get());
    if (!typed) fail(err::kNoSuchMember);
    last = Last{obj.get(), &type, typed};
  }
  return std::shared_ptr<T>(std::move(obj), typed);
}

// The object a call cannot do without: 91 when it is Nothing.
template <class T>
T& require(const std::shared_ptr<T>& p) {
  if (!p) fail(err::kObjectNotSet);
  return *p;
}

// Creates a registered object and returns its interface T (429, 438).
template <class T>
std::shared_ptr<T> create_as(const Runtime& rt, std::string_view name) {
  return query<T>(rt.Create(name));
}

// Late-bound members, by name or by dispatch id, for objects the library addresses the
// way an external component publishes them.
class Dispatch : public virtual Object {
 public:
  // The dispatch id of a member name; 438 when there is none.
  virtual int32_t GetIDOfName(std::string_view name) = 0;
  // Calls (or reads / writes, as the member defines) a member with the arguments in
  // order; arguments are by reference so members may write back. 438 for an unknown id.
  virtual Variant Invoke(int32_t dispid, std::span<Variant> args) = 0;
  Variant InvokeByName(std::string_view name, std::span<Variant> args) {
    return Invoke(GetIDOfName(name), args);
  }
};

}  // namespace kxui
