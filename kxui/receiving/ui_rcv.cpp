// UIRcv: the order's lines, receipts and their lines, the receiving form's lines and the
// list of orders awaiting receipt.
#include "kxui/receiving/ui_rcv.h"

#include "kxui/business/po_receipt.h"
#include "kxui/business/progids.h"
#include "kxui/frame/display.h"
#include "kxui/frame/settings.h"
#include "kxui/receiving/detail/rcv_columns.h"

namespace kxui {

using detail::amount_display;

namespace {
// Views without dates still need a context for their amounts; the style is never used.
constexpr int32_t kNoDateStyle = 2;
constexpr int32_t kWide = 100;
constexpr int32_t kFormWidth = 50;
}  // namespace

UIRcv::UIRcv(std::shared_ptr<Runtime> runtime) : Facade("UIRcv", std::move(runtime)) {}

RecordsetPtr UIRcv::rebuilt_view(const SessionPtr& session, ListCall call, Array params,
                                 std::span<const DisplayColumn> columns) {
  DisplayContext ctx(runtime(), require(session), kNoDateStyle);
  auto rcv = create<business::POReceipt>(progid::POReceipt);
  RecordsetPtr result = ((*rcv).*call)(session, params);
  check(rcv, rcv->Success());
  return rebuild_for_display(require(result), columns, ctx);
}

RecordsetPtr UIRcv::GetPOItemsRs(const SessionPtr& p_Session, int32_t p_POID,
                                 ByRef<Variant> p_CustomData) noexcept {
  return run("UIRcv::GetPOItemsRs", RecordsetPtr(), [&] {
    const DisplayColumn columns[] = {amount_display("OrderQty", kWide),
                                     amount_display("ReceivedToDateQty", kWide)};
    return rebuilt_view(p_Session, &business::POReceipt::GetPOItems,
                        Array::of({Variant(p_POID), *p_CustomData}), columns);
  });
}

RecordsetPtr UIRcv::GetReceiptHdrListRs(const SessionPtr& p_Session, int32_t p_POID,
                                        ByRef<Variant> p_CustomData) noexcept {
  return run("UIRcv::GetReceiptHdrListRs", RecordsetPtr(), [&] {
    const DisplayColumn columns[] = {amount_display("CartonCnt", kWide)};
    return rebuilt_view(p_Session, &business::POReceipt::GetReceiptHdrList,
                        Array::of({Variant(p_POID), *p_CustomData}), columns);
  });
}

RecordsetPtr UIRcv::GetReceiptItemListRs(const SessionPtr& p_Session, int32_t p_ReceiptID,
                                         ByRef<Variant> p_CustomData) noexcept {
  return run("UIRcv::GetReceiptItemListRs", RecordsetPtr(), [&] {
    const DisplayColumn columns[] = {amount_display("OrderQty", kWide),
                                     amount_display("ReceivedQty", kWide),
                                     amount_display("PackingSlipQty", kWide)};
    return rebuilt_view(p_Session, &business::POReceipt::GetReceiptItemList,
                        Array::of({Variant(p_ReceiptID), *p_CustomData}), columns);
  });
}

RecordsetPtr UIRcv::GetReceiptItems(const SessionPtr& p_Session, int32_t p_POID,
                                    bool p_ReceiveAll, ByRef<Variant> p_CustomData) noexcept {
  return run("UIRcv::GetReceiptItems", RecordsetPtr(), [&] {
    const DisplayColumn columns[] = {
        amount_display("OrderQty", kFormWidth),
        amount_display("ReceivedToDateQty", kFormWidth),
        detail::prefilled_qty_display("ReceivedQty", p_ReceiveAll),
        detail::prefilled_qty_display("PackingSlipQty", p_ReceiveAll),
    };
    return rebuilt_view(p_Session, &business::POReceipt::GetReceiptItems,
                        Array::of({Variant(p_POID), Variant(p_ReceiveAll), *p_CustomData}),
                        columns);
  });
}

RecordsetPtr UIRcv::GetReceiveListPage(const SessionPtr& p_Session, const std::string& p_SortBy,
                                       const std::string& p_StatusList,
                                       const std::string& p_PONumber,
                                       const std::string& p_UserName,
                                       const std::string& p_BorgName, int32_t p_Page,
                                       ByRef<Variant> p_CustomData) noexcept {
  return run("UIRcv::GetReceiveListPage", RecordsetPtr(), [&] {
    require(p_Session);
    auto ini = create<AppIni>(progid::AppIni);
    const int32_t date_style = read_date_style(*ini, p_Session, *p_CustomData);
    auto rcv = create<business::POReceipt>(progid::POReceipt);
    Array params = Array::of({Variant(p_SortBy), Variant(p_StatusList), Variant(p_PONumber),
                              Variant(p_UserName), Variant(p_BorgName), *p_CustomData});
    RecordsetPtr list = rcv->GetReceiveList(p_Session, params);
    check(rcv, rcv->Success());
    const DisplayColumn columns[] = {date_display("CreateDate")};
    // "Page Size" is read by the list-page helper, after the business call.
    return display_list_page(runtime(), *ini, p_Session, *p_CustomData, require(list), p_Page,
                             date_style, columns);
  });
}

}  // namespace kxui
