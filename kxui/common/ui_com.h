// UICom: reference data for forms (lists and ready-made HTML option lists, bill-to and
// ship-to addresses) and the user's account (login, organisation defaults, preferences,
// stored payment methods, time zone, default locale, home-page news and date).
//
// Every operation creates its objects per call and releases them before it returns. On
// failure it records the error under "UICom::<operation>" (the two payment-method reads
// spell it "UICom::GetDatabySysUserID..."), followed by a blank and the failure's own
// source, and returns False, "" or Nothing. Out and in/out arguments are written only
// when the operation succeeds, unless stated otherwise. The account operations (Login to
// GetHomeDate) also write a recorded failure to the log. UICom has no Success property.
//
// A "business failure" is a business object answering False or reporting False through
// its Success(): its own error (number, source, description) is recorded.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "kxui/common/detail/option_list.h"
#include "kxui/frame/byref.h"
#include "kxui/frame/facade.h"
#include "kxui/frame/recordset.h"

namespace kxui {

class UICom : public Facade {
 public:
  explicit UICom(std::shared_ptr<Runtime> runtime = Runtime::process());

  // ---- Plain lists ----
  // The business object's record set, as it returned it. Nothing on a business failure
  // (GetUserBorgList does not ask the object for one).

  RecordsetPtr GetBillToList(const SessionPtr& p_Session, int32_t p_BorgID,
                             ByRef<Variant> p_CustomData = {}) noexcept;  // "KxCom03.BillTo"
  RecordsetPtr GetShipToList(const SessionPtr& p_Session, int32_t p_BorgID,
                             ByRef<Variant> p_CustomData = {}) noexcept;  // "KxCom03.ShipTo"
  // The top level of the commodity tree, filtered to the user's commodities.
  RecordsetPtr GetCommodityList(const SessionPtr& p_Session,
                                ByRef<Variant> p_CustomData = {}) noexcept;  // "KxCat03.Commodity"
  RecordsetPtr GetCurrencyList(const SessionPtr& p_Session,
                               ByRef<Variant> p_CustomData = {}) noexcept;
  RecordsetPtr GetMfrList(const SessionPtr& p_Session, ByRef<Variant> p_CustomData = {}) noexcept;
  RecordsetPtr GetSupplierList(const SessionPtr& p_Session,
                               ByRef<Variant> p_CustomData = {}) noexcept;  // "KxCom03.Borg"
  RecordsetPtr GetUOMList(const SessionPtr& p_Session, ByRef<Variant> p_CustomData = {}) noexcept;
  RecordsetPtr GetPaymentMethodList(const SessionPtr& p_Session, int32_t p_SupplierID,
                                    int32_t p_SysUserID, ByRef<Variant> p_CustomData = {}) noexcept;
  RecordsetPtr GetShipMethodList(const SessionPtr& p_Session, int32_t p_SupplierID,
                                 ByRef<Variant> p_CustomData = {}) noexcept;
  RecordsetPtr GetReceiptItemStatusList(const SessionPtr& p_Session,
                                        ByRef<Variant> p_CustomData = {}) noexcept;
  // The organisations of the session's user ("KxCom03.SysUser").
  RecordsetPtr GetUserBorgList(const SessionPtr& p_objSession,
                               ByRef<Variant> p_CustomData = {}) noexcept;

  // The list goes to the out argument (even when empty); True when it has a row, False
  // without an error when it has none. On failure the out argument keeps its value.
  bool GetLocaleList(const SessionPtr& p_Session, ByRef<RecordsetPtr> rsLocales,
                     ByRef<Variant> p_CustomData = {}) noexcept;
  bool GetTimeZoneList(const SessionPtr& p_Session, ByRef<RecordsetPtr> rsTimeZones,
                       ByRef<Variant> p_CustomData = {}) noexcept;
  bool GetBorgCostCenters(const SessionPtr& p_Session, int32_t p_BorgID,
                          ByRef<RecordsetPtr> rsCostCenters,
                          ByRef<Variant> p_CustomData = {}) noexcept;

