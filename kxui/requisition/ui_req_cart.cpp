// UIReq: the cart and a line's details in the session's currency, quantity updates, line
// deletion, favourites and cost distribution.
#include <cmath>
#include <functional>
#include <optional>
#include <vector>

#include "kxui/business/favorite_items.h"
#include "kxui/business/progids.h"
#include "kxui/business/req_cost_distribs.h"
#include "kxui/business/requisition.h"
#include "kxui/business/utils.h"
#include "kxui/frame/display.h"
#include "kxui/frame/settings.h"
#include "kxui/frame/text.h"
#include "kxui/requisition/cart_messages.h"
#include "kxui/requisition/ui_req.h"

namespace kxui {

namespace {

// No column of these results is a date, so the date style is never used.
constexpr int32_t kNoDateStyle = 2;

bool same_currency(const std::string& a, const std::string& b) { return text::iequals(a, b); }

// Unit prices of the rows in the session's currency, converted once per row (both money
// columns ask for it; the columns are resolved on the first row). The Utils
// object and the server date are obtained on the first conversion, so a cart already in
// the session's currency asks for neither.
class PriceConverter {
 public:
  using MakeUtils = std::function<std::shared_ptr<business::Utils>()>;
  PriceConverter(MakeUtils make_utils, const SessionPtr& session, Variant& custom_data,
                 std::function<void()> refuse)
      : make_utils_(std::move(make_utils)),
        session_(session),
        currency_(session->CurrencyCode()),
        custom_data_(custom_data),
        refuse_(std::move(refuse)) {}

  const std::string& currency() const { return currency_; }

  double unit_price(const Recordset& row) {
    if (!bound_) {
      price_col_ = row.GetFields().index_of("UnitPrice");
      currency_col_ = row.GetFields().index_of("CurrencyCode");
      bound_ = true;
    }
    const int32_t position = row.AbsolutePosition();
    if (position != cached_position_) {
      cached_price_ = convert(row);
      cached_position_ = position;
    }
    return cached_price_;
  }

 private:
  double convert(const Recordset& row) {
    const Variant& price = row.value(price_col_);
    if (price.is_null() || price.is_empty()) refuse_();  // no price: nothing to convert
    const double amount = price.to_double();
    const std::string from = row.value(currency_col_).to_string();
    if (same_currency(from, currency_)) return amount;
    if (!utils_) {
      utils_ = make_utils_();
      server_date_ = utils_->GetServerDate(session_, custom_data_);
    }
    double converted = 0;
    if (!utils_->ConvertCurrency(session_, amount, from, currency_, server_date_, converted,
                                 custom_data_)) {
      refuse_();
    }
    return converted;
  }

