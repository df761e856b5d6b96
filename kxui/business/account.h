// The user's account in the business, administration and security tiers: stored
// payment methods ("KxCom03.UserPaymentMethod"), the login check, and the record objects
// of users, organisation users, EBOs, organisations and the host.
//
// The record objects are created directly by class (not through the ClassFactory), one
// per call; they throw Failure when a member cannot be served.
//
// "KxAdminBusObj03.BorgUser" is reached late-bound (kxui::Dispatch), by member name:
// "setEboID", "setBorgID", "setSysUserID", "setSysUserIDBU" (each with one identifier),
// "fetch" (organisation, user), "setBillToID", "setShipToID", "setCostCenterID" (each
// with one identifier) and "Update" (no argument).
#pragma once

#include <cstdint>
#include <string>

#include "kxui/business/business_object.h"
#include "kxui/frame/object.h"
#include "kxui/frame/recordset.h"
#include "kxui/frame/session.h"
#include "kxui/frame/variant.h"

namespace kxui::business {

// Class names under which the runtime creates the record objects.
namespace record_class {
inline constexpr const char* kLoginValidator = "KxSecurity03.LoginValidator";
inline constexpr const char* kUser = "KxAdminBusObj03.User";
inline constexpr const char* kBorgUserRecord = "KxAdminBusObj03.BorgUserRecord";
inline constexpr const char* kEbo = "KxAdminBusObj03.Ebo";
inline constexpr const char* kBorg = "KxAdminBusObj03.BorgRecord";
inline constexpr const char* kHost = "KxAdminBusObj03.Host";
}  // namespace record_class

// "KxCom03.UserPaymentMethod": the payment methods (credit cards) a user has stored.
class UserPaymentMethod : public virtual BusinessObject {
 public:
  virtual RecordsetPtr GetDataBySysUserID(const SessionPtr& session, int32_t sys_user_id,
                                          Variant& custom_data) = 0;
  virtual RecordsetPtr GetDataBySysUserIDPayMethID(const SessionPtr& session, int32_t sys_user_id,
                                                   int32_t payment_method_id,
                                                   Variant& custom_data) = 0;
  // Stores a card's expiration and its priority among the user's methods. False (the
  // reason in GetError) when refused.
  virtual bool Update(const SessionPtr& session, int32_t sys_user_id, int32_t payment_method_id,
                      const Variant& cc_expiration, int32_t priority, Variant& custom_data) = 0;
  virtual bool Success() = 0;
};

// The security tier's check of a login within an EBO.
class LoginValidator : public virtual Object {
 public:
  // True when the password is right for the login; how it is checked is the tier's own.
  virtual bool ValidateLogin(int32_t ebo_id, const std::string& login_id,
                             const std::string& password) = 0;
  // The user that logged in, after a True answer.
  virtual Variant SysUserID() = 0;
};

// A user of an EBO. Setting the user identifier selects the stored user.
class UserRecord : public virtual Object {
 public:
  virtual void SetEboID(int32_t ebo_id) = 0;
  virtual void SetSysUserID(int32_t sys_user_id) = 0;
  // Who creates and who last changes the record.
  virtual void SetCreatedBy(int32_t sys_user_id) = 0;
  virtual void SetModifiedBy(int32_t sys_user_id) = 0;
  virtual Variant TimeZoneID() = 0;
  virtual void SetTimeZoneID(int32_t time_zone_id) = 0;
  virtual void SetLocaleID(int32_t locale_id) = 0;
  virtual void Save() = 0;
};

// A user's defaults and limits within one organisation.
class BorgUserRecord : public virtual Object {
 public:
  virtual void SetEboID(int32_t ebo_id) = 0;
  virtual void Fetch(int32_t borg_id, int32_t sys_user_id) = 0;
  virtual Variant BillToID() = 0;
  virtual Variant ShipToID() = 0;
  virtual Variant CostCenterID() = 0;
  // Amounts in the session's currency.
  virtual double SpendingLimit() = 0;
  virtual double ApprovalLimit() = 0;
};

// An EBO: its home-page news and its default locale, as a language and a country code.
class EboRecord : public virtual Object {
 public:
  virtual void SetEboID(int32_t ebo_id) = 0;
  virtual std::string News() = 0;
  virtual std::string DefaultLangCode() = 0;
  virtual std::string DefaultCountryCode() = 0;
};

// An organisation of an EBO, with its home-page news.
class BorgRecord : public virtual Object {
 public:
  virtual void SetEboID(int32_t ebo_id) = 0;
  virtual void SetBorgID(int32_t borg_id) = 0;
  virtual std::string News() = 0;
};

// The host of every EBO, with its home-page news.
class HostRecord : public virtual Object {
 public:
  virtual int32_t HostID() = 0;
  virtual void SetHostID(int32_t host_id) = 0;
  virtual std::string News() = 0;
};

}  // namespace kxui::business
