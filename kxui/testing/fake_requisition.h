// Fakes of "KxReq03.Requisition" and "KxReq03.Templates" for façade tests. They record
// every call with its arguments, answer with values a test sets, and refuse (answer
// False, or Success False, with the error given to refuse) any member a test names:
//
//   auto req = std::make_shared<FakeRequisition>();
//   env->provide(progid::Requisition, req);
//   req->refuse("CommitItem", 77, "supplier blocked");
//   ... call the façade ...
//   EXPECT_EQ(req->call_names(), (std::vector<std::string>{"NewLineItem", "CommitItem"}));
#pragma once

#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kxui/business/requisition.h"
#include "kxui/business/templates.h"
#include "kxui/testing/test_runtime.h"

namespace kxui::testing {

// One business call: the member and its arguments after the session, as they were
// passed in (in/out arguments with their incoming values; custom data last).
struct BusinessCall {
  std::string name;
  std::vector<Variant> args;
};

// Keeps the calls of a fake, and the refusals a test asked for.
class CallLog {
 public:
  std::vector<BusinessCall> calls;
  std::vector<SessionPtr> sessions;  // the session of each call, when it took one
  // Written into the custom data of every call when not Empty.
  Variant custom_reply;

  std::vector<std::string> call_names() const;
  // The first call of a member, or nullptr.
  const BusinessCall* find(std::string_view name) const;
  bool refused(std::string_view name) const { return refusals_.count(std::string(name)) > 0; }

 protected:
  void record(std::string name, std::vector<Variant> args, const SessionPtr* session,
              Variant* custom_data);
  std::set<std::string, std::less<>> refusals_;
};

class FakeRequisitionHeader : public business::RequisitionHeader {
 public:
  std::string ReqName() override { return name; }
  int32_t ReqStatusID() override { return status_id; }
  std::string Justification() override { return justification; }
  void SetJustification(const std::string& text) override { justification = text; }
  Variant CreateDate() override { return create_date; }
  std::string BorgName() override { return borg_name; }
  std::string RequisitionerName() override { return requisitioner_name; }

  std::string name = "Office chairs";
  int32_t status_id = 1;
  std::string justification;
  Variant create_date = Variant(Date::from_civil(2024, 3, 5, 22, 30, 0));
  std::string borg_name = "Springfield Works";
  std::string requisitioner_name = "Pat Doe";
};

// A line item that keeps every value written to it, in order.
class FakeLineItem : public business::RequisitionLineItem {
 public:
  int32_t ReqID() override { return req_id; }
  void SetReqID(int32_t v) override;
  int32_t LineNum() override { return line_num; }
  void SetLineNum(int32_t v) override;
  int32_t SmartFormID() override { return smart_form_id; }
  void SetSupplierID(int32_t v) override { write("SupplierID", Variant(v)); }
  void SetSupplierName(const std::string& v) override { write("SupplierName", Variant(v)); }
  void SetSupplierPartNum(const std::string& v) override { write("SupplierPartNum", Variant(v)); }
  void SetSupplierPartNumExt(const std::string& v) override {
    write("SupplierPartNumExt", Variant(v));
  }
  void SetOrderQty(const Variant& v) override { write("OrderQty", v); }
  void SetUOMID(const std::string& v) override { write("UOMID", Variant(v)); }
  void SetMfrID(int32_t v) override { write("MfrID", Variant(v)); }
  void SetMfrName(const std::string& v) override { write("MfrName", Variant(v)); }
  void SetCommodityID(int32_t v) override { write("CommodityID", Variant(v)); }
  void SetCommodityAlias(const std::string& v) override { write("CommodityAlias", Variant(v)); }
  void SetUnitPrice(Currency v) override { write("UnitPrice", Variant(v)); }
  void SetCurrencyCode(const std::string& v) override { write("CurrencyCode", Variant(v)); }
  void SetPartDesc(const std::string& v) override { write("PartDesc", Variant(v)); }
  void SetIsSpecialRequest(bool v) override { write("IsSpecialRequest", Variant(v)); }

  std::vector<std::string> written_names() const;
  // The last value written to a property; Empty when it was never written.
  Variant written(std::string_view name) const;

  int32_t req_id = 0;
  int32_t line_num = 0;
  int32_t smart_form_id = 0;
  std::vector<std::pair<std::string, Variant>> writes;

