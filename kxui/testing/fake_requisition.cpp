#include "kxui/testing/fake_requisition.h"

namespace kxui::testing {

std::vector<std::string> CallLog::call_names() const {
  std::vector<std::string> names;
  for (const BusinessCall& c : calls) names.push_back(c.name);
  return names;
}

const BusinessCall* CallLog::find(std::string_view name) const {
  for (const BusinessCall& c : calls) {
    if (c.name == name) return &c;
  }
  return nullptr;
}

void CallLog::record(std::string name, std::vector<Variant> args, const SessionPtr* session,
                     Variant* custom_data) {
  if (session) sessions.push_back(*session);
  if (custom_data) {
    args.push_back(*custom_data);
    if (!custom_reply.is_empty()) *custom_data = custom_reply;
  }
  calls.push_back({std::move(name), std::move(args)});
}

void FakeLineItem::SetReqID(int32_t v) {
  req_id = v;
  write("ReqID", Variant(v));
}

void FakeLineItem::SetLineNum(int32_t v) {
  line_num = v;
  write("LineNum", Variant(v));
}

std::vector<std::string> FakeLineItem::written_names() const {
  std::vector<std::string> names;
  for (const auto& w : writes) names.push_back(w.first);
  return names;
}

Variant FakeLineItem::written(std::string_view name) const {
  for (auto it = writes.rbegin(); it != writes.rend(); ++it) {
    if (it->first == name) return it->second;
  }
  return Variant();
}

void FakeRequisition::refuse(std::string member, int32_t number, std::string description) {
  refusals_.insert(std::move(member));
  fail_with(number, "Requisition", std::move(description));
}

FakeLineItem& FakeRequisition::current() {
  if (items.empty()) throw Failure(91, "Requisition", "no line item was handed out");
  return *items.back();
}

bool FakeRequisition::answer(std::string_view member) {
  success_ = !refused(member);
  return success_;
}

bool FakeRequisition::Load(const SessionPtr& s, int32_t req_id, bool lock, Variant& custom) {
  record("Load", {Variant(req_id), Variant(lock)}, &s, &custom);
  return answer("Load");
}

RecordsetPtr FakeRequisition::GetRequisitionList(const SessionPtr& s, const std::string& user_name,
                                                 const std::string& borg_name,
                                                 const std::string& sort_by,
                                                 const std::string& status_list, Variant& custom) {
  record("GetRequisitionList",
         {Variant(user_name), Variant(borg_name), Variant(sort_by), Variant(status_list)}, &s,
         &custom);
  return answer("GetRequisitionList") ? list : nullptr;
}

bool FakeRequisition::UpdateReqName(const SessionPtr& s, int32_t req_id, const std::string& name,
                                    Variant& custom) {
  record("UpdateReqName", {Variant(req_id), Variant(name)}, &s, &custom);
  return answer("UpdateReqName");
}

bool FakeRequisition::GetReqStatus(const SessionPtr& s, int32_t req_id, int32_t& status,
                                   int32_t& items_out, Variant& custom) {
  record("GetReqStatus", {Variant(req_id)}, &s, &custom);
  if (!answer("GetReqStatus")) return false;
  status = status_id;
  items_out = number_of_items;
  return true;
}

bool FakeRequisition::GetReqTotals(const SessionPtr& s, int32_t req_id,
                                   const std::string& currency_code, Currency& sub, Currency& tax,
                                   Currency& tot, Variant& custom) {
  record("GetReqTotals", {Variant(req_id), Variant(currency_code)}, &s, &custom);
  if (!answer("GetReqTotals")) return false;
  sub = sub_total;
  tax = estimated_tax;
  tot = total;
  return true;
}

bool FakeRequisition::Save(const SessionPtr& s, Variant& custom) {
  record("Save", {Variant(header->justification)}, &s, &custom);
  return answer("Save");
}

RecordsetPtr FakeRequisition::GetLog(const SessionPtr& s, const std::string& filter,
                                     Variant& custom) {
  record("GetLog", {Variant(filter)}, &s, &custom);
  return answer("GetLog") ? log : nullptr;
}

std::shared_ptr<business::RequisitionLineItem> FakeRequisition::NewLineItem() {
  record("NewLineItem", {}, nullptr, nullptr);
  items.push_back(std::make_shared<FakeLineItem>());
  return items.back();
}

bool FakeRequisition::CommitItem(const SessionPtr& s, const std::string& reserved,
                                 Variant& custom) {
  record("CommitItem", {Variant(reserved)}, &s, &custom);
  if (!answer("CommitItem")) return false;
  if (stored_req_id != 0) current().req_id = stored_req_id;
  current().line_num = stored_line_num;
  return true;
}

bool FakeRequisition::CommitSpecialRequestItem(const SessionPtr& s, const std::string& reserved,
                                               Variant& custom) {
  record("CommitSpecialRequestItem", {Variant(reserved)}, &s, &custom);
  if (!answer("CommitSpecialRequestItem")) return false;
  if (stored_req_id != 0) current().req_id = stored_req_id;
  current().line_num = stored_line_num;
  return true;
}

bool FakeRequisition::CompleteItem(const SessionPtr& s, int32_t req_id, int32_t line_num,
                                   Variant& custom) {
  record("CompleteItem", {Variant(req_id), Variant(line_num)}, &s, &custom);
  if (!answer("CompleteItem")) return false;
  current().smart_form_id = stored_smart_form_id;
  return true;
}

bool FakeRequisition::UpdateSpecialRequestItem(const SessionPtr& s, Variant& custom) {
  record("UpdateSpecialRequestItem", {}, &s, &custom);
  return answer("UpdateSpecialRequestItem");
}

bool FakeRequisition::AddFavoriteItem(const SessionPtr& s, int32_t part_base_id, double qty,
                                      int32_t& req_id, int32_t& line_num, int32_t& smart_form_id,
                                      Variant& custom) {
  record("AddFavoriteItem", {Variant(part_base_id), Variant(qty), Variant(req_id)}, &s, &custom);
  if (!answer("AddFavoriteItem")) return false;
  if (stored_req_id != 0) req_id = stored_req_id;
  line_num = stored_line_num;
  smart_form_id = stored_smart_form_id;
  return true;
}

void FakeRequisition::LockRequisition(const SessionPtr& s, int32_t req_id, Variant& custom) {
  record("LockRequisition", {Variant(req_id)}, &s, &custom);
  answer("LockRequisition");
}

void FakeRequisition::IsLockValid(const SessionPtr& s, int32_t req_id, Variant& custom) {
  record("IsLockValid", {Variant(req_id)}, &s, &custom);
  answer("IsLockValid");
}

bool FakeRequisition::ReleaseLocks(const SessionPtr& s, Variant& custom) {
  record("ReleaseLocks", {}, &s, &custom);
  return answer("ReleaseLocks");
}

bool FakeRequisition::SubmitRequisition(const SessionPtr& s, int32_t req_id, bool workflow_flag,
                                        int32_t& pos, Variant& custom) {
  record("SubmitRequisition", {Variant(req_id), Variant(workflow_flag), Variant(pos)}, &s,
         &custom);
  if (!answer("SubmitRequisition")) return false;
  pos = number_of_pos;
  return true;
}

bool FakeRequisition::CopyRequisition(const SessionPtr& s, int32_t req_id,
                                      const std::string& name, int32_t& new_req_id,
                                      int32_t& items_out, int32_t& copied, int32_t flag,
                                      Variant& custom) {
  record("CopyRequisition", {Variant(req_id), Variant(name), Variant(flag)}, &s, &custom);
  if (!answer("CopyRequisition")) return false;
  new_req_id = copy_new_req_id;
  items_out = copy_items;
  copied = copy_copied;
  return true;
}

bool FakeRequisition::CancelRequisition(const SessionPtr& s, int32_t req_id, Variant& custom) {
  record("CancelRequisition", {Variant(req_id)}, &s, &custom);
  return answer("CancelRequisition");
}

bool FakeRequisition::DeleteRequisition(const SessionPtr& s, int32_t req_id, Variant& custom) {
  record("DeleteRequisition", {Variant(req_id)}, &s, &custom);
  return answer("DeleteRequisition");
}

bool FakeRequisition::MarkAsTemplate(const SessionPtr& s, int32_t req_id, int32_t template_type,
                                     Variant& custom) {
  record("MarkAsTemplate", {Variant(req_id), Variant(template_type)}, &s, &custom);
  return answer("MarkAsTemplate");
}

RecordsetPtr FakeTemplates::GetTemplateList(const SessionPtr& s, int32_t req_status_id,
                                            Variant& custom) {
  record("GetTemplateList", {Variant(req_status_id)}, &s, &custom);
  return list;
}

}  // namespace kxui::testing
