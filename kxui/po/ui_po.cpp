// UIPO: the PO list, a PO's lines, its log and name, and substitute parts.
#include "kxui/po/ui_po.h"

#include "kxui/business/part_search.h"
#include "kxui/business/progids.h"
#include "kxui/business/purchase_order.h"
#include "kxui/business/utils.h"
#include "kxui/frame/display.h"
#include "kxui/frame/settings.h"
#include "kxui/po/detail/po_shared.h"

namespace kxui {

using detail::amount_display;
using detail::money_display;
using detail::RaiseBusinessError;

UIPO::UIPO(std::shared_ptr<Runtime> runtime) : Facade("UIPO", std::move(runtime)) {}

std::shared_ptr<business::PurchaseOrder> UIPO::load_po(const SessionPtr& session, int32_t po_id,
                                                       bool lock, Variant& custom_data) {
  auto po = create<business::PurchaseOrder>(progid::PurchaseOrder);
  if (!po->LoadPO(session, po_id, lock, custom_data)) RaiseBusinessError(*po);
  return po;
}

RecordsetPtr UIPO::GetItemsRs(const SessionPtr& p_objSession, int32_t p_lPOID,
                              int32_t p_lLineNumber, ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIPO::GetItemsRs", RecordsetPtr(), [&] {
    auto po = create<business::PurchaseOrder>(progid::PurchaseOrder);
    auto ini = create<AppIni>(progid::AppIni);
    auto utils = create<business::Utils>(progid::Utils);
    const Session& session = require(p_objSession);
    // The server's clock is asked for and not used: a dead business tier fails here.
    utils->GetServerDate(p_objSession, *p_CustomData);
    DisplayContext ctx(runtime(), session, read_date_style(*ini, p_objSession, *p_CustomData));

    RecordsetPtr items = po->GetPOItems(p_objSession, p_lPOID, p_lLineNumber, *p_CustomData);
    if (!po->Succeeded()) RaiseBusinessError(*po);
    const DisplayColumn columns[] = {
        money_display("UnitPrice"),     money_display("SalesTaxAmt"),
        money_display("ActualPrice"),   date_display("DeliverByDate"),
        date_display("POStatusDate"),   amount_display("OrderQty"),
    };
    return rebuild_for_display(require(items), columns, ctx);
  });
}

RecordsetPtr UIPO::GetPOListPage(const SessionPtr& p_Session, const std::string& p_SortBy,
                                 const std::string& p_StatusList, const std::string& p_PONumber,
                                 const std::string& p_UserName, const std::string& p_BorgName,
                                 int32_t p_Page, ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIPO::GetPOListPage", RecordsetPtr(), [&] {
    auto po = create<business::PurchaseOrder>(progid::PurchaseOrder);
    auto ini = create<AppIni>(progid::AppIni);
    require(p_Session);
    const int32_t date_style = read_date_style(*ini, p_Session, *p_CustomData);

    // The business list takes its filters in an order of its own.
    RecordsetPtr list = po->GetPOList(p_Session, Variant(p_UserName), Variant(p_BorgName),
                                      p_PONumber, Variant(p_SortBy), Variant(p_StatusList),
                                      *p_CustomData);
    if (!po->Succeeded()) RaiseBusinessError(*po);
    const DisplayColumn columns[] = {date_display("CreateDate"), money_display("TotalAmtDue")};
    return display_list_page(runtime(), *ini, p_Session, *p_CustomData, require(list), p_Page,
                             date_style, columns);
  });
}

RecordsetPtr UIPO::GetPOsByRequisition(const SessionPtr& p_objSession, int32_t p_lReqID,
                                       ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIPO::GetPOsByRequisition", RecordsetPtr(), [&] {
    auto po = create<business::PurchaseOrder>(progid::PurchaseOrder);
    auto ini = create<AppIni>(progid::AppIni);
    auto utils = create<business::Utils>(progid::Utils);
    const Session& session = require(p_objSession);
    utils->GetServerDate(p_objSession, *p_CustomData);
    DisplayContext ctx(runtime(), session, read_date_style(*ini, p_objSession, *p_CustomData));

    RecordsetPtr pos = po->GetPOsByReq(p_objSession, p_lReqID, *p_CustomData);
    if (!po->Succeeded()) RaiseBusinessError(*po);
    const DisplayColumn columns[] = {money_display("TotalAmtDue"), date_display("CreateDate"),
                                     date_display("OrderedOnDate")};
    return rebuild_for_display(require(pos), columns, ctx);
  });
}

