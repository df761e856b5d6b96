// The supplier-exchange library: request and response objects of an external messaging
// library, created directly by class and addressed late-bound through Dispatch, by the
// dispatch ids its interface publishes.
#pragma once

#include <cstdint>

namespace kxui::supplier {

// Class names under which the runtime creates the library's objects.
inline constexpr const char* kSupplierQuery = "KxSupplierLink.SupplierQuery";
inline constexpr const char* kQuickCheckItem = "KxSupplierLink.QuickCheckItem";
inline constexpr const char* kRequestHeader = "KxSupplierLink.RequestHeader";

// QuickCheckItem properties (written with one argument).
namespace item {
inline constexpr int32_t kLineNum = 126;
inline constexpr int32_t kSupplierPartNum = 102;
inline constexpr int32_t kSupplierPartNumExt = 122;
inline constexpr int32_t kBuyerSystem = 137;
inline constexpr int32_t kUOM = 129;
inline constexpr int32_t kQuantity = 125;
}  // namespace item

// The buying system's identifier in every request line.
inline constexpr const char* kBuyerSystemID = "Veltrix";

// SupplierQuery members.
namespace query {
// Order-status request values (written with one argument): the PO's identifier, its
// number and the supplier's identifier.
inline constexpr int32_t kStatusPOID = 117;
inline constexpr int32_t kStatusPONum = 132;
inline constexpr int32_t kStatusSupplierID = 102;
// Sends the order-status request; seven arguments (kStatusArgs order), returns Boolean.
inline constexpr int32_t kSendOrderStatus = 101;
// Sends a quick check; ten arguments (kQuickCheckArgs order), returns Boolean.
inline constexpr int32_t kSendQuickCheck = 109;
// The text of the last failure and its code.
inline constexpr int32_t kErrorText = 103;
inline constexpr int32_t kErrorCode = 100;
}  // namespace query

// Argument positions of kSendOrderStatus.
namespace status_arg {
inline constexpr int kHeader = 0;       // request-header object
inline constexpr int kDate = 1;         // Date of the request
inline constexpr int kFixedValue = 2;   // kRequestFixedValue
inline constexpr int kRequestType = 3;  // kRequestType
inline constexpr int kCustomer = 4;     // customer name
inline constexpr int kRefKey = 5;       // kRefKey
inline constexpr int kResponses = 6;    // out: Array of response objects
inline constexpr int kCount = 7;
}  // namespace status_arg

// Argument positions of kSendQuickCheck.
namespace qc_arg {
inline constexpr int kHeader = 0;       // request-header object
inline constexpr int kDate = 1;         // Date of the request
inline constexpr int kFixedValue = 2;   // kRequestFixedValue
inline constexpr int kSupplierID = 3;   // the supplier asked
inline constexpr int kRequestType = 4;  // kRequestType
inline constexpr int kCustomer = 5;     // customer name
inline constexpr int kCurrency = 6;     // currency of the prices asked for
inline constexpr int kRefKey = 7;       // kRefKey
inline constexpr int kItems = 8;        // Array (from 0) of QuickCheckItem objects
inline constexpr int kResponses = 9;    // out: Array of response objects, one per item
inline constexpr int kCount = 10;
}  // namespace qc_arg

inline constexpr int32_t kRequestFixedValue = 95000;
inline constexpr int32_t kRequestType = 2;
inline constexpr const char* kRefKey = "refid";

// Response members, read by name.
inline constexpr const char* kGetUnitPrice = "getUnitPrice";
inline constexpr const char* kGetAvailableQty = "getAvailableQty";
inline constexpr const char* kGetStatusCode = "getStatusCode";

}  // namespace kxui::supplier
