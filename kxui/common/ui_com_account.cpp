// UICom: login, the user's organisation defaults and preferences, stored payment
// methods and time zone.
#include <array>

#include "kxui/business/account.h"
#include "kxui/business/progids.h"
#include "kxui/common/ui_com.h"
#include "kxui/frame/services.h"

namespace kxui {

using business::record_class::kBorgUserRecord;
using business::record_class::kLoginValidator;
using business::record_class::kUser;

bool UICom::Login(const SessionPtr& p_objSession, const std::string& p_sLoginID,
                  const std::string& p_sLoginPwd, ByRef<int32_t> p_lSysUserID,
                  ByRef<Variant>) noexcept {
  return logged("UICom::Login", false, [&] {
    const int32_t ebo_id = require(p_objSession).Value();
    auto validator = create_direct<business::LoginValidator>(kLoginValidator);
    if (!validator->ValidateLogin(ebo_id, p_sLoginID, p_sLoginPwd)) return false;
    *p_lSysUserID = validator->SysUserID().to_int32();
    return true;
  });
}

bool UICom::GetBorgUser(const SessionPtr& p_Session, ByRef<Variant> rsBorgUser,
                        ByRef<Variant>) noexcept {
  return logged("UICom::GetBorgUser", false, [&] {
    const Session& session = require(p_Session);
    auto record = create_direct<business::BorgUserRecord>(kBorgUserRecord);
    record->SetEboID(session.EboID());
    record->Fetch(session.BorgID(), session.SysUserID());
    if (!rsBorgUser->is_object() || !rsBorgUser->to_object()) return false;
    auto rs = rsBorgUser->as<Recordset>();
    Fields& fields = rs->GetFields();
    for (const char* id : {"BillToID", "ShipToID", "CostCenterID"}) fields.Append(id, adInteger);
    for (const char* limit : {"SpendingLimit", "ApprovalLimit"}) {
      fields.Append(limit, adVarWChar, 100);
    }
    rs->Open();
    rs->AddNew();
    rs->set_value(0, record->BillToID());
    rs->set_value(1, record->ShipToID());
    rs->set_value(2, record->CostCenterID());
    auto money = create_direct<CurrencyFormatter>(service_class::kCurrencyFormatter);
    const int32_t locale_id = session.LocaleID();
    const std::string currency = session.CurrencyCode();
    rs->set_value(
        3, Variant(money->FormatCurrencyAmount(locale_id, currency, record->SpendingLimit())));
    rs->set_value(
        4, Variant(money->FormatCurrencyAmount(locale_id, currency, record->ApprovalLimit())));
    rs->Update();
    return true;
  });
}

bool UICom::SetUserPreferences(const SessionPtr& p_Session, ByRef<int32_t> p_lBillToID,
                               ByRef<int32_t> p_lShipToID, ByRef<int32_t> p_lCostCenterID,
                               ByRef<int32_t> p_lTimeZoneID, ByRef<int32_t> p_lLocaleID,
                               ByRef<Variant>) noexcept {
  return logged("UICom::SetUserPreferences", false, [&] {
    const Session& session = require(p_Session);
    const int32_t ebo_id = session.EboID();
    const int32_t borg_id = session.BorgID();
    const int32_t user_id = session.SysUserID();

    auto borg_user = create_direct<Dispatch>(progid::BorgUser);
    auto call = [&](std::string_view member, auto... values) {
      std::array<Variant, sizeof...(values)> args{Variant(values)...};
      borg_user->InvokeByName(member, args);
    };
    call("setEboID", ebo_id);
    call("setBorgID", borg_id);
    // The organisation-user link is keyed by the same user as the record itself.
    call("setSysUserID", user_id);
    call("setSysUserIDBU", user_id);
    call("fetch", borg_id, user_id);
    call("setBillToID", *p_lBillToID);
    call("setShipToID", *p_lShipToID);
    call("setCostCenterID", *p_lCostCenterID);
    call("Update");

    auto user = create_direct<business::UserRecord>(kUser);
    user->SetEboID(ebo_id);
    user->SetSysUserID(user_id);
    user->SetCreatedBy(user_id);
    user->SetModifiedBy(user_id);
    user->SetTimeZoneID(*p_lTimeZoneID);
    user->SetLocaleID(*p_lLocaleID);
    user->Save();
    return true;
  });
}

RecordsetPtr UICom::GetDataBySysUserID(const SessionPtr& p_Session, int32_t p_SysUserID,
                                       ByRef<Variant> p_CustomData) noexcept {
  return logged("UICom::GetDatabySysUserID", RecordsetPtr(), [&] {
    auto methods = create<business::UserPaymentMethod>(progid::UserPaymentMethod);
    RecordsetPtr rs = methods->GetDataBySysUserID(p_Session, p_SysUserID, *p_CustomData);
    check(methods, methods->Success());
    return rs;
  });
}

RecordsetPtr UICom::GetDataBySysUserIDPayMethID(const SessionPtr& p_Session, int32_t p_SysUserID,
                                                int32_t p_PaymentMethodID,
                                                ByRef<Variant> p_CustomData) noexcept {
  return logged("UICom::GetDatabySysUserIDPayMethID", RecordsetPtr(), [&] {
    auto methods = create<business::UserPaymentMethod>(progid::UserPaymentMethod);
    RecordsetPtr rs = methods->GetDataBySysUserIDPayMethID(p_Session, p_SysUserID,
                                                           p_PaymentMethodID, *p_CustomData);
    check(methods, methods->Success());
    return rs;
  });
}

bool UICom::SetCreditCardValues(const SessionPtr& p_Session, int32_t p_SysUserID,
                                int32_t p_PaymentMethodID, const Variant& p_CCExpiration,
                                int32_t p_Priority, ByRef<Variant> p_CustomData) noexcept {
  return logged("UICom::SetCreditCardValues", false, [&] {
    auto methods = create<business::UserPaymentMethod>(progid::UserPaymentMethod);
    check(methods, methods->Update(p_Session, p_SysUserID, p_PaymentMethodID, p_CCExpiration,
                                   p_Priority, *p_CustomData));
    return true;
  });
}

bool UICom::GetUserTimeZone(int32_t p_lEBOID, int32_t p_lSysUserID, ByRef<int32_t> p_lTimeZoneID,
                            ByRef<Variant>) noexcept {
  return logged("UICom::GetUserTimeZone", false, [&] {
    std::shared_ptr<business::UserRecord> user;
    try {
      user = create_direct<business::UserRecord>(kUser);
    } catch (...) {
      // No user record to read: the caller is told "no zone".
      *p_lTimeZoneID = 0;
      throw;
    }
    user->SetEboID(p_lEBOID);
    user->SetSysUserID(p_lSysUserID);
    *p_lTimeZoneID = user->TimeZoneID().to_int32();
    return true;
  });
}

}  // namespace kxui
