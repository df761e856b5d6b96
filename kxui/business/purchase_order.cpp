// Defaults of the PurchaseOrder members a business tier may leave out: each fails with 438,
// as a late-bound call to a member the object lacks would.
#include "kxui/business/purchase_order.h"

#include "kxui/frame/errors.h"
#include "kxui/frame/failure.h"

namespace kxui::business {

namespace {
[[noreturn]] void unsupported(const char* member) {
  fail(err::kNoSuchMember, "PurchaseOrder", member);
}
}  // namespace

using S = const SessionPtr&;
using Str = const std::string&;

bool PurchaseOrder::LoadPO(S, int32_t, bool, Variant&) { unsupported("LoadPO"); }
std::shared_ptr<POHeader> PurchaseOrder::Header() { unsupported("Header"); }
bool PurchaseOrder::Succeeded() { unsupported("Succeeded"); }
RecordsetPtr PurchaseOrder::GetPOItems(S, int32_t, int32_t, Variant&) {
  unsupported("GetPOItems");
}
RecordsetPtr PurchaseOrder::GetPOList(S, const Variant&, const Variant&, Str, const Variant&,
                                      const Variant&, Variant&) {
  unsupported("GetPOList");
}
RecordsetPtr PurchaseOrder::GetPOsByReq(S, int32_t, Variant&) { unsupported("GetPOsByReq"); }
RecordsetPtr PurchaseOrder::GetPOLog(S, int32_t, Str, Variant&) { unsupported("GetPOLog"); }
bool PurchaseOrder::CopyToRequisition(S, int32_t, Str, int32_t&, int32_t&, int32_t&, Variant&) {
  unsupported("CopyToRequisition");
}
bool PurchaseOrder::DeletePO(S, int32_t, Variant&) { unsupported("DeletePO"); }
bool PurchaseOrder::DeleteLines(S, const std::shared_ptr<POItems>&, int32_t, Variant&) {
  unsupported("DeleteLines");
}
RecordsetPtr PurchaseOrder::GetStatusRecord(S, int32_t, Variant&) {
  unsupported("GetStatusRecord");
}
bool PurchaseOrder::IsValidLock(S, int32_t, Variant&) { unsupported("IsValidLock"); }
bool PurchaseOrder::Reset(S, Variant&) { unsupported("Reset"); }
bool PurchaseOrder::SetPOStatus(S, int32_t, int32_t, Variant&) { unsupported("SetPOStatus"); }

}  // namespace kxui::business
