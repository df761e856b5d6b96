// Facade: the frame every public class shares. It owns the ClassFactory (created on first
// need and kept), the ErrorInfo (created with the instance) and the Success flag, in
// that order, and runs every public operation through one failure handler, so that
// nothing is ever thrown to a page: a failure is recorded in Error() and signalled by
// the operation's failure value (False, "", Nothing or 0).
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "kxui/frame/class_factory.h"
#include "kxui/frame/error_info.h"
#include "kxui/frame/failure.h"
#include "kxui/frame/messages.h"
#include "kxui/frame/object.h"
#include "kxui/frame/runtime.h"
#include "kxui/frame/session.h"

namespace kxui {

// Class name under which a host may register its own ClassFactory in the runtime; when
// none is registered, façades use a RuntimeClassFactory over their runtime.
inline constexpr const char* kClassFactoryClass = "KxClassFactory.ClassFactory";

// How an operation maintains Success.
enum class Track {
  kNone,             // Success keeps its last value
  kSuccess,          // cleared on entry, set when the body returns, cleared on failure
  kClearOnFailure,   // the body sets it; a failure clears it
};

class Facade : public virtual Object {
 public:
  Facade(const Facade&) = delete;
  Facade& operator=(const Facade&) = delete;
  // Release: the ErrorInfo first, then the factory.
  ~Facade() override;

  // The instance's error object: the same object every time, holding the last failure
  // recorded by this instance (a successful call does not clear it).
  ErrorInfoPtr Error() const noexcept { return error_; }

  const std::string& class_name() const noexcept { return class_name_; }

  // Façade instances alive in the process (the module answers "cannot unload" while
  // any exists).
  static int64_t live_instances() noexcept;

 protected:
  // Creation: the factory, then "KxUtility03.KxError" through it. A failure is recorded
  // under "<source_class>::Class_Initialize" (source_class defaults to the class name; a
  // class may record under another class's name); when the error object itself cannot be
  // created a plain built-in one takes its place, so Error() is never Nothing.
  Facade(std::string class_name, std::shared_ptr<Runtime> runtime,
         std::string_view source_class = {});

  // The public-operation pattern: runs `body`; on any failure records it under `source`
  // and returns `failure_value` (even when the body had already produced a result).
  template <class R, class Body>
  R guarded(std::string_view source, R failure_value, Body&& body,
            Track track = Track::kNone) noexcept {
    if (track == Track::kSuccess) success_ = false;
    try {
      R result = body();
      if (track == Track::kSuccess) success_ = true;
      return result;
    } catch (...) {
      record_current_failure(source);
      if (track != Track::kNone) success_ = false;
      return failure_value;
    }
  }

  // A business object by ProgID through the ClassFactory (created first if empty), as
  // interface T (429 unknown ProgID, 438 missing interface).
  template <class T>
  std::shared_ptr<T> create(std::string_view progid) {
    return query<T>(create_object(progid));
  }
  ObjectPtr create_object(std::string_view progid);

  // An object created directly by class through the runtime, not through the factory
  // (locale services, resource objects).
  template <class T>
  std::shared_ptr<T> create_direct(std::string_view class_name) {
    return create_as<T>(*runtime_, class_name);
  }

  // Raises the failure a business object reports: its error's Number, Source and
  // Description.
  [[noreturn]] static void raise_business_error(ErrorSource& obj);
  [[noreturn]] static void raise_business_error(const std::shared_ptr<ErrorSource>& obj) {
    raise_business_error(*obj);
  }
  // The business-call pattern: a call that answered False (or a Success() that reads
  // False) raises the object's own error. Use as `check(*req, req->Save(...))`.
  template <class T>
  static void check(T& obj, bool ok) {
    if (!ok) raise_business_error(obj);
  }
  template <class T>
  static void check(const std::shared_ptr<T>& obj, bool ok) {
    if (!ok) raise_business_error(*obj);
  }

  // Raises a validation failure: number 0x80040000 + message number, empty source, the
  // text from GetMessageText (the English text when the error object cannot give one).
  [[noreturn]] void raise_validation(const SessionPtr& session, const msg::Message& m);

  // Records a failure: Number, Description, and Source = source + " " + err_source.
  // Its own failures are ignored.
  void SetError(std::string_view source, int32_t number, std::string_view description,
                std::string_view err_source) noexcept;
  // Writes the recorded failure to the log ("KxUtility03.NTLog", event type 1, message
  // "source :: description"). Its own failures are ignored. No operation calls it.
  void LogError() noexcept;

  // Records the exception in flight under `source` (Failure as it stands, bad_alloc as 7,
  // another std::exception as 440 with its text, anything else as 51).
  void record_current_failure(std::string_view source) noexcept;

  Runtime& runtime() const noexcept { return *runtime_; }
  const std::shared_ptr<Runtime>& runtime_ptr() const noexcept { return runtime_; }
  ClassFactory& factory();

  bool success_ = false;

 private:
  std::shared_ptr<Runtime> runtime_;
  std::string class_name_;
  ClassFactoryPtr factory_;
  ErrorInfoPtr error_;
};

}  // namespace kxui
