// UIWF: a requisition as its approver sees it: the header with the approval step, and
// the lines the step covers.
#include "kxui/business/approvals.h"
#include "kxui/business/progids.h"
#include "kxui/business/requisition.h"
#include "kxui/frame/display.h"
#include "kxui/frame/settings.h"
#include "kxui/workflow/ui_wf.h"

namespace kxui {

namespace {

// Result code with which the business tier reports a step without items.
constexpr int32_t kItemsNoData = 6;

// Header columns, in order; the last four come from the approval step.
enum HeaderColumn : int32_t {
  kReqBorgName,
  kReqName,
  kRequisitionerName,
  kCreateDate,
  kJustification,
  kApprovalTypeDesc,
  kApprovalStatusID,
  kReceiveDate,
  kApproverID,
};

RecordsetPtr new_header_recordset() {
  auto rs = std::make_shared<Recordset>();
  Fields& f = rs->GetFields();
  f.Append("ReqBorgName", adVarWChar, 100, adFldUnspecified);
  f.Append("ReqName", adVarWChar, 100, adFldUnspecified);
  f.Append("RequisitionerName", adVarWChar, 100, adFldUnspecified);
  f.Append("CreateDate", adVarWChar, 100, adFldUnspecified);
  f.Append("Justification", adVarWChar, 256, adFldUnspecified);
  f.Append("ApprovalTypeDesc", adVarWChar, 100, adFldUnspecified);
  f.Append("ApprovalStatusID", adVarWChar, 100, adFldUnspecified);
  f.Append("ReceiveDate", adVarWChar, 100, adFldUnspecified);
  f.Append("ApproverID", adInteger, 0, adFldUnspecified);
  rs->Open();
  return rs;
}

}  // namespace

RecordsetPtr UIWF::GetHeaderRs(const SessionPtr& p_Session, int32_t p_lReqID, int32_t p_lSeqNum,
                               bool p_bLockReq, ByRef<Variant> p_CustomData) noexcept {
  // Recorded under UIReq's source text on purpose; callers match on it.
  return guarded(
      "UIReq::GetHeaderRs", RecordsetPtr(),
      [&] {
        auto ini = create<AppIni>(progid::AppIni);
        DisplayContext ctx(runtime(), require(p_Session), read_date_style(*ini, p_Session, *p_CustomData));
        RecordsetPtr rs = new_header_recordset();
        rs->AddNew();

        auto req = create<business::Requisition>(progid::Requisition);
        check(*req, req->Load(p_Session, p_lReqID, p_bLockReq, *p_CustomData));
        auto header = req->Header();
        if (!header) fail(err::kObjectNotSet);
        rs->set_value(kReqBorgName, Variant(header->BorgName()));
        rs->set_value(kReqName, Variant(header->ReqName()));
        rs->set_value(kRequisitionerName, Variant(header->RequisitionerName()));
        rs->set_value(kJustification, Variant(header->Justification()));
        rs->set_value(kCreateDate, Variant(ctx.date_text(header->CreateDate())));

        if (p_lSeqNum > -1) {
          auto approval = create<business::Approval>(progid::Approval);
          check(*approval, approval->Load(p_Session, p_lReqID, p_lSeqNum, *p_CustomData));
          rs->set_value(kApprovalTypeDesc, Variant(approval->ApprovalTypeDesc()));
          rs->set_value(kApprovalStatusID, Variant(approval->ApprovalStatusID()));
          rs->set_value(kApproverID, Variant(approval->ApproverID()));
          rs->set_value(kReceiveDate, Variant(ctx.date_text(approval->ReceivedDate())));
        }
        rs->Update();
        return rs;
      },
      Track::kSuccess);
}

RecordsetPtr UIWF::GetApprovalItemsRs(const SessionPtr& p_Session, int32_t p_lReqID,
                                      int32_t p_lSeqNum, ByRef<Variant> p_CustomData) noexcept {
  return guarded(
      "UIWF::GetApprovalItemsRs", RecordsetPtr(),
      [&] {
        auto rs = std::make_shared<Recordset>();
        rs->SetCursorLocation(adUseClient);
        rs->GetFields().Append("LineNum", adInteger, 0, adFldUnspecified);
        rs->Open();

        auto items = create<business::ApprovalItems>(progid::ApprovalItems);
        check(*items, items->Load(p_Session, p_lReqID, p_lSeqNum, *p_CustomData) ||
                          items->ResultCode() == kItemsNoData);
        const auto list = items->Items();
        rs->reserve(static_cast<int32_t>(list.size()));
        for (const auto& item : list) {
          if (!item) fail(err::kObjectNotSet);
          rs->AddNew();
          rs->set_value(0, Variant(item->LineNum()));
        }
        // Returned as it stands: on the last row added, not moved back to the first.
        return rs;
      },
      Track::kSuccess);
}

}  // namespace kxui