  // ---- HTML option lists ----
  // p_RetVal receives one <OPTION> per row, in the list's order, with no separator; ""
  // for an empty list. Quoted form: <OPTION VALUE="v">text</OPTION>; unquoted form:
  // <OPTION VALUE=v>text</OPTION>; a selected row starts "<OPTION Selected VALUE=".
  // Every row whose key equals p_Selected is selected (omitted: "", or 0 for suppliers);
  // Null keys never match and Null values or texts add nothing. True; False on a
  // business failure, p_RetVal then unchanged.
  //
  // INJECTION HAZARD: values and texts are inserted exactly as stored, without HTML
  // escaping (pages depend on this markup). A stored `"`, `<` or `</OPTION><script>`
  // ends up in the page as markup; call these only over trusted reference data.

  // Quoted; value "CommodityID", text "Description"; selected by "CommodityID" (as text).
  bool GetCommodityList2(const SessionPtr& p_Session, ByRef<std::string> p_RetVal,
                         const std::string& p_Selected = "",
                         ByRef<Variant> p_CustomData = {}) noexcept;
  // Quoted; value "CurrencyCode", text code "-" "CurrencyName"; selected by the code.
  bool GetCurrencyList2(const SessionPtr& p_Session, ByRef<std::string> p_RetVal,
                        const std::string& p_Selected = "",
                        ByRef<Variant> p_CustomData = {}) noexcept;
  // As GetCurrencyList2 over the organisation's currencies, unquoted (a code holding a
  // blank breaks the attribute; pages rely on the form as it is).
  bool GetCurrencyListByBorg(const SessionPtr& p_Session, ByRef<std::string> p_RetVal,
                             const std::string& p_Selected = "",
                             ByRef<Variant> p_CustomData = {}) noexcept;
  // Quoted; value and text "Name"; selected by "Name" or by "MfrID".
  bool GetMfrList2(const SessionPtr& p_Session, ByRef<std::string> p_RetVal,
                   const std::string& p_Selected = "", ByRef<Variant> p_CustomData = {}) noexcept;
  // Unquoted; value "SupplierID", text "Name"; selected by "SupplierID" as a number.
  bool GetSupplierList2(const SessionPtr& p_Session, ByRef<std::string> p_RetVal,
                        int32_t p_Selected = 0, ByRef<Variant> p_CustomData = {}) noexcept;
  // Quoted; value "UOMID", text "UOMID" "-" "VeltrixDesc"; selected by "UOMID".
  bool GetUOMList2(const SessionPtr& p_Session, ByRef<std::string> p_RetVal,
                   const std::string& p_Selected = "", ByRef<Variant> p_CustomData = {}) noexcept;

  // ---- Addresses ----
  // One row: "BillToID" (double), "DisplayBillToAddress" (text 300, the address laid out
  // for the session's locale, each line ending "\r\n"), "BillToContactName",
  // "BillToTelephone" (35), "BillToEmail" (80), "BillToFax", "BillToContactLocation"
  // (35). Nothing on a business failure or a value too long for its column.
  RecordsetPtr GetBillToData(const SessionPtr& p_Session, int32_t p_BillToID,
                             ByRef<Variant> p_CustomData = {}) noexcept;
  // The same with "ShipTo..." names, then "Taxable" (Boolean).
  RecordsetPtr GetShipToData(const SessionPtr& p_Session, int32_t p_ShipToID,
                             ByRef<Variant> p_CustomData = {}) noexcept;

  // ---- Account ----

  // Checks the login and password, as given, within the EBO of the session's default
  // value. True with p_lSysUserID set to the user; False for a refused login, with
  // nothing recorded and p_lSysUserID unchanged.
  bool Login(const SessionPtr& p_objSession, const std::string& p_sLoginID,
             const std::string& p_sLoginPwd, ByRef<int32_t> p_lSysUserID,
             ByRef<Variant> p_CustomData = {}) noexcept;

  // When rsBorgUser holds a record set (new and closed), fills it with one row of the
  // session user's defaults in the session's organisation: "BillToID", "ShipToID",
  // "CostCenterID" (Int32), "SpendingLimit", "ApprovalLimit" (text 100, in the session's
  // currency and locale), and returns True. When it holds no object, False without an
  // error.
  bool GetBorgUser(const SessionPtr& p_Session, ByRef<Variant> rsBorgUser,
                   ByRef<Variant> p_CustomData = {}) noexcept;

