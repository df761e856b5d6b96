// "KxCom03.*": the reference lists over their tables, and the bill-to and ship-to records.
// Lists answer Nothing when they cannot be read, the reason in GetError; objects without
// a Success() throw instead.
#pragma once

#include <string>

#include "kxui/business/account.h"
#include "kxui/business/reference_data.h"
#include "reference/object_base.h"

namespace kxui::reference {

// Shared by bill-to and ship-to: the record loaded last.
struct AddressRow {
  double id = 0;
  AddressParts address;
  std::string contact_name, telephone, email, fax, contact_location;
  bool taxable = false;
};

class RefBillTo : public business::BillTo, public RefObject {
 public:
  explicit RefBillTo(DatabasePtr db) : RefObject(std::move(db), "BillTo") {}
  RecordsetPtr GetBillToList(const SessionPtr& session, int32_t borg_id,
                             Variant& custom_data) override;
  bool Load(const SessionPtr& session, int32_t id, Variant& custom_data) override;
  double ID() override { return row_.id; }
  AddressParts Address() override { return row_.address; }
  std::string ContactName() override { return row_.contact_name; }
  std::string Telephone() override { return row_.telephone; }
  std::string Email() override { return row_.email; }
  std::string Fax() override { return row_.fax; }
  std::string ContactLocation() override { return row_.contact_location; }
  bool Success() override { return success_; }

 private:
  AddressRow row_;
};

class RefShipTo : public business::ShipTo, public RefObject {
 public:
  explicit RefShipTo(DatabasePtr db) : RefObject(std::move(db), "ShipTo") {}
  RecordsetPtr GetShipToList(const SessionPtr& session, int32_t borg_id,
                             Variant& custom_data) override;
  bool Load(const SessionPtr& session, int32_t id, Variant& custom_data) override;
  double ID() override { return row_.id; }
  AddressParts Address() override { return row_.address; }
  std::string ContactName() override { return row_.contact_name; }
  std::string Telephone() override { return row_.telephone; }
  std::string Email() override { return row_.email; }
  std::string Fax() override { return row_.fax; }
  std::string ContactLocation() override { return row_.contact_location; }
  bool Taxable() override { return row_.taxable; }
  bool Success() override { return success_; }

 private:
  AddressRow row_;
};

class RefCurrencyCodes : public business::CurrencyCodes, public RefObject {
 public:
  explicit RefCurrencyCodes(DatabasePtr db) : RefObject(std::move(db), "CurrencyCodes") {}
  RecordsetPtr GetCurrencyList(const SessionPtr& session, Variant& custom_data) override;
  // The organisation's own currency first, then those its suppliers price in.
  RecordsetPtr GetCurrencyListByBorg(const SessionPtr& session, Variant& custom_data) override;
  bool Success() override { return success_; }
};

class RefMfr : public business::Mfr, public RefObject {
 public:
  explicit RefMfr(DatabasePtr db) : RefObject(std::move(db), "Mfr") {}
  RecordsetPtr GetMfrList(const SessionPtr& session, Variant& custom_data) override;
  bool Success() override { return success_; }
};

class RefBorg : public business::Borg, public RefObject {
 public:
  explicit RefBorg(DatabasePtr db) : RefObject(std::move(db), "Borg") {}
  RecordsetPtr GetSupplierList(const SessionPtr& session, Variant& custom_data) override;
  bool Success() override { return success_; }
};

class RefUOM : public business::UOM, public RefObject {
 public:
  explicit RefUOM(DatabasePtr db) : RefObject(std::move(db), "UOM") {}
  RecordsetPtr GetUOMList(const SessionPtr& session, Variant& custom_data) override;
  RecordsetPtr GetUOMDescList(const SessionPtr& session, Variant& custom_data) override;
  bool Success() override { return success_; }
};

// The methods the supplier accepts (all when it names none).
class RefPaymentMethod : public business::PaymentMethod, public RefObject {
 public:
  explicit RefPaymentMethod(DatabasePtr db) : RefObject(std::move(db), "PaymentMethod") {}
  RecordsetPtr GetPaymentMethodList(const SessionPtr& session, int32_t supplier_id,
                                    int32_t sys_user_id, Variant& custom_data) override;
  bool Success() override { return success_; }
};

// The supplier's own methods and those every supplier offers.
class RefShipMethod : public business::ShipMethod, public RefObject {
 public:
  explicit RefShipMethod(DatabasePtr db) : RefObject(std::move(db), "ShipMethod") {}
  RecordsetPtr GetShipMethodList(const SessionPtr& session, int32_t supplier_id,
                                 Variant& custom_data) override;
  bool Success() override { return success_; }
};

class RefReceiptItemStatus : public business::ReceiptItemStatus, public RefObject {
 public:
  explicit RefReceiptItemStatus(DatabasePtr db) : RefObject(std::move(db), "ReceiptItemStatus") {}
  RecordsetPtr GetReceiptItemStatusList(const SessionPtr& session, Variant& custom_data) override;
  bool Success() override { return success_; }
};

class RefSysUser : public business::SysUser, public RefObject {
 public:
  explicit RefSysUser(DatabasePtr db) : RefObject(std::move(db), "SysUser") {}
  RecordsetPtr GetUserBorgList(const SessionPtr& session, Variant& custom_data) override;
};

class RefLocale : public business::Locale, public RefObject {
 public:
  explicit RefLocale(DatabasePtr db) : RefObject(std::move(db), "Locale") {}
  RecordsetPtr GetLocaleList(const SessionPtr& session, Variant& custom_data) override;
};

// The zones of the time_zones table, which is seeded from the date services' own table.
class RefTimeZone : public business::TimeZone, public RefObject {
 public:
  explicit RefTimeZone(DatabasePtr db) : RefObject(std::move(db), "TimeZone") {}
  RecordsetPtr GetTimeZoneList(const SessionPtr& session, Variant& custom_data) override;
};

class RefCostCenter : public business::CostCenter, public RefObject {
 public:
  explicit RefCostCenter(DatabasePtr db) : RefObject(std::move(db), "CostCenter") {}
  RecordsetPtr GetBorgCostCenters(const SessionPtr& session, int32_t borg_id,
                                  Variant& custom_data) override;
};

// Stored cards: only the holder and the last four digits are kept.
class RefUserPaymentMethod : public business::UserPaymentMethod, public RefObject {
 public:
  explicit RefUserPaymentMethod(DatabasePtr db) : RefObject(std::move(db), "UserPaymentMethod") {}
  RecordsetPtr GetDataBySysUserID(const SessionPtr& session, int32_t sys_user_id,
                                  Variant& custom_data) override;
  RecordsetPtr GetDataBySysUserIDPayMethID(const SessionPtr& session, int32_t sys_user_id,
                                           int32_t payment_method_id,
                                           Variant& custom_data) override;
  // A user may change only their own methods; the priority must be 1 or more.
  bool Update(const SessionPtr& session, int32_t sys_user_id, int32_t payment_method_id,
              const Variant& cc_expiration, int32_t priority, Variant& custom_data) override;
  bool Success() override { return success_; }
};

}  // namespace kxui::reference
