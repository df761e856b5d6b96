// Test doubles of the frame's contracts and a runtime that registers them, so that a
// test fakes any business object by ProgID in a few lines:
//
//   auto env = testing::TestEnv::make();
//   auto req = std::make_shared<MyFakeRequisition>();
//   env->provide(progid::Requisition, req);
//   UIReq ui(env->runtime);
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "kxui/business/business_object.h"
#include "kxui/frame/class_factory.h"
#include "kxui/frame/error_info.h"
#include "kxui/frame/failure.h"
#include "kxui/frame/ntlog.h"
#include "kxui/frame/runtime.h"
#include "kxui/frame/session.h"

namespace kxui::testing {

// ErrorInfo that keeps what was written; can be told to throw on writes, and to give
// a translated text for a message number.
class RecordingErrorInfo : public ErrorInfo {
 public:
  int32_t Number() const override { return number; }
  void SetNumber(int32_t n) override;
  std::string Description() const override { return description; }
  void SetDescription(std::string d) override;
  std::string Source() const override { return source; }
  void SetSource(std::string s) override;
  std::string GetMessageText(const SessionPtr& session, int32_t message_number,
                             const std::string& english, const Array& params) override;

  int32_t number = 0;
  std::string description;
  std::string source;
  bool throw_on_write = false;
  // When set, GetMessageText returns this instead of the English text.
  std::string translation;
  std::vector<int32_t> message_numbers_asked;
  int32_t params_count_asked = -1;
};

// NTLog that keeps its entries.
class RecordingLog : public NTLog {
 public:
  void SetEventType(int32_t type) override;
  void SetMessage(std::string text) override;
  void WriteEntry() override;

  struct Entry {
    int32_t type;
    std::string message;
  };
  int32_t type = 0;
  std::string message;
  std::vector<Entry> written;
  bool throw_on_write = false;
};

// Base of hand-written business-object fakes: GetError returns an error object that a
// test fills with fail_with.
class FakeBusinessObject : public virtual business::BusinessObject {
 public:
  FakeBusinessObject();
  ErrorInfoPtr GetError() override { return error_; }
  // The error this object reports.
  void fail_with(int32_t number, std::string source, std::string description);
  std::shared_ptr<RecordingErrorInfo> error() const { return error_; }

 private:
  std::shared_ptr<RecordingErrorInfo> error_;
};

// A runtime with the frame's own objects registered (a RecordingErrorInfo per façade, a
// RecordingLog, a factory that records what it was asked for) and helpers to register
// fakes.
struct TestEnv {
  static std::shared_ptr<TestEnv> make();

  // Every creation by ProgID or class name, in order, prefixed with the path used:
  // "factory:<name>" through the ClassFactory, "direct:<name>" through the runtime alone.
  std::vector<std::string> created;
  std::shared_ptr<Runtime> runtime = std::make_shared<Runtime>();
  std::shared_ptr<RecordingLog> log = std::make_shared<RecordingLog>();
  std::vector<std::shared_ptr<RecordingErrorInfo>> error_infos;  // one per façade created
  bool fail_error_creation = false;
  bool in_factory = false;  // set while the recording factory creates

  // Registers an object: each creation hands out the same instance.
  void provide(std::string_view name, ObjectPtr object);
  // Registers a creator: each creation calls it.
  void provide_fn(std::string_view name, std::function<ObjectPtr()> make);
  // The number of creations of a name through either path.
  int count(std::string_view name) const;
  // The ErrorInfo of the most recently created façade.
  std::shared_ptr<RecordingErrorInfo> last_error() const { return error_infos.back(); }
};

// The default session of tests: locale 1033, zone 15, USD, en_US.
std::shared_ptr<BasicSession> make_session();

// Matches an ErrorInfo (pointer) holding this number and source.
MATCHER_P2(ErrorIs, number, source, "") {
  if (!arg) return false;
  *result_listener << "error " << arg->Number() << " from \"" << arg->Source() << "\": "
                   << arg->Description();
  return arg->Number() == number && arg->Source() == source;
}

// Runs `fn` and expects a Failure with this number.
#define EXPECT_FAILURE(expected_number, stmt)                                              \
  do {                                                                            \
    try {                                                                         \
      stmt;                                                                       \
      ADD_FAILURE() << "expected Failure " << (expected_number) << " from " #stmt;         \
    } catch (const ::kxui::Failure& f_) {                                         \
      EXPECT_EQ(f_.number(), (expected_number)) << f_.description();                       \
    }                                                                             \
  } while (0)

}  // namespace kxui::testing
