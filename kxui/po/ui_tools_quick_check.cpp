// UITools: quick checks of prices and availability with a supplier.
#include <cctype>

#include "kxui/business/progids.h"
#include "kxui/business/purchase_order.h"
#include "kxui/business/reconcile.h"
#include "kxui/business/requisition.h"
#include "kxui/business/supplier_exchange.h"
#include "kxui/business/utils.h"
#include "kxui/frame/text.h"
#include "kxui/po/detail/po_shared.h"
#include "kxui/po/detail/supplier_link.h"
#include "kxui/po/ui_tools.h"

namespace kxui {

using detail::RaiseBusinessError;
namespace sx = supplier;

std::shared_ptr<Dispatch> UITools::new_quick_check_item(int32_t line_num,
                                                        const std::string& part_num,
                                                        const std::string& part_num_ext,
                                                        const std::string& uom, double quantity) {
  auto item = create_direct<Dispatch>(sx::kQuickCheckItem);
  detail::put_property(*item, sx::item::kLineNum, Variant(line_num));
  detail::put_property(*item, sx::item::kSupplierPartNum, Variant(conv::trim(part_num)));
  detail::put_property(*item, sx::item::kSupplierPartNumExt, Variant(conv::trim(part_num_ext)));
  detail::put_property(*item, sx::item::kBuyerSystem, Variant(sx::kBuyerSystemID));
  detail::put_property(*item, sx::item::kUOM, Variant(conv::trim(uom)));
  detail::put_property(*item, sx::item::kQuantity, Variant(quantity));
  return item;
}

bool UITools::send_quick_check(Dispatch& query, int32_t supplier_id, const std::string& customer,
                               const std::string& currency, Array items, Variant& responses) {
  std::vector<Variant> args(sx::qc_arg::kCount);
  args[sx::qc_arg::kHeader] = Variant(create_direct<Object>(sx::kRequestHeader));
  args[sx::qc_arg::kDate] = Variant(detail::current_date());
  args[sx::qc_arg::kFixedValue] = Variant(sx::kRequestFixedValue);
  args[sx::qc_arg::kSupplierID] = Variant(supplier_id);
  args[sx::qc_arg::kRequestType] = Variant(sx::kRequestType);
  args[sx::qc_arg::kCustomer] = Variant(customer);
  args[sx::qc_arg::kCurrency] = Variant(currency);
  args[sx::qc_arg::kRefKey] = Variant(sx::kRefKey);
  args[sx::qc_arg::kItems] = Variant(std::move(items));
  const bool answered = query.Invoke(sx::query::kSendQuickCheck, args).to_bool();
  responses = std::move(args[sx::qc_arg::kResponses]);
  return answered;
}

bool UITools::QuickCheck(const SessionPtr& p_Session, ByRef<std::string> p_sDocType,
                         ByRef<int32_t> p_lDocID, ByRef<Variant> p_CustomData) noexcept {
  return guarded("UITools::QuickCheck", false, [&] {
    if (!text::iequals(*p_sDocType, "PO")) return false;  // only orders under reconciliation are checked
    const int32_t po_id = *p_lDocID;

    auto order = create<business::ReconcileOrder>(progid::ReconcileOrder);
    if (!order->LoadOrder(p_Session, po_id, 0, *p_CustomData)) RaiseBusinessError(*order);
    auto po = create<business::PurchaseOrder>(progid::PurchaseOrder);
    if (!po->LoadPO(p_Session, po_id, false, *p_CustomData)) RaiseBusinessError(*po);
    const std::string currency = require(po->Header()).CurrencyCode();
    auto lines = create<business::ReconcileItems>(progid::ReconcileItems);
    if (!lines->Load(p_Session, po_id, *p_CustomData)) RaiseBusinessError(*lines);

    auto query = create_direct<Dispatch>(sx::kSupplierQuery);
    const int32_t count = lines->Count();
    std::vector<std::shared_ptr<business::ReconcileItem>> items;
    Array request(0, count - 1);
    int32_t supplier_id = 0;
    for (int32_t i = 1; i <= count; ++i) {
      auto item = lines->Item(i);
      business::ReconcileItem& line = require(item);
      request.at(i - 1) = Variant(new_quick_check_item(line.LineNum(), line.SupplierPartNum(),
                                                       line.SupplierPartNumExt(), line.UOMID(),
                                                       line.ShippedQty()));
      // One supplier per order: the lines all carry it.
      supplier_id = line.POSupplierID();
      items.push_back(std::move(item));
    }
    Variant responses;
    if (!send_quick_check(*query, supplier_id, GetCustName(p_Session, *p_CustomData), currency,
                          std::move(request), responses)) {
      return false;
    }
    for (int32_t i = 0; i < count; ++i) {
      auto answer = detail::response_at(responses, i);
      const Currency price = detail::get_member(*answer, sx::kGetUnitPrice).to_currency();
      const double available = detail::get_member(*answer, sx::kGetAvailableQty).to_double();
      items[static_cast<size_t>(i)]->SetUnitPrice(price);
      items[static_cast<size_t>(i)]->SetActualUnitPrice(price);
      items[static_cast<size_t>(i)]->SetInStockQty(available);
    }
    if (!order->SaveOrder(p_Session, *p_CustomData)) RaiseBusinessError(*order);
    return true;
  });
}

bool UITools::QuickCheckReq(const SessionPtr& p_Session, int32_t p_lDocID,
                            ByRef<Variant> vQCValues, ByRef<Variant> p_CustomData) noexcept {
  return guarded("UITools::QuickCheckReq", false, [&] {
    auto utils = create<business::Utils>(progid::Utils);
    auto req = create<business::Requisition>(progid::Requisition);
    // Locked: answered prices are saved on the lines.
    if (!req->Load(p_Session, p_lDocID, true, *p_CustomData)) RaiseBusinessError(*req);
    const std::vector<business::Requisition::QuickCheckLine> lines = req->QuickCheckLines();
    const std::string customer = GetCustName(p_Session, *p_CustomData);
    auto query = create_direct<Dispatch>(sx::kSupplierQuery);

    enum { kPrice = 0, kAvailable = 1, kAnswered = 2 };
    Array values(Array::Bound{0, 4}, Array::Bound{0, 1});
    bool any_answered = false;
    for (int32_t i = 0; i < static_cast<int32_t>(lines.size()); ++i) {
      const auto& line = lines[static_cast<size_t>(i)];
      Array request(0, 0);
      request.at(0) = Variant(new_quick_check_item(line.line_num, line.supplier_part_num,
                                                   line.supplier_part_num_ext, line.uom_id,
                                                   line.order_qty));
      Variant responses;
      double price = 0, available = 0;
      const bool answered = send_quick_check(*query, line.supplier_id, customer,
                                             line.supplier_currency_code, std::move(request),
                                             responses);
      if (answered) {
        auto answer = detail::response_at(responses, 0);
        price = detail::get_member(*answer, sx::kGetUnitPrice).to_double();
        available = detail::get_member(*answer, sx::kGetAvailableQty).to_double();
        req->SetQuickCheckPrice(i, Currency::from_double(price));
        any_answered = true;
      }
      // Grown one column past the line, so the array always ends with an empty column.
      values.redim_preserve(i + 1);
      values.at(kPrice, i) = Variant(price);
      values.at(kAvailable, i) = Variant(available);
      values.at(kAnswered, i) = Variant(answered);
    }
    if (any_answered && !req->Save(p_Session, *p_CustomData)) RaiseBusinessError(*req);

    // Supplier prices into the requisition's currency, at the server's date.
    const Variant at_date = utils->GetServerDate(p_Session, *p_CustomData);
    const std::string req_currency = req->ReqCurrencyCode();
    for (int32_t i = 0; i < static_cast<int32_t>(lines.size()); ++i) {
      if (!values.at(kAnswered, i).to_bool()) continue;
      double converted = 0;
      if (!utils->ConvertCurrency(p_Session, values.at(kPrice, i).to_double(),
                                  lines[static_cast<size_t>(i)].supplier_currency_code,
                                  req_currency, at_date, converted, *p_CustomData)) {
        raise_validation(p_Session, msg::kItemPriceConversion);
      }
      values.at(kPrice, i) = Variant(converted);
    }
    *vQCValues = Variant(std::move(values));
    return true;
  });
}

bool UITools::QuickCheckTest(ByRef<Variant> vReturnArray, ByRef<Variant>) noexcept {
  return guarded("UITools::QuickCheckTest", false, [&] {
    auto query = create_direct<Dispatch>(sx::kSupplierQuery);
    constexpr int32_t kLines = 2;
    Array request(0, kLines - 1);
    for (int32_t line = 1; line <= kLines; ++line) {
      request.at(line - 1) = Variant(
          new_quick_check_item(line, "Kx000" + std::to_string(line), "01", "EA", 0.0));
    }
    Variant responses;
    if (!send_quick_check(*query, 178, "Dr. Pellam", "USD", std::move(request), responses)) {
      return false;
    }
    Array answers(Array::Bound{0, 2}, Array::Bound{0, kLines});
    for (int32_t i = 0; i < kLines; ++i) {
      auto answer = detail::response_at(responses, i);
      answers.at(0, i) = detail::get_member(*answer, sx::kGetAvailableQty);
      answers.at(1, i) = detail::get_member(*answer, sx::kGetUnitPrice);
    }
    *vReturnArray = Variant(std::move(answers));
    return true;
  });
}

}  // namespace kxui
