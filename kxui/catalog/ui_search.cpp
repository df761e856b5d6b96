#include "kxui/catalog/ui_search.h"

#include "kxui/business/part_search.h"
#include "kxui/business/progids.h"
#include "kxui/frame/services.h"
#include "kxui/frame/settings.h"

namespace kxui {

namespace {

// The catalog's own fallback, smaller than the list pages' 20.
constexpr int32_t kSearchPageSizeDefault = 10;

// Fixed arguments of the catalog's loads.
constexpr int32_t kDetailFixed = 0;
constexpr int32_t kCursorArg = 3;

// Stores the answer first, so an empty one reaches the page too, then tells whether it
// has rows (91 for Nothing).
bool store_and_test(RecordsetPtr rs, Variant& out) {
  out = Variant(rs);
  Recordset& r = require(rs);
  return !(r.IsBOF() && r.IsEOF());
}

}  // namespace

UISearch::UISearch(std::shared_ptr<Runtime> runtime) : Facade("UISearch", std::move(runtime)) {}

std::string UISearch::FormatCurrency(const SessionPtr& p_objSession, Currency p_CurrencyValue,
                                     ByRef<Variant>) noexcept {
  return guarded("UISearch::FormatCurrency", std::string(), [&] {
    const Session& session = require(p_objSession);
    const int32_t locale = session.LocaleID();
    const std::string currency = session.CurrencyCode();
    auto money = create_direct<CurrencyFormatter>(service_class::kCurrencyFormatter);
    return money->FormatCurrencyAmount(locale, currency, p_CurrencyValue.to_double());
  });
}

bool UISearch::GetPartDetail(const SessionPtr& p_objSession, int32_t p_iPartID,
                             ByRef<Variant> rsItemDetail, const std::string& p_sLangCode,
                             int32_t p_lDocBorgID, ByRef<Variant> p_CustomData) noexcept {
  return guarded("UISearch::GetPartDetail", false, [&] {
    const Session& session = require(p_objSession);
    const std::string lang = p_sLangCode.empty() ? session.LangCode() : p_sLangCode;
    const std::string currency = session.CurrencyCode();
    auto search = create<business::PartSearch>(progid::PartSearch);
    RecordsetPtr rs = search->LoadPartDetail(p_objSession, p_iPartID, "", "", currency, lang,
                                             kDetailFixed, kCursorArg, p_lDocBorgID,
                                             *p_CustomData);
    return store_and_test(std::move(rs), *rsItemDetail);
  });
}

bool UISearch::GetPartViews(const SessionPtr& p_objSession, int32_t p_iPartID,
                            ByRef<Variant> rsItemViews, const std::string& p_sLangCode,
                            ByRef<Variant> p_CustomData) noexcept {
  return guarded("UISearch::GetPartViews", false, [&] {
    auto search = create<business::PartSearch>(progid::PartSearch);
    RecordsetPtr rs = search->LoadPartViews(p_objSession, p_iPartID, p_sLangCode, kCursorArg,
                                            kCursorArg, *p_CustomData);
    return store_and_test(std::move(rs), *rsItemViews);
  });
}

int32_t UISearch::GetSearchPageSize(const SessionPtr& p_objSession,
                                    ByRef<Variant> p_CustomData) noexcept {
  return guarded("UISearch::GetSearchPageSize", int32_t{0}, [&] {
    auto ini = create<AppIni>(progid::AppIni);
    return read_page_size(*ini, p_objSession, *p_CustomData, kSearchPageSizeDefault);
  });
}

}  // namespace kxui
