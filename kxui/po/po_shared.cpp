#include "kxui/po/detail/po_shared.h"

#include "kxui/frame/failure.h"

namespace kxui::detail {

DisplayColumn money_display(const std::string& value_column) {
  return computed_display(
      "UIDisplay_" + value_column, adVarWChar, 100,
      [value_column](const Recordset& src, DisplayContext& ctx) -> RowFiller {
        const int32_t value = src.GetFields().index_of(value_column);
        const int32_t currency = src.GetFields().index_of("CurrencyCode");
        return [value, currency, &ctx](const Recordset& row) {
          return Variant(
              ctx.money_text(row.value(value).to_double(), row.value(currency).to_string()));
        };
      });
}

DisplayColumn amount_display(const std::string& value_column) {
  return computed_display("UIDisplay_" + value_column, adVarWChar, 100,
                          [value_column](const Recordset& src, DisplayContext& ctx) -> RowFiller {
                            const int32_t value = src.GetFields().index_of(value_column);
                            return [value, &ctx](const Recordset& row) {
                              return Variant(ctx.amount_text(row.value(value).to_double()));
                            };
                          });
}

void RaiseBusinessError(ErrorSource& obj) {
  ErrorInfoPtr e = obj.GetError();
  if (!e) fail(err::kObjectNotSet);
  const int32_t number = e->Number();
  throw Failure(number, std::string(), e->Description());
}

}  // namespace kxui::detail
