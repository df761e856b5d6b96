// Defaults of the Requisition members a business tier may leave out: each fails with 438,
// as a late-bound call to a member the object lacks would.
#include "kxui/business/requisition.h"

#include "kxui/frame/errors.h"
#include "kxui/frame/failure.h"

namespace kxui::business {

namespace {
[[noreturn]] void unsupported(const char* member) {
  fail(err::kNoSuchMember, "Requisition", member);
}
}  // namespace

using S = const SessionPtr&;
using Str = const std::string&;

RecordsetPtr Requisition::GetRequisitionList(S, Str, Str, Str, Str, Variant&) {
  unsupported("GetRequisitionList");
}
bool Requisition::UpdateReqName(S, int32_t, Str, Variant&) { unsupported("UpdateReqName"); }
bool Requisition::GetReqStatus(S, int32_t, int32_t&, int32_t&, Variant&) {
  unsupported("GetReqStatus");
}
bool Requisition::GetReqTotals(S, int32_t, Str, Currency&, Currency&, Currency&, Variant&) {
  unsupported("GetReqTotals");
}
bool Requisition::Save(S, Variant&) { unsupported("Save"); }
RecordsetPtr Requisition::GetLog(S, Str, Variant&) { unsupported("GetLog"); }

std::shared_ptr<RequisitionLineItem> Requisition::NewLineItem() { unsupported("NewLineItem"); }
bool Requisition::CommitItem(S, Str, Variant&) { unsupported("CommitItem"); }
bool Requisition::CommitSpecialRequestItem(S, Str, Variant&) {
  unsupported("CommitSpecialRequestItem");
}
bool Requisition::CompleteItem(S, int32_t, int32_t, Variant&) { unsupported("CompleteItem"); }
bool Requisition::UpdateSpecialRequestItem(S, Variant&) {
  unsupported("UpdateSpecialRequestItem");
}
bool Requisition::AddFavoriteItem(S, int32_t, double, int32_t&, int32_t&, int32_t&, Variant&) {
  unsupported("AddFavoriteItem");
}

void Requisition::LockRequisition(S, int32_t, Variant&) { unsupported("LockRequisition"); }
void Requisition::IsLockValid(S, int32_t, Variant&) { unsupported("IsLockValid"); }
bool Requisition::ReleaseLocks(S, Variant&) { unsupported("ReleaseLocks"); }
bool Requisition::SubmitRequisition(S, int32_t, bool, int32_t&, Variant&) {
  unsupported("SubmitRequisition");
}
bool Requisition::CopyRequisition(S, int32_t, Str, int32_t&, int32_t&, int32_t&, int32_t,
                                  Variant&) {
  unsupported("CopyRequisition");
}
bool Requisition::CancelRequisition(S, int32_t, Variant&) { unsupported("CancelRequisition"); }
bool Requisition::DeleteRequisition(S, int32_t, Variant&) { unsupported("DeleteRequisition"); }
bool Requisition::MarkAsTemplate(S, int32_t, int32_t, Variant&) { unsupported("MarkAsTemplate"); }

bool Requisition::ReleaseSessionLocks(S, Variant&) { unsupported("ReleaseSessionLocks"); }

// Quick check
std::vector<Requisition::QuickCheckLine> Requisition::QuickCheckLines() {
  unsupported("QuickCheckLines");
}
std::string Requisition::ReqCurrencyCode() { unsupported("ReqCurrencyCode"); }
void Requisition::SetQuickCheckPrice(int32_t, Currency) { unsupported("SetQuickCheckPrice"); }

// Cart
RecordsetPtr Requisition::GetItems(S, int32_t, Variant&) { unsupported("GetItems"); }
RecordsetPtr Requisition::GetItem(S, int32_t, int32_t, Variant&) { unsupported("GetItem"); }
bool Requisition::UpdateItemQty(S, int32_t, int32_t, double, Variant&) {
  unsupported("UpdateItemQty");
}
bool Requisition::DeleteItem(S, int32_t, int32_t, Variant&) { unsupported("DeleteItem"); }

}  // namespace kxui::business
