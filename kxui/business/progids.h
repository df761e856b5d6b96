// Every ProgID the library creates, written out in full so that a search for a ProgID
// finds its uses. Business objects are named "Kx" + area + "03" + "." + class.
#pragma once

#include <string_view>

namespace kxui::progid {

inline constexpr std::string_view BorgUser = "KxAdminBusObj03.BorgUser";
inline constexpr std::string_view POAttachment = "KxAttach03.POAttachment";
inline constexpr std::string_view POItemAttachment = "KxAttach03.POItemAttachment";
inline constexpr std::string_view ReqAttachment = "KxAttach03.ReqAttachment";
inline constexpr std::string_view ReqItemAttachment = "KxAttach03.ReqItemAttachment";
inline constexpr std::string_view Commodity = "KxCat03.Commodity";
inline constexpr std::string_view PartSearch = "KxCat03.PartSearch";
inline constexpr std::string_view BillTo = "KxCom03.BillTo";
inline constexpr std::string_view Borg = "KxCom03.Borg";
inline constexpr std::string_view CostCenter = "KxCom03.CostCenter";
inline constexpr std::string_view CurrencyCodes = "KxCom03.CurrencyCodes";
inline constexpr std::string_view Locale = "KxCom03.Locale";
inline constexpr std::string_view Mfr = "KxCom03.Mfr";
inline constexpr std::string_view PaymentMethod = "KxCom03.PaymentMethod";
inline constexpr std::string_view ReceiptItemStatus = "KxCom03.ReceiptItemStatus";
inline constexpr std::string_view ShipMethod = "KxCom03.ShipMethod";
inline constexpr std::string_view ShipTo = "KxCom03.ShipTo";
inline constexpr std::string_view SysUser = "KxCom03.SysUser";
inline constexpr std::string_view TimeZone = "KxCom03.TimeZone";
inline constexpr std::string_view UOM = "KxCom03.UOM";
inline constexpr std::string_view UserPaymentMethod = "KxCom03.UserPaymentMethod";
inline constexpr std::string_view POStatus = "KxCom03.POStatus";
inline constexpr std::string_view Resource = "KxLang03.Resource";
inline constexpr std::string_view POCostDistribs = "KxPO03.POCostDistribs";
inline constexpr std::string_view POItem = "KxPO03.POItem";
inline constexpr std::string_view POItems = "KxPO03.POItems";
inline constexpr std::string_view POLog = "KxPO03.POLog";
inline constexpr std::string_view PurchaseOrder = "KxPO03.PurchaseOrder";
inline constexpr std::string_view POReceipt = "KxRcv03.POReceipt";
inline constexpr std::string_view ReconcileItems = "KxRecPO03.ReconcileItems";
inline constexpr std::string_view ReconcileOrder = "KxRecPO03.ReconcileOrder";
inline constexpr std::string_view AR_PO = "KxReport03.AR_PO";
inline constexpr std::string_view AR_POByBorg = "KxReport03.AR_POByBorg";
inline constexpr std::string_view AR_POByCommodity = "KxReport03.AR_POByCommodity";
inline constexpr std::string_view AR_POReceipts = "KxReport03.AR_POReceipts";
inline constexpr std::string_view AR_PrivByBorg = "KxReport03.AR_PrivByBorg";
inline constexpr std::string_view AR_Req = "KxReport03.AR_Req";
inline constexpr std::string_view Report = "KxReport03.Report";
inline constexpr std::string_view ReportParam = "KxReport03.ReportParam";
inline constexpr std::string_view FavoriteItems = "KxReq03.FavoriteItems";
inline constexpr std::string_view ReqCostDistribs = "KxReq03.ReqCostDistribs";
inline constexpr std::string_view Templates = "KxReq03.Templates";
inline constexpr std::string_view Requisition = "KxReq03.Requisition";
inline constexpr std::string_view SFormReqItem = "KxSF03.SFormReqItem";
inline constexpr std::string_view AppIni = "KxUtility03.AppIni";
inline constexpr std::string_view CursorDataAccess = "KxUtility03.CursorDataAccess";
inline constexpr std::string_view KxError = "KxUtility03.KxError";
inline constexpr std::string_view KxSession = "KxUtility03.KxSession";
inline constexpr std::string_view NTLog = "KxUtility03.NTLog";
inline constexpr std::string_view UserGUID = "KxUtility03.UserGUID";
inline constexpr std::string_view Utils = "KxUtility03.Utils";
inline constexpr std::string_view Approval = "KxWF03.Approval";
inline constexpr std::string_view ApprovalItems = "KxWF03.ApprovalItems";
inline constexpr std::string_view ApprovalReview = "KxWF03.ApprovalReview";
inline constexpr std::string_view Approvals = "KxWF03.Approvals";
inline constexpr std::string_view BorgDelegation = "KxWF03.BorgDelegation";
inline constexpr std::string_view Workflow = "KxWF03.Workflow";
inline constexpr std::string_view Diagram = "KxWF03.Diagram";

// The full name of the log class.
inline constexpr std::string_view ClassFactoryNTLog = "KxClassFactory.NTLog";

}  // namespace kxui::progid
