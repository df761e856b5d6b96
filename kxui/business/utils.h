// "KxUtility03.Utils": the business tier's utilities — the server's clock and currency
// conversion at a date.
#pragma once

#include <string>

#include "kxui/business/business_object.h"
#include "kxui/frame/session.h"
#include "kxui/frame/variant.h"

namespace kxui::business {

class Utils : public virtual BusinessObject {
 public:
  // The current date and time as the stores keep them (zone 15), as a Date.
  virtual Variant GetServerDate(const SessionPtr& session, Variant& custom_data) = 0;
  // `amount` in `from_currency` converted to `to_currency` at the rates in force on
  // `at_date`. False (error in GetError) when no rate is known; `converted` is then
  // meaningless.
  virtual bool ConvertCurrency(const SessionPtr& session, double amount,
                               const std::string& from_currency, const std::string& to_currency,
                               const Variant& at_date, double& converted,
                               Variant& custom_data) = 0;
};

}  // namespace kxui::business
