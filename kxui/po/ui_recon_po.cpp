// UIReconPO: the reconcile order's views and edits.
#include "kxui/po/ui_recon_po.h"

#include "kxui/business/progids.h"
#include "kxui/business/purchase_order.h"
#include "kxui/business/reconcile.h"
#include "kxui/frame/display.h"
#include "kxui/frame/services.h"
#include "kxui/po/detail/po_shared.h"

namespace kxui {

using detail::amount_display;
using detail::money_display;
using detail::RaiseBusinessError;

UIReconPO::UIReconPO(std::shared_ptr<Runtime> runtime)
    : Facade("UIReconPO", std::move(runtime), "UIWF") {}

bool UIReconPO::AddAltItem(const SessionPtr& p_oSession, int32_t p_lPOID, int32_t p_lLineNum,
                           int32_t p_lAltPosition, const Variant& p_rsAltItems,
                           ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIReconPO::AddAltItem", false, [&] {
    const RecordsetPtr alternatives = p_rsAltItems.as<Recordset>();
    Recordset& row = require(alternatives);
    row.SetAbsolutePosition(p_lAltPosition);

    auto po = create<business::PurchaseOrder>(progid::PurchaseOrder);
    po->GetPOItems(p_oSession, p_lPOID, p_lLineNum, *p_CustomData);

    auto item = create<business::POItem>(progid::POItem);
    auto text = [&](const char* column) { return row[column].Value().to_string(); };
    auto number = [&](const char* column) { return row[column].Value().to_int32(); };
    item->SetActualUnitPrice(row["ActualUnitPrice"].Value().to_currency());
    item->SetExtendedPrice(Currency{});
    item->SetSalesTaxAmt(Currency{});
    item->SetBuyerPartNum(text("BuyerPartNum"));
    item->SetCommodityName(text("CommodityName"));
    item->SetCommodityID(number("CommodityID"));
    item->SetActualCurrencyCode(text("ActualCurrencyCode"));
    item->SetMfrName(text("MfrName"));
    item->SetShortDesc(text("ShortDesc"));
    item->SetPartID(number("PartID"));
    item->SetSupplierID(number("SupplierID"));
    item->SetSupplierPartNum(text("SupplierPartNum"));
    item->SetSupplierPartNumExt(text("SupplierPartNumExt"));
    item->SetTaxable(number("Taxable"));
    // The alternative is bought at the price the catalog quotes for it.
    item->SetUnitPrice(row["ActualUnitPrice"].Value().to_currency());
    item->SetUnitofMeasure(text("UnitofMeasure"));

    auto items = create<business::POItems>(progid::POItems);
    items->Add(item);
    auto order = create<business::ReconcileOrder>(progid::ReconcileOrder);
    if (!order->AddAlternateItem(p_oSession, p_lPOID, 0, items, *p_CustomData)) {
      RaiseBusinessError(*order);
    }
    return true;
  });
}

bool UIReconPO::DeleteItem(const SessionPtr& p_objSession, int32_t p_lPOID, int32_t p_lLineNum,
                           ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIReconPO::DeleteItem", false, [&] {
    auto order = create<business::ReconcileOrder>(progid::ReconcileOrder);
    // Only that line is loaded; a failed load shows as a missing item 1.
    order->LoadOrder(p_objSession, p_lPOID, p_lLineNum, *p_CustomData);
    require(require(order->Items()).Item(1)).SetDeleted(true);
    return order->SaveOrder(p_objSession, *p_CustomData);
  });
}

bool UIReconPO::DeleteItems(const SessionPtr& p_objSession, int32_t p_lPOID,
                            ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIReconPO::DeleteItems", false, [&] {
    auto order = create<business::ReconcileOrder>(progid::ReconcileOrder);
    if (!order->LoadOrder(p_objSession, p_lPOID, 0, *p_CustomData)) return false;
    const auto lines_ptr = order->Items();
    business::ReconcileItems& lines = require(lines_ptr);
    const int32_t count = lines.Count();
    for (int32_t i = 1; i <= count; ++i) require(lines.Item(i)).SetDeleted(true);
    return order->SaveOrder(p_objSession, *p_CustomData);
  });
}

std::string UIReconPO::GetFormatCurrency(int32_t p_lLocale, const std::string& p_sCurrCode,
                                         double p_dUnitPrice, ByRef<Variant>) noexcept {
  return guarded("UIReconPO::GetFormatCurrency", std::string("0"), [&] {
    auto money = create_direct<CurrencyFormatter>(service_class::kCurrencyFormatter);
    return money->FormatCurrencyAmount(p_lLocale, p_sCurrCode, p_dUnitPrice);
  });
}

