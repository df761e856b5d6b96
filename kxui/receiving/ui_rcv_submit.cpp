// UIRcv: receipt submission. The user's typed numbers are read in their locale, checked
// and written into the caller's own form before the business tier sees it.
#include "kxui/business/po_receipt.h"
#include "kxui/business/progids.h"
#include "kxui/frame/messages.h"
#include "kxui/frame/services.h"
#include "kxui/receiving/ui_rcv.h"

namespace kxui {

namespace {

// The line columns, resolved once per call.
struct LineColumns {
  explicit LineColumns(const Fields& f)
      : received_text(f.index_of("UIDisplay_ReceivedQty")),
        received(f.index_of("ReceivedQty")),
        packing_text(f.index_of("UIDisplay_PackingSlipQty")),
        packing(f.index_of("PackingSlipQty")),
        received_to_date(f.index_of("ReceivedToDateQty")),
        comments(f.index_of("Comments")) {}
  int32_t received_text, received, packing_text, packing, received_to_date, comments;
};

// Exactly "": a Null comment or one of blanks counts as given.
bool is_empty_comment(const Variant& comments) {
  return !comments.is_null() && comments.to_string().empty();
}

}  // namespace

int32_t UIRcv::SubmitReceipt(const SessionPtr& p_Session, const RecordsetPtr& p_Header,
                             const RecordsetPtr& p_LineItems,
                             ByRef<Variant> p_CustomData) noexcept {
  return run("UIRcv::SubmitReceipt", int32_t{0}, [&] {
    const int32_t locale_id = require(p_Session).LocaleID();
    auto money = create_direct<CurrencyFormatter>(service_class::kCurrencyFormatter);
    // A Null text is not a typing error: its conversion fails first (94).
    auto parse = [&](const Variant& typed, const msg::Message& not_numeric) {
      double number = 0;
      if (!money->ParseNumber(locale_id, typed.to_string(), number)) {
        raise_validation(p_Session, not_numeric);
      }
      return number;
    };

    Recordset& header = require(p_Header);
    const double cartons = parse(header["UIDisplay_CartonCnt"].Value(), msg::kCartonCountNotNumeric);
    header["CartonCnt"].SetValue(Variant(Variant(cartons).to_int32()));

    Recordset& lines = require(p_LineItems);
    if (!(lines.IsBOF() && lines.IsEOF())) {
      const LineColumns col(lines.GetFields());
      lines.MoveFirst();
      while (!lines.IsEOF()) {
        const double received = parse(lines.value(col.received_text), msg::kReceivedQtyNotNumeric);
        lines.set_value(col.received, Variant(received));
        const double packing = parse(lines.value(col.packing_text), msg::kPackingSlipNotNumeric);
        if (packing < 0) raise_validation(p_Session, msg::kPackingSlipNegative);
        lines.set_value(col.packing, Variant(packing));
        // A negative quantity corrects earlier receipts: at most what was received so far,
        // and never without a reason.
        const double received_to_date = lines.value(col.received_to_date).to_double();
        if (received < 0 && -received > received_to_date) {
          raise_validation(p_Session, msg::kCorrectionExceedsReceived);
        }
        if (received < 0 && is_empty_comment(lines.value(col.comments))) {
          raise_validation(p_Session, msg::kCommentsRequired);
        }
        lines.MoveNext();
      }
    }

    auto rcv = create<business::POReceipt>(progid::POReceipt);
    Array params = Array::of({*p_CustomData});
    const int32_t receipt_id = rcv->SubmitReceipt(p_Session, p_Header, p_LineItems, params);
    check(rcv, rcv->Success());
    return receipt_id;
  });
}

}  // namespace kxui
