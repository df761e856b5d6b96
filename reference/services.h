// Table-backed versions of the platform's settings reader and log, and the reference
// tier's resource objects and utilities.
#pragma once

#include <string>

#include "kxui/business/purchase_order.h"
#include "kxui/business/resource.h"
#include "kxui/business/utils.h"
#include "kxui/frame/ntlog.h"
#include "kxui/frame/services.h"
#include "reference/object_base.h"

namespace kxui::reference {

// "KxLang03.Resource" and "KxLang_<lang>_<country>03.Resource": the texts of one locale
// ("en-US" for the default object). An unknown string gives the default string; either
// way the "@n" placeholders are filled from the argument holder.
class RefResource : public business::Resource, public RefObject {
 public:
  RefResource(DatabasePtr db, std::string locale_name)
      : RefObject(std::move(db), "Resource"), locale_(std::move(locale_name)) {}
  std::string LoadString(int16_t string_id, const std::string& default_string,
                         const Array& args) override;

 private:
  std::string locale_;
};

class RefUtils : public business::Utils, public RefObject {
 public:
  explicit RefUtils(DatabasePtr db) : RefObject(std::move(db), "Utils") {}
  Variant GetServerDate(const SessionPtr& session, Variant& custom_data) override;
  // An at_date that is Empty or Missing means now.
  bool ConvertCurrency(const SessionPtr& session, double amount, const std::string& from_currency,
                       const std::string& to_currency, const Variant& at_date, double& converted,
                       Variant& custom_data) override;
};

class RefPurchaseOrder : public business::PurchaseOrder, public RefObject {
 public:
  explicit RefPurchaseOrder(DatabasePtr db) : RefObject(std::move(db), "PurchaseOrder") {}
  bool ReleaseSessionLocks(const SessionPtr& session, Variant& custom_data) override;
  // The members below live in purchase_order.cpp.
  bool LoadPO(const SessionPtr& session, int32_t po_id, bool lock, Variant& custom_data) override;
  std::shared_ptr<business::POHeader> Header() override { return header_; }
  bool Succeeded() override { return success_; }
  RecordsetPtr GetPOItems(const SessionPtr& session, int32_t po_id, int32_t line_number,
                          Variant& custom_data) override;
  RecordsetPtr GetPOList(const SessionPtr& session, const Variant& user_name,
                         const Variant& borg_name, const std::string& po_number,
                         const Variant& sort_by, const Variant& status_list,
                         Variant& custom_data) override;
  RecordsetPtr GetPOsByReq(const SessionPtr& session, int32_t req_id,
                           Variant& custom_data) override;
  RecordsetPtr GetPOLog(const SessionPtr& session, int32_t po_id, const std::string& filter,
                        Variant& custom_data) override;
  bool CopyToRequisition(const SessionPtr& session, int32_t po_id, const std::string& req_name,
                         int32_t& new_req_id, int32_t& total_items, int32_t& items_copied,
                         Variant& custom_data) override;
  bool DeletePO(const SessionPtr& session, int32_t po_id, Variant& custom_data) override;
  bool DeleteLines(const SessionPtr& session, const std::shared_ptr<business::POItems>& items,
                   int32_t line_num, Variant& custom_data) override;
  RecordsetPtr GetStatusRecord(const SessionPtr& session, int32_t po_id,
                               Variant& custom_data) override;
  bool IsValidLock(const SessionPtr& session, int32_t po_id, Variant& custom_data) override;
  bool Reset(const SessionPtr& session, Variant& custom_data) override;
  bool SetPOStatus(const SessionPtr& session, int32_t po_id, int32_t po_status_id,
                   Variant& custom_data) override;

 private:
  std::shared_ptr<business::POHeader> header_;
};

// "KxUtility03.AppIni" over the settings table: (application, section, name) -> value,
// names compared without case as in the INI files. A missing setting answers False with
// error 5 as the INI reader does.
class TableAppIni : public AppIni, public RefObject {
 public:
  static constexpr int32_t kSettingNotFound = 5;
  explicit TableAppIni(DatabasePtr db) : RefObject(std::move(db), "AppIni") {}
  bool ReadValue(const SessionPtr& session, const std::string& name, const std::string& section,
                 const std::string& app_name, Variant& custom_data) override;
  std::string GetValue() override { return value_; }
  // Rows of (application, section, name, value) in that order.
  RecordsetPtr GetSettingsList(const SessionPtr& session, Variant& custom_data) override;
  bool Success() override { return success_; }
  ErrorInfoPtr GetError() override { return RefObject::GetError(); }

 private:
  std::string value_;
};

// Writes or replaces a setting (for the seed and administrators).
void put_setting(Database& db, const std::string& app_name, const std::string& section,
                 const std::string& name, const std::string& value);

// "KxUtility03.NTLog" into the event_log table. An entry that cannot be written is
// dropped: logging never fails the caller.
class TableLog : public NTLog {
 public:
  explicit TableLog(DatabasePtr db) : db_(std::move(db)) {}
  // 1 error, 2 warning, 4 information; anything else throws Failure 5.
  void SetEventType(int32_t type) override;
  void SetMessage(std::string text) override { message_ = std::move(text); }
  void WriteEntry() override;

 private:
  DatabasePtr db_;
  int32_t type_ = 1;
  std::string message_;
};

}  // namespace kxui::reference
