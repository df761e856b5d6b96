// "KxReq03.Requisition" and "KxReq03.Templates" over the requisition tables.
// Rules: lines and header change only in an editable status (Open, Rejected, Withdrawn)
// and not while another session holds the requisition's lock; only the requisitioner
// submits, copies into templates, cancels or deletes; a submitted requisition waits for
// its approval route (or is approved at once when the route is empty).
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kxui/business/requisition.h"
#include "kxui/business/templates.h"
#include "reference/object_base.h"

namespace kxui::reference {

class RefLineItem : public business::RequisitionLineItem {
 public:
  int32_t ReqID() override { return req_id; }
  void SetReqID(int32_t v) override { req_id = v; }
  int32_t LineNum() override { return line_num; }
  void SetLineNum(int32_t v) override { line_num = v; }
  int32_t SmartFormID() override { return smart_form_id; }
  void SetSupplierID(int32_t v) override { supplier_id = v; }
  void SetSupplierName(const std::string& v) override { supplier_name = v; }
  void SetSupplierPartNum(const std::string& v) override { supplier_part_num = v; }
  void SetSupplierPartNumExt(const std::string& v) override { supplier_part_num_ext = v; }
  void SetOrderQty(const Variant& v) override { qty = v; }
  void SetUOMID(const std::string& v) override { uom_id = v; }
  void SetMfrID(int32_t v) override { mfr_id = v; }
  void SetMfrName(const std::string& v) override { mfr_name = v; }
  void SetCommodityID(int32_t v) override { commodity_id = v; }
  void SetCommodityAlias(const std::string& v) override { commodity_alias = v; }
  void SetUnitPrice(Currency v) override { unit_price = v; }
  void SetCurrencyCode(const std::string& v) override { currency_code = v; }
  void SetPartDesc(const std::string& v) override { part_desc = v; }
  void SetIsSpecialRequest(bool v) override { special = v; }

  int32_t req_id = 0, line_num = 0, smart_form_id = 0, supplier_id = 0, mfr_id = 0,
          commodity_id = 0;
  std::string supplier_name, supplier_part_num, supplier_part_num_ext, uom_id, mfr_name,
      commodity_alias, currency_code, part_desc;
  Variant qty;
  Currency unit_price;
  bool special = false;
};

class RefHeader : public business::RequisitionHeader {
 public:
  std::string ReqName() override { return name; }
  int32_t ReqStatusID() override { return status; }
  std::string Justification() override { return justification; }
  void SetJustification(const std::string& text) override { justification = text; }
  Variant CreateDate() override { return Variant(create_date); }
  std::string BorgName() override { return borg_name; }
  std::string RequisitionerName() override { return requisitioner_name; }

  int32_t req_id = 0, status = 0;
  std::string name, justification, borg_name, requisitioner_name;
  Date create_date;
};

class RefRequisition : public business::Requisition, public RefObject {
 public:
  explicit RefRequisition(DatabasePtr db) : RefObject(std::move(db), "Requisition") {}

  bool Load(const SessionPtr& session, int32_t req_id, bool lock, Variant& custom_data) override;
  std::shared_ptr<business::RequisitionHeader> Header() override { return header_; }
  bool Success() override { return success_; }

  RecordsetPtr GetRequisitionList(const SessionPtr& session, const std::string& user_name,
                                  const std::string& borg_name, const std::string& sort_by,
                                  const std::string& status_list, Variant& custom_data) override;
  bool UpdateReqName(const SessionPtr& session, int32_t req_id, const std::string& name,
                     Variant& custom_data) override;
  bool GetReqStatus(const SessionPtr& session, int32_t req_id, int32_t& status_id,
                    int32_t& number_of_items, Variant& custom_data) override;
  bool GetReqTotals(const SessionPtr& session, int32_t req_id, const std::string& currency_code,
                    Currency& sub_total, Currency& estimated_tax, Currency& total,
                    Variant& custom_data) override;
  bool Save(const SessionPtr& session, Variant& custom_data) override;
  RecordsetPtr GetLog(const SessionPtr& session, const std::string& filter,
                      Variant& custom_data) override;