RecordsetPtr UIPO::GetLogPurchaseOrder(const SessionPtr& p_objSession, int32_t p_lPOID,
                                       ByRef<Variant> p_POName, ByRef<Variant> p_SubmitterName,
                                       ByRef<Variant> p_CreateDate, ByRef<Variant> p_Cost,
                                       ByRef<Variant> p_sJustification,
                                       ByRef<Variant> p_CurrencyCode,
                                       ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIPO::GetLogPurchaseOrder", RecordsetPtr(), [&] {
    auto po = create<business::PurchaseOrder>(progid::PurchaseOrder);
    auto ini = create<AppIni>(progid::AppIni);
    DisplayContext ctx(runtime(), require(p_objSession),
                       read_date_style(*ini, p_objSession, *p_CustomData));
    if (!po->LoadPO(p_objSession, p_lPOID, false, *p_CustomData)) RaiseBusinessError(*po);
    const auto header_ptr = po->Header();
    business::POHeader& header = require(header_ptr);

    // The outputs are written as they are read: a later failure leaves them set.
    *p_POName = Variant(header.POName());
    *p_SubmitterName = Variant(header.SubmitterName());
    *p_CreateDate = Variant(header.CreateDate().to_string());
    *p_sJustification = Variant(header.Justification());
    *p_CurrencyCode = Variant(header.CurrencyCode());
    const Currency total_cost = header.TotalCost();
    *p_CreateDate = Variant(ctx.date_text(*p_CreateDate));
    *p_Cost = Variant(ctx.money_text(total_cost.to_double(), p_CurrencyCode->to_string()));

    RecordsetPtr log = po->GetPOLog(p_objSession, p_lPOID, "", *p_CustomData);
    if (!po->Succeeded()) RaiseBusinessError(*po);
    const DisplayColumn columns[] = {date_display("DateLogged")};
    return rebuild_for_display(require(log), columns, ctx);
  });
}

bool UIPO::GetPOName(const SessionPtr& p_Session, int32_t p_POID, ByRef<Variant> m_POName,
                     ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIReq::GetPOName", false, [&] {
    if (p_POID > 0) {
      auto po = load_po(p_Session, p_POID, false, *p_CustomData);
      *m_POName = Variant(require(po->Header()).POName());
    }
    // Whatever the caller passed counts by its text; Null and values without one do not.
    const std::optional<std::string> name = m_POName->try_to_string();
    return name.has_value() && !name->empty();
  });
}

RecordsetPtr UIPO::SubstituteItems(const SessionPtr& p_Session,
                                   const std::string& p_SupplierPartNum, int32_t p_SupplierID,
                                   const std::string& p_CurrencyCode, int32_t p_lDocBorgID,
                                   ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIPO::SubstituteItems", RecordsetPtr(), [&]() -> RecordsetPtr {
    auto search = create<business::PartSearch>(progid::PartSearch);
    // The language the catalog searches describe parts in.
    const std::string lang_code = require(p_Session).LangCode();
    auto run = [&](int32_t part_num_type, const std::string& part_num, int32_t commodity_id) {
      RecordsetPtr found = search->SearchParts(
          p_Session, "", true, part_num_type, part_num, "", "", p_SupplierID, "", commodity_id,
          false, p_CurrencyCode, "", p_CurrencyCode, lang_code, "", 3, 3, 1, 3, p_lDocBorgID,
          *p_CustomData);
      if (!search->Success()) RaiseBusinessError(*search);
      return found;
    };
    auto has_rows = [](const RecordsetPtr& rs) { return rs && !rs->IsBOF() && !rs->IsEOF(); };

    // The exact part first, then every part of its commodity from the same supplier.
    RecordsetPtr part = run(1, p_SupplierPartNum, 0);
    if (!has_rows(part)) return nullptr;
    const int32_t commodity_id = (*part)["CommodityID"].Value().to_int32();
    RecordsetPtr same_commodity = run(0, "", commodity_id);
    return has_rows(same_commodity) ? same_commodity : nullptr;
  });
}

}  // namespace kxui