  MakeUtils make_utils_;
  const SessionPtr& session_;
  std::string currency_;
  Variant& custom_data_;
  std::function<void()> refuse_;
  std::shared_ptr<business::Utils> utils_;
  Variant server_date_;
  bool bound_ = false;
  int32_t price_col_ = 0, currency_col_ = 0;
  int32_t cached_position_ = -1;
  double cached_price_ = 0;
};

// The cart's display columns: quantity, converted unit price, extended price.
std::vector<DisplayColumn> cart_columns(const std::shared_ptr<PriceConverter>& prices) {
  auto qty_column = [](const Recordset& src) { return src.GetFields().index_of("OrderQty"); };
  return {
      computed_display("UIDisplay_OrderQty", adVarWChar, 50,
                       [qty_column](const Recordset& src, DisplayContext& ctx) -> RowFiller {
                         return [qty = qty_column(src), &ctx](const Recordset& row) {
                           return Variant(ctx.amount_text(row.value(qty).to_double()));
                         };
                       }),
      computed_display("UIDisplay_UnitPrice", adVarWChar, 100,
                       [prices](const Recordset&, DisplayContext& ctx) -> RowFiller {
                         return [prices, &ctx](const Recordset& row) {
                           return Variant(
                               ctx.money_text(prices->unit_price(row), prices->currency()));
                         };
                       }),
      computed_display(
          "UIDisplay_ExtendedPrice", adVarWChar, 100,
          [prices, qty_column](const Recordset& src, DisplayContext& ctx) -> RowFiller {
            return [prices, qty = qty_column(src), &ctx](const Recordset& row) {
              const double extended = prices->unit_price(row) * row.value(qty).to_double();
              return Variant(ctx.money_text(extended, prices->currency()));
            };
          }),
  };
}

// The values of a Variant that holds a one-dimensional array; none for Missing or Empty.
std::vector<Variant> array_values(const Variant& v) {
  if (v.is_missing() || v.is_empty()) return {};
  if (!v.is_array() || v.array().dims() != 1) fail(err::kTypeMismatch);
  return v.array().values();
}

}  // namespace

RecordsetPtr UIReq::GetItemsRs(const SessionPtr& p_Session, int32_t p_lReqID,
                               ByRef<Variant> p_CustomData) noexcept {
  return guarded(
      "UIReq::GetItemsRs", RecordsetPtr(),
      [&] {
        auto req = create<business::Requisition>(progid::Requisition);
        RecordsetPtr items = req->GetItems(p_Session, p_lReqID, *p_CustomData);
        check(req, req->Success());
        Recordset& source = require(items);
        require(p_Session);
        auto prices = std::make_shared<PriceConverter>(
            [this] { return create<business::Utils>(progid::Utils); }, p_Session, *p_CustomData,
            [&] { raise_validation(p_Session, msg::kItemsPriceConversion); });
        DisplayContext ctx(runtime(), require(p_Session), kNoDateStyle);
        return rebuild_for_display(source, cart_columns(prices), ctx);
      },
      Track::kSuccess);
}

RecordsetPtr UIReq::GetItemDetails(const SessionPtr& p_Session, int32_t p_lReqID,
                                   int32_t p_lLineNum, ByRef<Variant> p_CustomData) noexcept {
  return guarded(
      "UIReq::GetItemDetails", RecordsetPtr(),
      [&] {
        auto req = create<business::Requisition>(progid::Requisition);
        RecordsetPtr item = req->GetItem(p_Session, p_lReqID, p_lLineNum, *p_CustomData);
        check(req, req->Success());
        Recordset& source = require(item);
        require(p_Session);
        auto prices = std::make_shared<PriceConverter>(
            [this] { return create<business::Utils>(progid::Utils); }, p_Session, *p_CustomData,
            [&] { raise_validation(p_Session, msg::kItemPriceConversion); });
        DisplayContext ctx(runtime(), require(p_Session), kNoDateStyle);
        return rebuild_for_display(source, cart_columns(prices), ctx);
      },
      Track::kSuccess);
}

bool UIReq::UpdateItemQty(const SessionPtr& p_Session, int32_t p_lReqID, int32_t p_lLineNum,
                          const std::string& p_sOrderQty, ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIReq::UpdateItemQty", false, [&] {
    auto req = create<business::Requisition>(progid::Requisition);
    const int32_t locale_id = require(p_Session).LocaleID();
    auto parser = create_direct<CurrencyFormatter>(service_class::kCurrencyFormatter);
    // The quantity message of a line update, as for a special request's update.
    const double qty =
        parse_quantity(*parser, p_Session, locale_id, p_sOrderQty, msg::kInvalidUpdateSpecialQty);
    check(req, req->UpdateItemQty(p_Session, p_lReqID, p_lLineNum, qty, *p_CustomData));
    return true;
  });
}

bool UIReq::DeleteItem(const SessionPtr& p_Session, int32_t p_lReqID, int32_t p_lLineNum,
                       ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIReq::DeleteItem", false, [&] {
    auto req = create<business::Requisition>(progid::Requisition);
    check(req, req->DeleteItem(p_Session, p_lReqID, p_lLineNum, *p_CustomData));
    return true;
  });
}