  std::shared_ptr<business::RequisitionLineItem> NewLineItem() override;
  bool CommitItem(const SessionPtr& session, const std::string& reserved,
                  Variant& custom_data) override;
  bool CommitSpecialRequestItem(const SessionPtr& session, const std::string& reserved,
                                Variant& custom_data) override;
  bool CompleteItem(const SessionPtr& session, int32_t req_id, int32_t line_num,
                    Variant& custom_data) override;
  bool UpdateSpecialRequestItem(const SessionPtr& session, Variant& custom_data) override;
  bool AddFavoriteItem(const SessionPtr& session, int32_t part_base_id, double qty,
                       int32_t& req_id, int32_t& line_num, int32_t& smart_form_id,
                       Variant& custom_data) override;

  void LockRequisition(const SessionPtr& session, int32_t req_id, Variant& custom_data) override;
  void IsLockValid(const SessionPtr& session, int32_t req_id, Variant& custom_data) override;
  bool ReleaseLocks(const SessionPtr& session, Variant& custom_data) override;
  bool SubmitRequisition(const SessionPtr& session, int32_t req_id, bool workflow_flag,
                         int32_t& number_of_pos, Variant& custom_data) override;
  bool CopyRequisition(const SessionPtr& session, int32_t req_id, const std::string& name,
                       int32_t& new_req_id, int32_t& number_of_items,
                       int32_t& number_of_items_copied, int32_t flag,
                       Variant& custom_data) override;
  bool CancelRequisition(const SessionPtr& session, int32_t req_id, Variant& custom_data) override;
  bool DeleteRequisition(const SessionPtr& session, int32_t req_id, Variant& custom_data) override;
  bool MarkAsTemplate(const SessionPtr& session, int32_t req_id, int32_t template_type,
                      Variant& custom_data) override;
  // Cart: lines change under the same rules as the header (editable status, no other
  // session's lock); reading is open to the requisition's organisation.
  RecordsetPtr GetItems(const SessionPtr& session, int32_t req_id, Variant& custom_data) override;
  RecordsetPtr GetItem(const SessionPtr& session, int32_t req_id, int32_t line_num,
                       Variant& custom_data) override;
  bool UpdateItemQty(const SessionPtr& session, int32_t req_id, int32_t line_num, double qty,
                     Variant& custom_data) override;
  bool DeleteItem(const SessionPtr& session, int32_t req_id, int32_t line_num,
                  Variant& custom_data) override;
  // Every requisition lock of the session, whoever's page took it.
  bool ReleaseSessionLocks(const SessionPtr& session, Variant& custom_data) override;

  // Quick check (requisition_quick_check.cpp): the loaded requisition's lines as a
  // supplier is asked about them; prices set here are stored by Save.
  std::vector<QuickCheckLine> QuickCheckLines() override;
  std::string ReqCurrencyCode() override;
  void SetQuickCheckPrice(int32_t index, Currency price) override;

 private:
  // The requisition a new line goes to: the item's, or a new one for the session user.
  int32_t target_requisition(soci::session& sql, const Session& session, int32_t req_id);
  int32_t insert_line(soci::session& sql, int32_t req_id, const RefLineItem& item,
                      std::optional<int32_t> part_id, bool complete);

  std::shared_ptr<RefHeader> header_;
  std::shared_ptr<RefLineItem> item_;
  // Quick-check prices by line number, waiting for Save.
  std::map<int32_t, Currency> quick_check_prices_;
  // Stores the waiting quick-check prices (inside Save's change).
  void store_quick_check_prices(soci::session& sql, int32_t user_id);
};

class RefTemplates : public business::Templates, public RefObject {
 public:
  explicit RefTemplates(DatabasePtr db) : RefObject(std::move(db), "Templates") {}
  RecordsetPtr GetTemplateList(const SessionPtr& session, int32_t req_status_id,
                               Variant& custom_data) override;
};

}  // namespace kxui::reference
