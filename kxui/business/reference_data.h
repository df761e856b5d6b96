// The reference data of the business tier ("KxCom03.*"): the lookup lists forms offer
// (addresses, currencies, manufacturers, suppliers, units, payment and shipping methods,
// receipt statuses, locales, time zones, cost centres) and the bill-to and ship-to
// records. Which rows a list holds and in what order is the business tier's concern.
//
// Lists are handed out as record sets. Objects with a Success() report through it
// whether their last list could be read; GetError then tells why. The others throw
// Failure.
#pragma once

#include <cstdint>
#include <string>

#include "kxui/business/business_object.h"
#include "kxui/frame/recordset.h"
#include "kxui/frame/services.h"
#include "kxui/frame/session.h"
#include "kxui/frame/variant.h"

namespace kxui::business {

// What bill-to and ship-to records share: one address with its contact.
class AddressRecord : public virtual BusinessObject {
 public:
  // Loads the record `id`; False (the reason in GetError) when it cannot be read.
  virtual bool Load(const SessionPtr& session, int32_t id, Variant& custom_data) = 0;
  // The loaded record's identifier.
  virtual double ID() = 0;
  // Its address lines, city, state, postal code and country code.
  virtual AddressParts Address() = 0;
  virtual std::string ContactName() = 0;
  virtual std::string Telephone() = 0;
  virtual std::string Email() = 0;
  virtual std::string Fax() = 0;
  virtual std::string ContactLocation() = 0;
};

// "KxCom03.BillTo": the addresses invoices of an organisation go to.
class BillTo : public virtual AddressRecord {
 public:
  virtual RecordsetPtr GetBillToList(const SessionPtr& session, int32_t borg_id,
                                     Variant& custom_data) = 0;
  virtual bool Success() = 0;
};

// "KxCom03.ShipTo": the delivery addresses of an organisation.
class ShipTo : public virtual AddressRecord {
 public:
  virtual RecordsetPtr GetShipToList(const SessionPtr& session, int32_t borg_id,
                                     Variant& custom_data) = 0;
  // Whether deliveries to the loaded address are taxed.
  virtual bool Taxable() = 0;
  virtual bool Success() = 0;
};

// "KxCom03.CurrencyCodes": rows with "CurrencyCode" and "CurrencyName".
class CurrencyCodes : public virtual BusinessObject {
 public:
  virtual RecordsetPtr GetCurrencyList(const SessionPtr& session, Variant& custom_data) = 0;
  // The currencies the session's organisation trades in.
  virtual RecordsetPtr GetCurrencyListByBorg(const SessionPtr& session, Variant& custom_data) = 0;
  virtual bool Success() = 0;
};

// "KxCom03.Mfr": manufacturers, rows with "MfrID" and "Name".
class Mfr : public virtual BusinessObject {
 public:
  virtual RecordsetPtr GetMfrList(const SessionPtr& session, Variant& custom_data) = 0;
  virtual bool Success() = 0;
};

// "KxCom03.Borg": organisations; here the suppliers, rows with "SupplierID" and "Name".
class Borg : public virtual BusinessObject {
 public:
  virtual RecordsetPtr GetSupplierList(const SessionPtr& session, Variant& custom_data) = 0;
  virtual bool Success() = 0;
};

// "KxCom03.UOM": units of measure.
class UOM : public virtual BusinessObject {
 public:
  virtual RecordsetPtr GetUOMList(const SessionPtr& session, Variant& custom_data) = 0;
  // The units for pick lists: rows with "UOMID" and its description "VeltrixDesc".
  virtual RecordsetPtr GetUOMDescList(const SessionPtr& session, Variant& custom_data) = 0;
  virtual bool Success() = 0;
};

// "KxCom03.PaymentMethod": how a user may pay a supplier.
class PaymentMethod : public virtual BusinessObject {
 public:
  virtual RecordsetPtr GetPaymentMethodList(const SessionPtr& session, int32_t supplier_id,
                                            int32_t sys_user_id, Variant& custom_data) = 0;
  virtual bool Success() = 0;
};

// "KxCom03.ShipMethod": how a supplier ships.
class ShipMethod : public virtual BusinessObject {
 public:
  virtual RecordsetPtr GetShipMethodList(const SessionPtr& session, int32_t supplier_id,
                                         Variant& custom_data) = 0;
  virtual bool Success() = 0;
};

// "KxCom03.ReceiptItemStatus": the statuses a receipt line can take.
class ReceiptItemStatus : public virtual BusinessObject {
 public:
  virtual RecordsetPtr GetReceiptItemStatusList(const SessionPtr& session,
                                                Variant& custom_data) = 0;
  virtual bool Success() = 0;
};

// "KxCom03.SysUser": the organisations the session's user belongs to.
class SysUser : public virtual BusinessObject {
 public:
  virtual RecordsetPtr GetUserBorgList(const SessionPtr& session, Variant& custom_data) = 0;
};

// "KxCom03.Locale": the locales a user may choose.
class Locale : public virtual BusinessObject {
 public:
  virtual RecordsetPtr GetLocaleList(const SessionPtr& session, Variant& custom_data) = 0;
};

// "KxCom03.TimeZone": the time zones a user may choose (15 is the zone of stored dates).
class TimeZone : public virtual BusinessObject {
 public:
  virtual RecordsetPtr GetTimeZoneList(const SessionPtr& session, Variant& custom_data) = 0;
};

// "KxCom03.CostCenter": the cost centres of an organisation.
class CostCenter : public virtual BusinessObject {
 public:
  virtual RecordsetPtr GetBorgCostCenters(const SessionPtr& session, int32_t borg_id,
                                          Variant& custom_data) = 0;
};

}  // namespace kxui::business
