// UIRcv: the receipt entry form's header, with its dates split into numeric parts.
#include <string>
#include <vector>

#include "kxui/business/po_receipt.h"
#include "kxui/business/progids.h"
#include "kxui/business/utils.h"
#include "kxui/frame/display.h"
#include "kxui/frame/settings.h"
#include "kxui/receiving/detail/rcv_columns.h"
#include "kxui/receiving/ui_rcv.h"

namespace kxui {

namespace {

constexpr int32_t kCartonWidth = 50;

Date in_user_zone(DisplayContext& ctx, Date stored) {
  if (ctx.time_zone_id() == kServerTimeZone) return stored;
  return ctx.dates().ConvertTimeZone(kServerTimeZone, stored, ctx.time_zone_id());
}

// "<prefix>Month", "<prefix>Day" (no leading zeros, 2 wide) and "<prefix>Year" (4 wide)
// of `date`; stored dates have four-digit years.
void add_date_parts(std::vector<DisplayColumn>& columns, const std::string& prefix, Date date) {
  columns.push_back(detail::fixed_text_display(prefix + "Month", 2, std::to_string(date.month())));
  columns.push_back(detail::fixed_text_display(prefix + "Day", 2, std::to_string(date.day())));
  columns.push_back(detail::fixed_text_display(prefix + "Year", 4, std::to_string(date.year())));
}

}  // namespace

RecordsetPtr UIRcv::GetReceiptHdr(const SessionPtr& p_Session, int32_t p_POID,
                                  ByRef<Variant> p_CustomData) noexcept {
  return run("UIRcv::GetReceiptHdr", RecordsetPtr(), [&] {
    const Session& session = require(p_Session);
    auto ini = create<AppIni>(progid::AppIni);
    // Read like every form's date style, though the header's date parts are format-free.
    DisplayContext ctx(runtime(), session, read_date_style(*ini, p_Session, *p_CustomData));
    auto utils = create<business::Utils>(progid::Utils);
    const Date now = utils->GetServerDate(p_Session, *p_CustomData).to_date();

    auto rcv = create<business::POReceipt>(progid::POReceipt);
    Array params = Array::of({Variant(p_POID), *p_CustomData});
    RecordsetPtr result = rcv->GetReceiptHdr(p_Session, params);
    check(rcv, rcv->Success());
    Recordset& header = require(result);

    // The row the result is positioned on; with none, these reads fail (3021).
    const int32_t receive_col = header.GetFields().index_of("ReceiveDate");
    const int32_t created_col = header.GetFields().index_of("DocCreateDate");
    const Date received = in_user_zone(ctx, header.value(receive_col).to_date());
    const Date created = in_user_zone(ctx, header.value(created_col).to_date());
    const Date today = in_user_zone(ctx, now);

    std::vector<DisplayColumn> columns;
    add_date_parts(columns, "Receive", received);
    add_date_parts(columns, "DocCreate", created);
    add_date_parts(columns, "Current", today);
    columns.push_back(detail::amount_display("CartonCnt", kCartonWidth));
    RecordsetPtr form = rebuild_row_for_display(header, columns, ctx);
    // The form shows the copied dates in the user's zone as well.
    if (ctx.time_zone_id() != kServerTimeZone) {
      form->set_value(receive_col, Variant(received));
      form->set_value(created_col, Variant(created));
    }
    return form;
  });
}

}  // namespace kxui