 private:
  void write(std::string name, Variant v) { writes.emplace_back(std::move(name), std::move(v)); }
};

class FakeRequisition : public business::Requisition, public FakeBusinessObject, public CallLog {
 public:
  // The member answers False (or Success False) and reports this error.
  void refuse(std::string member, int32_t number = 1001, std::string description = "refused");

  ErrorInfoPtr GetError() override { return FakeBusinessObject::GetError(); }
  bool Load(const SessionPtr& s, int32_t req_id, bool lock, Variant& custom) override;
  std::shared_ptr<business::RequisitionHeader> Header() override { return header; }
  bool Success() override { return success_; }

  RecordsetPtr GetRequisitionList(const SessionPtr& s, const std::string& user_name,
                                  const std::string& borg_name, const std::string& sort_by,
                                  const std::string& status_list, Variant& custom) override;
  bool UpdateReqName(const SessionPtr& s, int32_t req_id, const std::string& name,
                     Variant& custom) override;
  bool GetReqStatus(const SessionPtr& s, int32_t req_id, int32_t& status, int32_t& items,
                    Variant& custom) override;
  bool GetReqTotals(const SessionPtr& s, int32_t req_id, const std::string& currency_code,
                    Currency& sub, Currency& tax, Currency& tot, Variant& custom) override;
  bool Save(const SessionPtr& s, Variant& custom) override;
  RecordsetPtr GetLog(const SessionPtr& s, const std::string& filter, Variant& custom) override;

  std::shared_ptr<business::RequisitionLineItem> NewLineItem() override;
  bool CommitItem(const SessionPtr& s, const std::string& reserved, Variant& custom) override;
  bool CommitSpecialRequestItem(const SessionPtr& s, const std::string& reserved,
                                Variant& custom) override;
  bool CompleteItem(const SessionPtr& s, int32_t req_id, int32_t line_num,
                    Variant& custom) override;
  bool UpdateSpecialRequestItem(const SessionPtr& s, Variant& custom) override;
  bool AddFavoriteItem(const SessionPtr& s, int32_t part_base_id, double qty, int32_t& req_id,
                       int32_t& line_num, int32_t& smart_form_id, Variant& custom) override;

  void LockRequisition(const SessionPtr& s, int32_t req_id, Variant& custom) override;
  void IsLockValid(const SessionPtr& s, int32_t req_id, Variant& custom) override;
  bool ReleaseLocks(const SessionPtr& s, Variant& custom) override;
  bool SubmitRequisition(const SessionPtr& s, int32_t req_id, bool workflow_flag,
                         int32_t& number_of_pos, Variant& custom) override;
  bool CopyRequisition(const SessionPtr& s, int32_t req_id, const std::string& name,
                       int32_t& new_req_id, int32_t& number_of_items,
                       int32_t& number_of_items_copied, int32_t flag, Variant& custom) override;
  bool CancelRequisition(const SessionPtr& s, int32_t req_id, Variant& custom) override;
  bool DeleteRequisition(const SessionPtr& s, int32_t req_id, Variant& custom) override;
  bool MarkAsTemplate(const SessionPtr& s, int32_t req_id, int32_t template_type,
                      Variant& custom) override;

  // Answers.
  std::shared_ptr<FakeRequisitionHeader> header = std::make_shared<FakeRequisitionHeader>();
  RecordsetPtr list;
  RecordsetPtr log;
  int32_t status_id = 1;
  int32_t number_of_items = 0;
  Currency sub_total, estimated_tax, total;
  // What storing a line assigns: the requisition (0 keeps the one given), the line
  // number, and the smart form (known after CompleteItem). Also the favourite add's.
  int32_t stored_req_id = 0;
  int32_t stored_line_num = 1;
  int32_t stored_smart_form_id = 0;
  // The copy's new identifier, number of items and number copied.
  int32_t copy_new_req_id = 0, copy_items = 0, copy_copied = 0;
  int32_t number_of_pos = 0;

  std::vector<std::shared_ptr<FakeLineItem>> items;  // handed out by NewLineItem

 private:
  bool answer(std::string_view member);
  FakeLineItem& current();
  bool success_ = true;
};

class FakeTemplates : public business::Templates, public FakeBusinessObject, public CallLog {
 public:
  ErrorInfoPtr GetError() override { return FakeBusinessObject::GetError(); }
  RecordsetPtr GetTemplateList(const SessionPtr& s, int32_t req_status_id,
                               Variant& custom) override;
  RecordsetPtr list;
};

}  // namespace kxui::testing