RecordsetPtr UIReq::GetFavoritesListPage(const SessionPtr& p_Session, int32_t p_lPage,
                                         ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIReq::GetFavoritesListPage", RecordsetPtr(), [&] {
    auto favorites = create<business::FavoriteItems>(progid::FavoriteItems);
    RecordsetPtr list = favorites->GetFavoriteList(p_Session, *p_CustomData);
    check(favorites, favorites->Success());
    Recordset& source = require(list);
    auto ini = create<AppIni>(progid::AppIni);
    const DisplayColumn columns[] = {
        computed_display("UIDisplay_UnitPrice", adVarWChar, 100,
                         [](const Recordset& src, DisplayContext& ctx) -> RowFiller {
                           const int32_t price = src.GetFields().index_of("UnitPrice");
                           const int32_t currency = src.GetFields().index_of("CurrencyCode");
                           return [price, currency, &ctx](const Recordset& row) {
                             return Variant(ctx.money_text(row.value(price).to_double(),
                                                           row.value(currency).to_string()));
                           };
                         })};
    return display_list_page(runtime(), *ini, p_Session, *p_CustomData, source, p_lPage,
                             kNoDateStyle, columns);
  });
}

RecordsetPtr UIReq::GetCostDistribsRs(const SessionPtr& p_Session, int32_t p_lReqID,
                                      int32_t p_lLineNum, ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIReq::GetCostDistribsRs", RecordsetPtr(), [&] {
    auto distribs = create<business::ReqCostDistribs>(progid::ReqCostDistribs);
    RecordsetPtr shares = distribs->GetCostDistribs(p_Session, p_lReqID, p_lLineNum, *p_CustomData);
    check(distribs, distribs->Success());
    Recordset& source = require(shares);
    const DisplayColumn columns[] = {
        computed_display("UIDisplay_Percentage", adVarWChar, 50,
                         [](const Recordset& src, DisplayContext& ctx) -> RowFiller {
                           const int32_t percentage = src.GetFields().index_of("Percentage");
                           return [percentage, &ctx](const Recordset& row) {
                             return Variant(ctx.amount_text(row.value(percentage).to_double()));
                           };
                         })};
    DisplayContext ctx(runtime(), require(p_Session), kNoDateStyle);
    return rebuild_for_display(source, columns, ctx);
  });
}

bool UIReq::SaveCostDistribs(const SessionPtr& p_Session, int32_t p_lReqID, int32_t p_lLineNum,
                             const Variant& p_CostCenterIDs, const Variant& p_Percentages,
                             ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIReq::SaveCostDistribs", false, [&] {
    auto distribs = create<business::ReqCostDistribs>(progid::ReqCostDistribs);
    const std::vector<Variant> ids = array_values(p_CostCenterIDs);
    const std::vector<Variant> percentages = array_values(p_Percentages);
    if (ids.size() != percentages.size()) {
      fail(err::kInvalidProcedureCall, {}, "one percentage per cost centre");
    }
    const int32_t locale_id = require(p_Session).LocaleID();
    auto parser = create_direct<CurrencyFormatter>(service_class::kCurrencyFormatter);
    std::vector<business::CostDistrib> shares;
    double total = 0;
    for (size_t i = 0; i < ids.size(); ++i) {
      const std::optional<std::string> text = percentages[i].try_to_string();
      if (!text) raise_validation(p_Session, msg::kCostDistribPercentInvalid);
      const double percentage =
          parse_quantity(*parser, p_Session, locale_id, *text, msg::kCostDistribPercentInvalid);
      if (!(percentage > 0 && percentage <= 100)) {
        raise_validation(p_Session, msg::kCostDistribPercentInvalid);
      }
      shares.push_back({ids[i].to_int32(), percentage});
      total += percentage;
    }
    // Shares carry four decimals, so their sum is exact to well below 0.00005.
    if (!shares.empty() && std::fabs(total - 100.0) > 0.00005) {
      raise_validation(p_Session, msg::kCostDistribTotalInvalid);
    }
    check(distribs,
          distribs->SaveCostDistribs(p_Session, p_lReqID, p_lLineNum, shares, *p_CustomData));
    return true;
  });
}

}  // namespace kxui
