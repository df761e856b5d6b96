// Every ProgID the library creates, composed the way the platform names business
// objects: "Kx" + area + "03" + "." + class.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace kxui::progid {

namespace detail {
template <size_t N>
struct Text {
  char chars[N]{};
  constexpr Text(const char (&s)[N]) {
    for (size_t i = 0; i < N; ++i) chars[i] = s[i];
  }
};
template <Text Area, Text Class>
struct Compose {
  static constexpr auto make() {
    constexpr size_t a = sizeof(Area.chars) - 1, c = sizeof(Class.chars) - 1;
    std::array<char, 2 + a + 3 + c + 1> out{};
    size_t k = 0;
    for (char ch : std::string_view("Kx")) out[k++] = ch;
    for (size_t i = 0; i < a; ++i) out[k++] = Area.chars[i];
    for (char ch : std::string_view("03.")) out[k++] = ch;
    for (size_t i = 0; i < c; ++i) out[k++] = Class.chars[i];
    out[k] = '\0';
    return out;
  }
  static constexpr auto storage = make();
  static constexpr std::string_view value{storage.data(), storage.size() - 1};
};
}  // namespace detail

template <detail::Text Area, detail::Text Class>
inline constexpr std::string_view compose = detail::Compose<Area, Class>::value;

inline constexpr auto BorgUser = compose<"AdminBusObj", "BorgUser">;
inline constexpr auto POAttachment = compose<"Attach", "POAttachment">;
inline constexpr auto POItemAttachment = compose<"Attach", "POItemAttachment">;
inline constexpr auto ReqAttachment = compose<"Attach", "ReqAttachment">;
inline constexpr auto ReqItemAttachment = compose<"Attach", "ReqItemAttachment">;
inline constexpr auto Commodity = compose<"Cat", "Commodity">;
inline constexpr auto PartSearch = compose<"Cat", "PartSearch">;
inline constexpr auto BillTo = compose<"Com", "BillTo">;
inline constexpr auto Borg = compose<"Com", "Borg">;
inline constexpr auto CostCenter = compose<"Com", "CostCenter">;
inline constexpr auto CurrencyCodes = compose<"Com", "CurrencyCodes">;
inline constexpr auto Locale = compose<"Com", "Locale">;
inline constexpr auto Mfr = compose<"Com", "Mfr">;
inline constexpr auto PaymentMethod = compose<"Com", "PaymentMethod">;
inline constexpr auto ReceiptItemStatus = compose<"Com", "ReceiptItemStatus">;
inline constexpr auto ShipMethod = compose<"Com", "ShipMethod">;
inline constexpr auto ShipTo = compose<"Com", "ShipTo">;
inline constexpr auto SysUser = compose<"Com", "SysUser">;
inline constexpr auto TimeZone = compose<"Com", "TimeZone">;
inline constexpr auto UOM = compose<"Com", "UOM">;
inline constexpr auto UserPaymentMethod = compose<"Com", "UserPaymentMethod">;
inline constexpr auto POStatus = compose<"Com", "POStatus">;
inline constexpr auto Resource = compose<"Lang", "Resource">;
inline constexpr auto POCostDistribs = compose<"PO", "POCostDistribs">;
inline constexpr auto POItem = compose<"PO", "POItem">;
inline constexpr auto POItems = compose<"PO", "POItems">;
inline constexpr auto POLog = compose<"PO", "POLog">;
inline constexpr auto PurchaseOrder = compose<"PO", "PurchaseOrder">;
inline constexpr auto POReceipt = compose<"Rcv", "POReceipt">;
inline constexpr auto ReconcileItems = compose<"RecPO", "ReconcileItems">;
inline constexpr auto ReconcileOrder = compose<"RecPO", "ReconcileOrder">;
inline constexpr auto AR_PO = compose<"Report", "AR_PO">;
inline constexpr auto AR_POByBorg = compose<"Report", "AR_POByBorg">;
inline constexpr auto AR_POByCommodity = compose<"Report", "AR_POByCommodity">;
inline constexpr auto AR_POReceipts = compose<"Report", "AR_POReceipts">;
inline constexpr auto AR_PrivByBorg = compose<"Report", "AR_PrivByBorg">;
inline constexpr auto AR_Req = compose<"Report", "AR_Req">;
inline constexpr auto Report = compose<"Report", "Report">;
inline constexpr auto ReportParam = compose<"Report", "ReportParam">;
inline constexpr auto FavoriteItems = compose<"Req", "FavoriteItems">;
inline constexpr auto ReqCostDistribs = compose<"Req", "ReqCostDistribs">;
inline constexpr auto Templates = compose<"Req", "Templates">;
inline constexpr auto Requisition = compose<"Req", "Requisition">;
inline constexpr auto SFormReqItem = compose<"SF", "SFormReqItem">;
inline constexpr auto AppIni = compose<"Utility", "AppIni">;
inline constexpr auto CursorDataAccess = compose<"Utility", "CursorDataAccess">;
inline constexpr auto KxError = compose<"Utility", "KxError">;
inline constexpr auto KxSession = compose<"Utility", "KxSession">;
inline constexpr auto NTLog = compose<"Utility", "NTLog">;
inline constexpr auto UserGUID = compose<"Utility", "UserGUID">;
inline constexpr auto Utils = compose<"Utility", "Utils">;
inline constexpr auto Approval = compose<"WF", "Approval">;
inline constexpr auto ApprovalItems = compose<"WF", "ApprovalItems">;
inline constexpr auto ApprovalReview = compose<"WF", "ApprovalReview">;
inline constexpr auto Approvals = compose<"WF", "Approvals">;
inline constexpr auto BorgDelegation = compose<"WF", "BorgDelegation">;
inline constexpr auto Workflow = compose<"WF", "Workflow">;
inline constexpr auto Diagram = compose<"WF", "Diagram">;

// The full name of the log class, declared beside the composed ones.
inline constexpr std::string_view ClassFactoryNTLog = "KxClassFactory.NTLog";

}  // namespace kxui::progid
