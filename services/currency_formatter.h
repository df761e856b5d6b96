// The default CurrencyFormatter: money, quantities and typed numbers in the user's locale,
// formatted and parsed by ICU.
#pragma once

#include <cstdint>
#include <string>

#include "kxui/frame/services.h"

namespace kxui::services {

// Stateless: every instance shares process-wide caches of immutable ICU number
// formatters (one per locale and currency, built on first use), so creating one per
// call costs an allocation, not an ICU build. Safe to use from several threads.
//
// Every operation throws Failure 5 (source "KxLocale03.CurrencyFormatter", the detail
// naming the culprit) for a locale identifier ICU does not know, an unknown currency
// code, or an amount that is not a finite number.
class IcuCurrencyFormatter : public CurrencyFormatter {
 public:
  // Texts are laid out from what ICU printed for probe values (the same bytes, proven
  // per locale and currency when its formatter is built; any that differ stay with
  // ICU). `layouts` false formats every amount through ICU, for comparing the two.
  explicit IcuCurrencyFormatter(bool layouts = true) : layouts_(layouts) {}

  // The locale's grouping and decimal marks, up to four decimals, no trailing zeros;
  // ties round away from zero ("1,234.5", "-0.1235").
  std::string FormatAmount(int32_t locale_id, double amount) override;
  // The locale's currency pattern with the currency's own number of decimals, ties
  // away from zero: 1234.5 USD in 1033 "$1,234.50", EUR in 1031 "1.234,50 €" (with
  // the no-break space ICU emits), JPY in 1041 "￥1,235". The code is an ISO 4217
  // code, letters in either case.
  std::string FormatCurrencyAmount(int32_t locale_id, const std::string& currency_code,
                                   double amount) override;
  // True, with the value in `number`, when the whole text (white space around it
  // allowed) is one number in the locale's conventions, checked strictly by ICU: in
  // 1031 "1.234,5" is 1234.5 and "2,5" is 2.5; in 1033 "2,5" and "1.2.3" are rejected.
  // False for anything else ("", "abc", "50%", a number that overflows a double);
  // `number` is then left unchanged.
  bool ParseNumber(int32_t locale_id, const std::string& text, double& number) override;

 private:
  bool layouts_;
};

}  // namespace kxui::services
