// UIReq: the requisition list, header and status.
#include "kxui/requisition/ui_req.h"

#include "kxui/business/progids.h"
#include "kxui/business/requisition.h"
#include "kxui/frame/display.h"
#include "kxui/frame/paging.h"
#include "kxui/frame/settings.h"

namespace kxui {

UIReq::UIReq(std::shared_ptr<Runtime> runtime) : Facade("UIReq", std::move(runtime)) {}

bool UIReq::isEditable(int32_t status_id) noexcept {
  for (int32_t editable : {-1, 1, 3, 4}) {
    if (status_id == editable) return true;
  }
  return false;
}

RecordsetPtr UIReq::GetListPage(const SessionPtr& p_Session, const std::string& p_sUserName,
                                const std::string& p_sBorgName, const std::string& p_sSortBy,
                                const std::string& p_sStatusList, int32_t p_lPage,
                                ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIReq::GetListPage", RecordsetPtr(), [&] {
    auto req = create<business::Requisition>(progid::Requisition);
    RecordsetPtr list = req->GetRequisitionList(p_Session, p_sUserName, p_sBorgName, p_sSortBy,
                                                p_sStatusList, *p_CustomData);
    check(*req, req->Success());
    Recordset& source = require(list);

    require(p_Session);
    auto ini = create<AppIni>(progid::AppIni);
    const int32_t date_style = read_date_style(*ini, p_Session, *p_CustomData);
    const DisplayColumn columns[] = {date_display("CreateDate"), date_display("SubmitDate")};
    return display_list_page(runtime(), *ini, p_Session, *p_CustomData, source, p_lPage,
                             date_style, columns);
  });
}

bool UIReq::GetReqName(const SessionPtr& p_Session, int32_t p_ReqID, ByRef<Variant> m_ReqName,
                       ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIReq::GetReqName", false, [&] {
    auto req = create<business::Requisition>(progid::Requisition);
    if (p_ReqID > 0) {
      check(*req, req->Load(p_Session, p_ReqID, false, *p_CustomData));
      *m_ReqName = Variant(require(req->Header()).ReqName());
    }
    // Whatever the caller passed counts by its text; Null and values without one do not.
    const std::optional<std::string> name = m_ReqName->try_to_string();
    return name.has_value() && !name->empty();
  });
}

bool UIReq::UpdateReqName(const SessionPtr& p_Session, int32_t p_ReqID,
                          const std::string& p_ReqName, ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIReq::UpdateReqName", false, [&] {
    auto req = create<business::Requisition>(progid::Requisition);
    check(*req, req->UpdateReqName(p_Session, p_ReqID, p_ReqName, *p_CustomData));
    return true;
  });
}

bool UIReq::GetReqStatus(const SessionPtr& p_Session, int32_t p_lReqID,
                         ByRef<Variant> p_lReqStatusID, ByRef<Variant> p_lNumberOfItems,
                         ByRef<Variant> p_bEditable, ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIReq::GetReqStatus", false, [&] {
    auto req = create<business::Requisition>(progid::Requisition);
    int32_t status = 0, items = 0;
    check(*req, req->GetReqStatus(p_Session, p_lReqID, status, items, *p_CustomData));
    *p_lReqStatusID = Variant(status);
    *p_lNumberOfItems = Variant(items);
    *p_bEditable = Variant(isEditable(status));
    return true;
  });
}

