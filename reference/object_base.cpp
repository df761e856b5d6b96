#include "reference/object_base.h"

#include <new>

#include "kxui/frame/failure.h"
#include "kxui/frame/runtime.h"

namespace kxui::reference {

void RefObject::record(std::string_view member) noexcept {
  try {
    int32_t number = err::kInternalError;
    std::string description;
    try {
      throw;
    } catch (const Failure& f) {
      number = f.number();
      description = f.description();
    } catch (const std::bad_alloc&) {
      number = err::kOutOfMemory;
      description = std::string(err::text(number));
    } catch (const std::exception& e) {
      number = err::kAutomationError;
      description = e.what();
    } catch (...) {
      description = std::string(err::text(number));
    }
    error_->SetNumber(number);
    error_->SetDescription(std::move(description));
    error_->SetSource(class_name_ + "::" + std::string(member));
  } catch (...) {
    // Out of memory while recording: the error object keeps what it had.
  }
}

const Session& RefObject::session_of(const SessionPtr& session) { return require(session); }

}  // namespace kxui::reference
