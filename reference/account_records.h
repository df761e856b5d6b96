// The administration record objects (created by class, one per call) and
// "KxAdminBusObj03.BorgUser", the late-bound organisation-user record. Members throw
// Failure when they cannot be served; a record must be selected before it is read.
#pragma once

#include <optional>
#include <string>

#include "kxui/business/account.h"
#include "kxui/frame/runtime.h"
#include "reference/database.h"

namespace kxui::reference {

// A user's stored locale and zone.
class RefUserRecord : public business::UserRecord {
 public:
  explicit RefUserRecord(DatabasePtr db) : db_(std::move(db)) {}
  void SetEboID(int32_t ebo_id) override { ebo_id_ = ebo_id; }
  void SetSysUserID(int32_t sys_user_id) override;
  void SetCreatedBy(int32_t) override {}  // users are created by the seed and the admin tools
  void SetModifiedBy(int32_t sys_user_id) override { modified_by_ = sys_user_id; }
  Variant TimeZoneID() override;
  void SetTimeZoneID(int32_t time_zone_id) override { time_zone_id_ = time_zone_id; }
  void SetLocaleID(int32_t locale_id) override { locale_id_ = locale_id; }
  // Stores the zone and locale; an unknown zone or locale is refused.
  void Save() override;

 private:
  DatabasePtr db_;
  int32_t ebo_id_ = 0, modified_by_ = 0;
  std::optional<int32_t> user_;
  int32_t time_zone_id_ = 0, locale_id_ = 0;
};

// The organisation-user defaults, read-only by interface.
class RefBorgUserRecord : public business::BorgUserRecord {
 public:
  explicit RefBorgUserRecord(DatabasePtr db) : db_(std::move(db)) {}
  void SetEboID(int32_t ebo_id) override { ebo_id_ = ebo_id; }
  // A user without stored defaults reads Null identifiers and a spending limit of 0.
  void Fetch(int32_t borg_id, int32_t sys_user_id) override;
  Variant BillToID() override { return id_or_null(bill_to_); }
  Variant ShipToID() override { return id_or_null(ship_to_); }
  Variant CostCenterID() override { return id_or_null(cost_center_); }
  double SpendingLimit() override;
  double ApprovalLimit() override;

 private:
  static Variant id_or_null(std::optional<int32_t> id) {
    return id ? Variant(*id) : Variant::null();
  }
  void require_fetched() const;
  DatabasePtr db_;
  int32_t ebo_id_ = 0;
  bool fetched_ = false;
  std::optional<int32_t> bill_to_, ship_to_, cost_center_;
  Currency spending_, approval_;
};

// "KxAdminBusObj03.BorgUser": the setters, "fetch" and "Update" by name. Update stores the
// bill-to, ship-to and cost centre, each of which must belong to the organisation (0
// clears it).
class RefBorgUser : public Dispatch {
 public:
  explicit RefBorgUser(DatabasePtr db) : db_(std::move(db)) {}
  int32_t GetIDOfName(std::string_view name) override;
  Variant Invoke(int32_t dispid, std::span<Variant> args) override;

 private:
  void update();
  DatabasePtr db_;
  int32_t ebo_id_ = 0, borg_id_ = 0, sys_user_id_ = 0, borg_user_id_ = 0;
  bool fetched_ = false;
  int32_t bill_to_ = 0, ship_to_ = 0, cost_center_ = 0;
};

class RefEboRecord : public business::EboRecord {
 public:
  explicit RefEboRecord(DatabasePtr db) : db_(std::move(db)) {}
  void SetEboID(int32_t ebo_id) override;
  std::string News() override { return require().news; }
  std::string DefaultLangCode() override { return require().lang; }
  std::string DefaultCountryCode() override { return require().country; }

 private:
  struct Row {
    std::string news, lang, country;
  };
  const Row& require() const;
  DatabasePtr db_;
  std::optional<Row> row_;
};

// An organisation's news: its newest item's text, "" when it has none.
class RefBorgRecord : public business::BorgRecord {
 public:
  explicit RefBorgRecord(DatabasePtr db) : db_(std::move(db)) {}
  void SetEboID(int32_t) override {}
  void SetBorgID(int32_t borg_id) override { borg_id_ = borg_id; }
  std::string News() override;

 private:
  DatabasePtr db_;
  std::optional<int32_t> borg_id_;
};

class RefHostRecord : public business::HostRecord {
 public:
  explicit RefHostRecord(DatabasePtr db) : db_(std::move(db)) {}
  int32_t HostID() override { return host_id_; }
  void SetHostID(int32_t host_id) override { host_id_ = host_id; }
  std::string News() override;

 private:
  DatabasePtr db_;
  int32_t host_id_ = 1;
};

}  // namespace kxui::reference
