// UISearch: catalog search — a part's details and views, catalog prices formatted for the
// user, and the page size of search results.
//
// Part details and views come from "KxCat03.PartSearch", the page size from
// "KxUtility03.AppIni", both through the ClassFactory, one per call; money is formatted
// by the CurrencyFormatter, created directly. On failure an operation records the error
// under "UISearch::<operation>" and returns its failure value; in/out record sets are
// written only as stated. There is no Success property.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "kxui/frame/byref.h"
#include "kxui/frame/facade.h"
#include "kxui/frame/variant.h"

namespace kxui {

class UISearch : public Facade {
 public:
  explicit UISearch(std::shared_ptr<Runtime> runtime = Runtime::process());

  // The amount in the session's currency and locale; "" on failure.
  std::string FormatCurrency(const SessionPtr& p_objSession, Currency p_CurrencyValue,
                             ByRef<Variant> p_CustomData = {}) noexcept;

  // The detail rows of a part priced in the session's currency and described in
  // p_sLangCode ("" asks for the session's LangCode). rsItemDetail receives the record
  // set whether or not it holds rows. True when it holds at least one; False for none,
  // with nothing recorded. On failure False and rsItemDetail as it was before the
  // failing step (Nothing, with error 91, when the catalog answered Nothing).
  bool GetPartDetail(const SessionPtr& p_objSession, int32_t p_iPartID,
                     ByRef<Variant> rsItemDetail, const std::string& p_sLangCode = "",
                     int32_t p_lDocBorgID = 0, ByRef<Variant> p_CustomData = {}) noexcept;

  // The alternative views of a part, as GetPartDetail; p_sLangCode is passed on as it
  // stands, "" included (it does not fall back to the session's language).
  bool GetPartViews(const SessionPtr& p_objSession, int32_t p_iPartID, ByRef<Variant> rsItemViews,
                    const std::string& p_sLangCode = "", ByRef<Variant> p_CustomData = {}) noexcept;

  // The "Page Size" setting (section "Paging", application "Dunmere"); 10 when it
  // cannot be read; 0 on failure (a setting that is not a number included).
  int32_t GetSearchPageSize(const SessionPtr& p_objSession,
                            ByRef<Variant> p_CustomData = {}) noexcept;
};

}  // namespace kxui
