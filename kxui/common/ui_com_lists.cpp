// UICom: the plain reference lists, passed through as the business tier returns them.
#include "kxui/business/commodity.h"
#include "kxui/business/progids.h"
#include "kxui/business/reference_data.h"
#include "kxui/common/ui_com.h"

namespace kxui {

using business::Commodity;

template <class T, class Call>
RecordsetPtr UICom::plain_list(std::string_view source, std::string_view progid,
                               Call&& call) noexcept {
  return guarded(source, RecordsetPtr(), [&] {
    auto obj = create<T>(progid);
    RecordsetPtr list = call(*obj);
    // Lists whose object keeps no success flag (the user's organisations) are not asked.
    if constexpr (requires { obj->Success(); }) check(obj, obj->Success());
    return list;
  });
}

template <class T, class Call>
bool UICom::filled_list(std::string_view source, std::string_view progid, RecordsetPtr& out,
                        Call&& call) noexcept {
  return guarded(source, false, [&] {
    auto obj = create<T>(progid);
    RecordsetPtr list = call(*obj);
    const Recordset& rs = require(list);
    out = list;
    return !rs.IsBOF() && !rs.IsEOF();
  });
}

RecordsetPtr UICom::GetBillToList(const SessionPtr& p_Session, int32_t p_BorgID,
                                  ByRef<Variant> p_CustomData) noexcept {
  return plain_list<business::BillTo>("UICom::GetBillToList", progid::BillTo, [&](auto& o) {
    return o.GetBillToList(p_Session, p_BorgID, *p_CustomData);
  });
}

RecordsetPtr UICom::GetShipToList(const SessionPtr& p_Session, int32_t p_BorgID,
                                  ByRef<Variant> p_CustomData) noexcept {
  return plain_list<business::ShipTo>("UICom::GetShipToList", progid::ShipTo, [&](auto& o) {
    return o.GetShipToList(p_Session, p_BorgID, *p_CustomData);
  });
}

RecordsetPtr UICom::GetCommodityList(const SessionPtr& p_Session,
                                     ByRef<Variant> p_CustomData) noexcept {
  return plain_list<Commodity>("UICom::GetCommodityList", progid::Commodity, [&](auto& o) {
    return o.GetChildren(p_Session, 0, 3, 3, true, false, 0, *p_CustomData);
  });
}

RecordsetPtr UICom::GetCurrencyList(const SessionPtr& p_Session,
                                    ByRef<Variant> p_CustomData) noexcept {
  return plain_list<business::CurrencyCodes>(
      "UICom::GetCurrencyList", progid::CurrencyCodes,
      [&](auto& o) { return o.GetCurrencyList(p_Session, *p_CustomData); });
}

RecordsetPtr UICom::GetMfrList(const SessionPtr& p_Session, ByRef<Variant> p_CustomData) noexcept {
  return plain_list<business::Mfr>("UICom::GetMfrList", progid::Mfr,
                                   [&](auto& o) { return o.GetMfrList(p_Session, *p_CustomData); });
}

RecordsetPtr UICom::GetSupplierList(const SessionPtr& p_Session,
                                    ByRef<Variant> p_CustomData) noexcept {
  return plain_list<business::Borg>("UICom::GetSupplierList", progid::Borg, [&](auto& o) {
    return o.GetSupplierList(p_Session, *p_CustomData);
  });
}

RecordsetPtr UICom::GetUOMList(const SessionPtr& p_Session, ByRef<Variant> p_CustomData) noexcept {
  return plain_list<business::UOM>("UICom::GetUOMList", progid::UOM,
                                   [&](auto& o) { return o.GetUOMList(p_Session, *p_CustomData); });
}

RecordsetPtr UICom::GetPaymentMethodList(const SessionPtr& p_Session, int32_t p_SupplierID,
                                         int32_t p_SysUserID,
                                         ByRef<Variant> p_CustomData) noexcept {
  return plain_list<business::PaymentMethod>(
      "UICom::GetPaymentMethodList", progid::PaymentMethod, [&](auto& o) {
        return o.GetPaymentMethodList(p_Session, p_SupplierID, p_SysUserID, *p_CustomData);
      });
}

RecordsetPtr UICom::GetShipMethodList(const SessionPtr& p_Session, int32_t p_SupplierID,
                                      ByRef<Variant> p_CustomData) noexcept {
  return plain_list<business::ShipMethod>(
      "UICom::GetShipMethodList", progid::ShipMethod,
      [&](auto& o) { return o.GetShipMethodList(p_Session, p_SupplierID, *p_CustomData); });
}

RecordsetPtr UICom::GetReceiptItemStatusList(const SessionPtr& p_Session,
                                             ByRef<Variant> p_CustomData) noexcept {
  return plain_list<business::ReceiptItemStatus>(
      "UICom::GetReceiptItemStatusList", progid::ReceiptItemStatus,
      [&](auto& o) { return o.GetReceiptItemStatusList(p_Session, *p_CustomData); });
}

RecordsetPtr UICom::GetUserBorgList(const SessionPtr& p_objSession,
                                    ByRef<Variant> p_CustomData) noexcept {
  return plain_list<business::SysUser>("UICom::GetUserBorgList", progid::SysUser, [&](auto& o) {
    return o.GetUserBorgList(p_objSession, *p_CustomData);
  });
}

bool UICom::GetLocaleList(const SessionPtr& p_Session, ByRef<RecordsetPtr> rsLocales,
                          ByRef<Variant> p_CustomData) noexcept {
  return filled_list<business::Locale>(
      "UICom::GetLocaleList", progid::Locale, *rsLocales,
      [&](auto& o) { return o.GetLocaleList(p_Session, *p_CustomData); });
}

bool UICom::GetTimeZoneList(const SessionPtr& p_Session, ByRef<RecordsetPtr> rsTimeZones,
                            ByRef<Variant> p_CustomData) noexcept {
  return filled_list<business::TimeZone>(
      "UICom::GetTimeZoneList", progid::TimeZone, *rsTimeZones,
      [&](auto& o) { return o.GetTimeZoneList(p_Session, *p_CustomData); });
}

bool UICom::GetBorgCostCenters(const SessionPtr& p_Session, int32_t p_BorgID,
                               ByRef<RecordsetPtr> rsCostCenters,
                               ByRef<Variant> p_CustomData) noexcept {
  return filled_list<business::CostCenter>(
      "UICom::GetBorgCostCenters", progid::CostCenter, *rsCostCenters,
      [&](auto& o) { return o.GetBorgCostCenters(p_Session, p_BorgID, *p_CustomData); });
}

}  // namespace kxui