  // Stores the user's default bill-to, ship-to and cost centre in the session's
  // organisation and the user's time zone and locale. True. The arguments are only read.
  bool SetUserPreferences(const SessionPtr& p_Session, ByRef<int32_t> p_lBillToID,
                          ByRef<int32_t> p_lShipToID, ByRef<int32_t> p_lCostCenterID,
                          ByRef<int32_t> p_lTimeZoneID, ByRef<int32_t> p_lLocaleID,
                          ByRef<Variant> p_CustomData = {}) noexcept;

  // The user's stored payment methods ("KxCom03.UserPaymentMethod"), all of them or one.
  // Nothing on a business failure.
  RecordsetPtr GetDataBySysUserID(const SessionPtr& p_Session, int32_t p_SysUserID,
                                  ByRef<Variant> p_CustomData = {}) noexcept;
  RecordsetPtr GetDataBySysUserIDPayMethID(const SessionPtr& p_Session, int32_t p_SysUserID,
                                           int32_t p_PaymentMethodID,
                                           ByRef<Variant> p_CustomData = {}) noexcept;
  // Stores a card's expiration and priority. True; False on a business failure.
  bool SetCreditCardValues(const SessionPtr& p_Session, int32_t p_SysUserID,
                           int32_t p_PaymentMethodID, const Variant& p_CCExpiration,
                           int32_t p_Priority, ByRef<Variant> p_CustomData = {}) noexcept;

  // The user's stored time zone. True. When the user record cannot be created,
  // p_lTimeZoneID is set to 0 and the result is False (the failure recorded).
  bool GetUserTimeZone(int32_t p_lEBOID, int32_t p_lSysUserID, ByRef<int32_t> p_lTimeZoneID,
                       ByRef<Variant> p_CustomData = {}) noexcept;

  // The EBO's default locale as "<language>_<country>"; "" on failure.
  std::string GetEBODefaultLocale(int32_t EBOID, ByRef<Variant> p_CustomData = {}) noexcept;

  // The home-page news of an EBO, an organisation or the host. True.
  bool GetEboNews(int32_t p_lEBOID, ByRef<std::string> p_sEboNews,
                  ByRef<Variant> p_CustomData = {}) noexcept;
  bool GetBorgNews(int32_t p_lBorgID, int32_t p_lEBOID, ByRef<std::string> p_sBorgNews,
                   ByRef<Variant> p_CustomData = {}) noexcept;
  bool GetHostNews(ByRef<std::string> p_sHostNews, ByRef<Variant> p_CustomData = {}) noexcept;

  // Today in the user's zone (always converted from zone 15, the identity there), as the
  // user's locale shows a date in the "DateFormat" style. True.
  bool GetHomeDate(const SessionPtr& p_objSession, ByRef<std::string> p_sHomeDate,
                   ByRef<Variant> p_CustomData = {}) noexcept;

 private:
  // A business list passed through; Success() is asked where T has it.
  template <class T, class Call>
  RecordsetPtr plain_list(std::string_view source, std::string_view progid, Call&& call) noexcept;
  // A list stored in `out`; True when it has a row.
  template <class T, class Call>
  bool filled_list(std::string_view source, std::string_view progid, RecordsetPtr& out,
                   Call&& call) noexcept;
  // A business list rendered as options into `ret_val`. The selection matcher is built
  // by `key_of` inside the failure handler: building it allocates, and an allocation
  // failure before the handler would end the process.
  template <class T, class KeyOf, class Call>
  bool option_list(std::string_view source, std::string_view progid, std::string& ret_val,
                   const detail::OptionList& list, KeyOf&& key_of, Call&& call) noexcept;
  // One-row address record of a loaded bill-to or ship-to object.
  template <class T>
  RecordsetPtr address_data(std::string_view source, std::string_view progid,
                            std::string_view prefix, const SessionPtr& session, int32_t id,
                            Variant& custom_data) noexcept;
  // guarded(), and a recorded failure is also written to the log.
  template <class R, class Body>
  R logged(std::string_view source, R failure_value, Body&& body) noexcept;
};

template <class R, class Body>
R UICom::logged(std::string_view source, R failure_value, Body&& body) noexcept {
  bool done = false;
  R result = guarded(source, std::move(failure_value), [&] {
    R r = body();
    done = true;
    return r;
  });
  if (!done) LogError();
  return result;
}

}  // namespace kxui
