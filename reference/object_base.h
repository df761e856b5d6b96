// What every reference business object shares: its database, its error object, and the
// one answering pattern: run the member, and on any failure record it in GetError under
// "<Class>::<Member>" and answer the member's failure value. Nothing is thrown out of a
// member whose contract answers through a result (members documented as throwing do).
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "kxui/business/business_object.h"
#include "kxui/frame/error_info.h"
#include "kxui/frame/session.h"
#include "reference/database.h"

namespace kxui::reference {

class RefObject : public virtual business::BusinessObject {
 public:
  RefObject(DatabasePtr db, std::string class_name)
      : db_(std::move(db)), class_name_(std::move(class_name)),
        error_(std::make_shared<BasicErrorInfo>()) {}

  ErrorInfoPtr GetError() override { return error_; }

 protected:
  template <class R, class Body>
  R answer(std::string_view member, R failure_value, Body&& body) noexcept {
    success_ = false;
    try {
      R result = body();
      success_ = true;
      return result;
    } catch (...) {
      record(member);
      return failure_value;
    }
  }
  // The same for members documented as throwing: the failure is recorded, then thrown
  // on with the member's source.
  template <class Body>
  auto answer_or_throw(std::string_view member, Body&& body) -> decltype(body());

  // Records the exception in flight under this class and `member`.
  void record(std::string_view member) noexcept;

  Database& db() { return *db_; }
  const DatabasePtr& db_ptr() const { return db_; }
  // The caller's session; 91 when it is Nothing.
  static const Session& session_of(const SessionPtr& session);

  bool success_ = false;

 private:
  DatabasePtr db_;
  std::string class_name_;
  ErrorInfoPtr error_;
};

template <class Body>
auto RefObject::answer_or_throw(std::string_view member, Body&& body) -> decltype(body()) {
  success_ = false;
  try {
    auto result = body();
    success_ = true;
    return result;
  } catch (...) {
    record(member);
    throw Failure(error_->Number(), error_->Source(), error_->Description());
  }
}

}  // namespace kxui::reference