bool UIReconPO::UpdateItemsQtys(const SessionPtr& p_Session, int32_t p_POID,
                                const Variant& p_LineNumbers, const Variant& p_ShippedQtys,
                                const Variant& p_BackOrderQtys,
                                ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIReq::UpdateItemsQtys", false, [&] {
    auto order = create<business::ReconcileOrder>(progid::ReconcileOrder);
    return order->UpdateQuantities(p_Session, p_POID, p_LineNumbers, p_ShippedQtys,
                                   p_BackOrderQtys, *p_CustomData);
  });
}

RecordsetPtr UIReconPO::GetRecPOHeader(const SessionPtr& p_Session, int32_t p_POID,
                                       ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIReconPO::GetRecPOHeader", RecordsetPtr(), [&] {
    auto rs = std::make_shared<Recordset>();
    Fields& fields = rs->GetFields();
    fields.Append("PONum", adVarWChar, 100, adFldUnspecified);
    fields.Append("Supplier", adVarWChar, 100, adFldUnspecified);
    fields.Append("SupplierID", adInteger, 0, adFldUnspecified);
    fields.Append("CurrencyCode", adVarWChar, 10, adFldUnspecified);
    fields.Append("SubTotal", adVarWChar, 50, adFldUnspecified);
    fields.Append("TotalTaxAmt", adVarWChar, 50, adFldUnspecified);
    fields.Append("TotalAmtDue", adVarWChar, 50, adFldUnspecified);
    rs->Open();
    rs->AddNew();

    const int32_t locale_id = require(p_Session).LocaleID();
    auto order = create<business::ReconcileOrder>(progid::ReconcileOrder);
    if (!order->LoadOrderHeader(p_Session, p_POID, "", *p_CustomData)) RaiseBusinessError(*order);
    const auto header_ptr = order->OrderHeader();
    business::ReconcileOrderHeader& header = require(header_ptr);
    const std::string currency = header.CurrencyCode();
    (*rs)["PONum"].SetValue(Variant(header.PONum()));
    (*rs)["Supplier"].SetValue(Variant(header.Supplier()));
    (*rs)["SupplierID"].SetValue(Variant(header.SupplierID()));
    (*rs)["CurrencyCode"].SetValue(Variant(currency));
    auto money = create_direct<CurrencyFormatter>(service_class::kCurrencyFormatter);
    auto money_text = [&](Currency amount) {
      return Variant(money->FormatCurrencyAmount(locale_id, currency, amount.to_double()));
    };
    (*rs)["SubTotal"].SetValue(money_text(header.SubTotal()));
    (*rs)["TotalTaxAmt"].SetValue(money_text(header.TotalTaxAmt()));
    (*rs)["TotalAmtDue"].SetValue(money_text(header.TotalAmtDue()));
    rs->Update();
    return rs;
  });
}

RecordsetPtr UIReconPO::GetItemsRs(const SessionPtr& p_Session, int32_t p_POID,
                                   int32_t p_LineNumber, ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIReq::GetItemsRs", RecordsetPtr(), [&] {
    // No dates are shown here, so the date style plays no part.
    DisplayContext ctx(runtime(), require(p_Session), 2);
    auto order = create<business::ReconcileOrder>(progid::ReconcileOrder);
    RecordsetPtr items = order->GetOrderItems(p_Session, p_POID, p_LineNumber, *p_CustomData);
    if (!order->Succeeded()) RaiseBusinessError(*order);
    const DisplayColumn columns[] = {
        money_display("UnitPrice"),     money_display("ActualPrice"),
        amount_display("OrderQty"),     amount_display("BackOrderQty"),
        amount_display("ShippedQty"),   amount_display("InStockQty"),
        amount_display("POOrderQty"),   amount_display("POBackOrderQty"),
    };
    return rebuild_for_display(require(items), columns, ctx);
  });
}

bool UIReconPO::SubmitRecPO(const SessionPtr& p_Session, int32_t p_POID,
                            ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIReconPO::SubmitRecPO", false, [&] {
    auto order = create<business::ReconcileOrder>(progid::ReconcileOrder);
    return order->SubmitOrder(p_Session, p_POID, *p_CustomData);
  });
}

}  // namespace kxui
