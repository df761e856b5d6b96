// UITools: number formatting, the order-status check and the customer-name lookup.
#include "kxui/po/ui_tools.h"

#include "kxui/business/cursor_data_access.h"
#include "kxui/business/progids.h"
#include "kxui/business/purchase_order.h"
#include "kxui/business/supplier_exchange.h"
#include "kxui/frame/services.h"
#include "kxui/po/detail/po_shared.h"
#include "kxui/po/detail/supplier_link.h"

namespace kxui {

using detail::RaiseBusinessError;
namespace sx = supplier;

UITools::UITools(std::shared_ptr<Runtime> runtime) : Facade("UITools", std::move(runtime)) {}

std::string UITools::FormatNumber(const SessionPtr& p_Session, double nNumber,
                                  ByRef<Variant>) noexcept {
  return guarded("UITools::FormatNumber", std::string(), [&] {
    const int32_t locale_id = require(p_Session).LocaleID();
    auto money = create_direct<CurrencyFormatter>(service_class::kCurrencyFormatter);
    return money->FormatAmount(locale_id, nNumber);
  });
}

std::string UITools::GetCustName(const SessionPtr& session, Variant& custom_data) noexcept {
  return guarded("UITools::GetCustName", std::string(), [&] {
    const Session& s = require(session);
    auto data = create<business::CursorDataAccess>(progid::CursorDataAccess);
    RecordsetPtr rows = data->RunSP(session, "Cat_BorgAccount_Sel_CustName",
                                    {Variant(s.BorgID()), Variant(s.EboID())}, custom_data);
    Recordset& rs = require(rows);
    if (rs.IsBOF() && rs.IsEOF()) return std::string();
    return rs["CustomerName"].Value().to_string();
  });
}

bool UITools::OrderStatus(const SessionPtr& p_Session, ByRef<int32_t> p_lPOID,
                          ByRef<Variant> p_CustomData) noexcept {
  return guarded("UITools::OrderStatus", false, [&] {
    const int32_t po_id = *p_lPOID;
    auto po = create<business::PurchaseOrder>(progid::PurchaseOrder);
    if (!po->LoadPO(p_Session, po_id, false, *p_CustomData)) RaiseBusinessError(*po);
    const auto header_ptr = po->Header();
    business::POHeader& header = require(header_ptr);

    auto query = create_direct<Dispatch>(sx::kSupplierQuery);
    detail::put_property(*query, sx::query::kStatusPOID, Variant(po_id));
    detail::put_property(*query, sx::query::kStatusPONum, Variant(header.PONum()));
    detail::put_property(*query, sx::query::kStatusSupplierID, Variant(header.SupplierID()));
    std::vector<Variant> args(sx::status_arg::kCount);
    args[sx::status_arg::kHeader] = Variant(create_direct<Object>(sx::kRequestHeader));
    args[sx::status_arg::kDate] = Variant(detail::current_date());
    args[sx::status_arg::kFixedValue] = Variant(sx::kRequestFixedValue);
    args[sx::status_arg::kRequestType] = Variant(sx::kRequestType);
    args[sx::status_arg::kCustomer] = Variant(GetCustName(p_Session, *p_CustomData));
    args[sx::status_arg::kRefKey] = Variant(sx::kRefKey);
    const bool answered = query->Invoke(sx::query::kSendOrderStatus, args).to_bool();

    if (!answered) {
      // The supplier's reason goes to the PO's history before the call fails.
      auto log = create<business::POLog>(progid::POLog);
      const std::string text = detail::get_member(*query, sx::query::kErrorText).to_string();
      const std::string code = detail::get_member(*query, sx::query::kErrorCode).to_string();
      log->WriteLog(p_Session, po_id, "Error", detail::first_chars(text, 255),
                    detail::first_chars(code, 20), *p_CustomData);
      raise_validation(p_Session, msg::kOrderStatusCheckFailed);
    }

    auto response = detail::response_at(args[sx::status_arg::kResponses], 0);
    const std::string code =
        conv::trim(detail::get_member(*response, sx::kGetStatusCode).to_string());
    auto statuses = create<business::POStatus>(progid::POStatus);
    int32_t po_status_id = 0;
    if (!statuses->MapSupplierStatus(p_Session, code, po_status_id, *p_CustomData)) {
      RaiseBusinessError(*statuses);
    }
    return po->SetPOStatus(p_Session, po_id, po_status_id, *p_CustomData);
  });
}

}  // namespace kxui
