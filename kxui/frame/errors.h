// Runtime error numbers of the interface and their English texts, kept in one place.
#pragma once

#include <cstdint>
#include <string_view>

namespace kxui::err {

// Language runtime errors.
inline constexpr int32_t kInvalidProcedureCall = 5;
inline constexpr int32_t kOverflow = 6;
inline constexpr int32_t kOutOfMemory = 7;
inline constexpr int32_t kSubscriptOutOfRange = 9;
inline constexpr int32_t kDivisionByZero = 11;
inline constexpr int32_t kTypeMismatch = 13;
inline constexpr int32_t kInternalError = 51;
inline constexpr int32_t kObjectNotSet = 91;
inline constexpr int32_t kInvalidUseOfNull = 94;
inline constexpr int32_t kCannotCreateObject = 429;
inline constexpr int32_t kNoSuchMember = 438;
inline constexpr int32_t kAutomationError = 440;

// Record-set errors.
inline constexpr int32_t kArgumentOutOfRange = 3001;
inline constexpr int32_t kNotAllowed = 3219;
inline constexpr int32_t kItemNotFound = 3265;
inline constexpr int32_t kNoCurrentRecord = 3021;
inline constexpr int32_t kObjectOpen = 3705;
inline constexpr int32_t kObjectClosed = 3704;
inline constexpr int32_t kDataTooLong = 3367;

// Component-error base: validation message N is raised as kObjectErrorBase + N.
inline constexpr int32_t kObjectErrorBase = static_cast<int32_t>(0x80040000u);

// English text of a runtime or record-set error number; "Application-defined or
// object-defined error" for any other number.
std::string_view text(int32_t number) noexcept;

}  // namespace kxui::err
