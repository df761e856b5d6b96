#include "kxui/frame/errors.h"

namespace kxui::err {

std::string_view text(int32_t number) noexcept {
  switch (number) {
    case kInvalidProcedureCall: return "Invalid procedure call or argument";
    case kOverflow: return "Overflow";
    case kOutOfMemory: return "Out of memory";
    case kSubscriptOutOfRange: return "Subscript out of range";
    case kDivisionByZero: return "Division by zero";
    case kTypeMismatch: return "Type mismatch";
    case kInternalError: return "Internal error";
    case kObjectNotSet: return "Object variable or With block variable not set";
    case kInvalidUseOfNull: return "Invalid use of Null";
    case kCannotCreateObject: return "Component can't create object";
    case kNoSuchMember: return "Object doesn't support this property or method";
    case kAutomationError: return "Automation error";
    case kArgumentOutOfRange:
      return "Arguments are of the wrong type, are out of acceptable range, or are in conflict "
             "with one another.";
    case kNotAllowed: return "Operation is not allowed in this context.";
    case kItemNotFound:
      return "Item cannot be found in the collection corresponding to the requested name or "
             "ordinal.";
    case kNoCurrentRecord:
      return "Either BOF or EOF is True, or the current record has been deleted. Requested "
             "operation requires a current record.";
    case kObjectOpen: return "Operation is not allowed when the object is open.";
    case kObjectClosed: return "Operation is not allowed when the object is closed.";
    case kDataTooLong: return "Data value is too long for the field.";
    default: return "Application-defined or object-defined error";
  }
}

}  // namespace kxui::err