bool UIReq::GetReqTotals(const SessionPtr& p_Session, int32_t p_lReqID, ByRef<Variant> p_sSubTotal,
                         ByRef<Variant> p_sEstimatedTax, ByRef<Variant> p_sTotal,
                         ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIReq::GetReqTotals", false, [&] {
    auto req = create<business::Requisition>(progid::Requisition);
    const Session& session = require(p_Session);
    const std::string currency = session.CurrencyCode();
    const int32_t locale_id = session.LocaleID();
    Currency sub_total, tax, total;
    check(*req,
          req->GetReqTotals(p_Session, p_lReqID, currency, sub_total, tax, total, *p_CustomData));
    auto money = create_direct<CurrencyFormatter>(service_class::kCurrencyFormatter);
    std::string texts[3];
    int i = 0;
    for (Currency amount : {sub_total, tax, total}) {
      texts[i++] = money->FormatCurrencyAmount(locale_id, currency, amount.to_double());
    }
    *p_sSubTotal = Variant(std::move(texts[0]));
    *p_sEstimatedTax = Variant(std::move(texts[1]));
    *p_sTotal = Variant(std::move(texts[2]));
    return true;
  });
}

bool UIReq::GetHeaderJustification(const SessionPtr& p_Session, int32_t p_lReqID,
                                   ByRef<Variant> p_sJustification, ByRef<Variant> p_bEditable,
                                   ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIReq::GetHeaderJustification", false, [&] {
    auto req = create<business::Requisition>(progid::Requisition);
    check(*req, req->Load(p_Session, p_lReqID, true, *p_CustomData));
    const auto header_ptr = req->Header();
    auto& header = require(header_ptr);
    std::string justification = header.Justification();
    const bool editable = isEditable(header.ReqStatusID());
    *p_sJustification = Variant(std::move(justification));
    *p_bEditable = Variant(editable);
    return true;
  });
}

bool UIReq::SetHeaderJustification(const SessionPtr& p_Session, int32_t p_lReqID,
                                   const std::string& p_sJustification,
                                   ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIReq::SetHeaderJustification", false, [&] {
    auto req = create<business::Requisition>(progid::Requisition);
    if (!req->Load(p_Session, p_lReqID, true, *p_CustomData)) return false;
    require(req->Header()).SetJustification(p_sJustification);
    check(*req, req->Save(p_Session, *p_CustomData));
    return true;
  });
}

RecordsetPtr UIReq::GetLogRequisition(const SessionPtr& p_Session, int32_t p_lReqID,
                                      ByRef<Variant> p_ReqName, ByRef<Variant> p_Requisitioner,
                                      ByRef<Variant> p_CreateDate, ByRef<Variant> p_Cost,
                                      ByRef<Variant> p_sJustification,
                                      ByRef<Variant> p_CurrencyCode,
                                      ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIReq::GetLogRequisition", RecordsetPtr(), [&] {
    auto req = create<business::Requisition>(progid::Requisition);
    check(*req, req->Load(p_Session, p_lReqID, true, *p_CustomData));
    const auto header_ptr = req->Header();
    auto& header = require(header_ptr);
    const Session& session = require(p_Session);
    auto ini = create<AppIni>(progid::AppIni);
    DisplayContext ctx(runtime(), session, read_date_style(*ini, p_Session, *p_CustomData));

    // Every value is computed before any in/out is written.
    Variant name(header.ReqName());
    Variant requisitioner(header.RequisitionerName());
    Variant create_date(ctx.date_text(header.CreateDate()));
    Variant justification(header.Justification());
    const std::string currency = session.CurrencyCode();
    Currency sub_total, tax, total;
    check(*req,
          req->GetReqTotals(p_Session, p_lReqID, currency, sub_total, tax, total, *p_CustomData));
    Variant cost(ctx.money_text(total.to_double(), currency));

    RecordsetPtr log = req->GetLog(p_Session, "", *p_CustomData);
    const DisplayColumn columns[] = {date_display("DateLogged")};
    RecordsetPtr result = rebuild_for_display(require(log), columns, ctx);

    *p_ReqName = std::move(name);
    *p_Requisitioner = std::move(requisitioner);
    *p_CreateDate = std::move(create_date);
    *p_Cost = std::move(cost);
    *p_sJustification = std::move(justification);
    *p_CurrencyCode = Variant(currency);
    return result;
  });
}

}  // namespace kxui
