// Validation messages: fixed numbers with their English default texts. A validation
// failure is raised as err::kObjectErrorBase + number, with the text the error object
// gives for the user's language.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace kxui::msg {

struct Message {
  int32_t number;
  std::string_view english;
};

inline constexpr Message kInvalidSpecialRequestPrice{11600, "Estimated Unit Price is an invalid amount."};
inline constexpr Message kInvalidSpecialRequestQty{11601, "Order Quantity is an invalid number."};
inline constexpr Message kInvalidFastAddQty{11602, "Order Quantity is an invalid number."};
inline constexpr Message kInvalidFavoriteQty{11603, "Order Quantity is an invalid number."};
inline constexpr Message kInvalidUpdateSpecialPrice{11604, "Estimated Unit Price is an invalid amount."};
inline constexpr Message kInvalidUpdateSpecialQty{11605, "Order Quantity is an invalid number."};
inline constexpr Message kItemsPriceConversion{11606, "Unable to convert unit price to local currency."};
inline constexpr Message kItemPriceConversion{11607, "Unable to convert unit price to local currency."};
inline constexpr Message kPackingSlipNotNumeric{
    11608, "Invalid packing slip quantity entered. Packing slip quantity must be numeric."};
inline constexpr Message kPackingSlipNegative{
    11609, "Invalid packing slip quantity entered. Packing slip quantity may not be negative."};
inline constexpr Message kCorrectionExceedsReceived{
    11610,
    "Invalid received quantity entered. The receiving correction may not exceed the received "
    "to date quantity."};
inline constexpr Message kCommentsRequired{
    11611, "Comments are required if the received quantity value is negative."};
inline constexpr Message kCartonCountNotNumeric{
    11612, "Invalid carton count entered. Carton count must be numeric."};
inline constexpr Message kReceivedQtyNotNumeric{
    11613, "Invalid received quantity entered. Received quantity must be numeric."};
inline constexpr Message kOrderStatusCheckFailed{11614, "Unable to perform order status check."};

inline constexpr Message kAll[] = {
    kInvalidSpecialRequestPrice, kInvalidSpecialRequestQty, kInvalidFastAddQty,
    kInvalidFavoriteQty,         kInvalidUpdateSpecialPrice, kInvalidUpdateSpecialQty,
    kItemsPriceConversion,       kItemPriceConversion,      kPackingSlipNotNumeric,
    kPackingSlipNegative,        kCorrectionExceedsReceived, kCommentsRequired,
    kCartonCountNotNumeric,      kReceivedQtyNotNumeric,    kOrderStatusCheckFailed,
};

// The English text of a message number, or empty when the library has no such message.
constexpr std::string_view english(int32_t number) {
  for (const Message& m : kAll) {
    if (m.number == number) return m.english;
  }
  return {};
}

}  // namespace kxui::msg
