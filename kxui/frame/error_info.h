// ErrorInfo ("KxUtility03.KxError"): the error object each façade instance owns and
// every business object reports its failures through.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "kxui/frame/object.h"
#include "kxui/frame/session.h"
#include "kxui/frame/variant.h"

namespace kxui {

class ErrorInfo : public virtual Object {
 public:
  virtual int32_t Number() const = 0;
  virtual void SetNumber(int32_t n) = 0;
  virtual std::string Description() const = 0;
  virtual void SetDescription(std::string d) = 0;
  virtual std::string Source() const = 0;
  virtual void SetSource(std::string s) = 0;
  // The user's text of a validation message: `english` is the default; `params` fills
  // "@1"-style placeholders (an empty array for none).
  virtual std::string GetMessageText(const SessionPtr& session, int32_t message_number,
                                     const std::string& english, const Array& params) = 0;
};

using ErrorInfoPtr = std::shared_ptr<ErrorInfo>;

// Anything that reports its failures through an ErrorInfo: every business object and
// every platform service with a Boolean result.
class ErrorSource : public virtual Object {
 public:
  virtual ErrorInfoPtr GetError() = 0;
};

// A plain error object: the three properties, and message texts that are the English
// default with "@1"-style parameters filled.
class BasicErrorInfo : public ErrorInfo {
 public:
  int32_t Number() const override { return number_; }
  void SetNumber(int32_t n) override { number_ = n; }
  std::string Description() const override { return description_; }
  void SetDescription(std::string d) override { description_ = std::move(d); }
  std::string Source() const override { return source_; }
  void SetSource(std::string s) override { source_ = std::move(s); }
  std::string GetMessageText(const SessionPtr& session, int32_t message_number,
                             const std::string& english, const Array& params) override;

 private:
  int32_t number_ = 0;
  std::string description_;
  std::string source_;
};

// Replaces "@1", "@2", ... with the elements of `params` in order (the first element
// fills "@1" whatever the lower bound). Shared by the error objects' message texts.
std::string fill_message_params(std::string text, const Array& params);

}  // namespace kxui
