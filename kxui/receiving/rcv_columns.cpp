#include "kxui/receiving/detail/rcv_columns.h"

#include <utility>

namespace kxui::detail {

namespace {
constexpr int32_t kInputWidth = 50;
}  // namespace

DisplayColumn amount_display(const std::string& source_column, int32_t width) {
  return computed_display("UIDisplay_" + source_column, adVarWChar, width,
                          [source_column](const Recordset& src, DisplayContext& ctx) {
                            const int32_t col = src.GetFields().index_of(source_column);
                            return RowFiller([col, &ctx](const Recordset& row) {
                              return Variant(ctx.amount_text(row.value(col).to_double()));
                            });
                          });
}

DisplayColumn fixed_text_display(std::string name, int32_t width, std::string text) {
  return computed_display(std::move(name), adVarWChar, width,
                          [text = std::move(text)](const Recordset&, DisplayContext&) {
                            return RowFiller([text](const Recordset&) { return Variant(text); });
                          });
}

DisplayColumn prefilled_qty_display(const std::string& source_column, bool receive_all) {
  if (!receive_all) return fixed_text_display("UIDisplay_" + source_column, kInputWidth, "0");
  return computed_display(
      "UIDisplay_" + source_column, adVarWChar, kInputWidth,
      [](const Recordset& src, DisplayContext& ctx) {
        const int32_t ordered = src.GetFields().index_of("OrderQty");
        const int32_t received = src.GetFields().index_of("ReceivedToDateQty");
        return RowFiller([ordered, received, &ctx](const Recordset& row) {
          double outstanding = row.value(ordered).to_double() - row.value(received).to_double();
          // An over-received line offers nothing more to receive, never a negative.
          if (outstanding < 0) outstanding = 0;
          return Variant(ctx.amount_text(outstanding));
        });
      });
}

}  // namespace kxui::detail
