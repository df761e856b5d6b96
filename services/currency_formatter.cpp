#include "services/currency_formatter.h"

#include <cmath>
#include <memory>
#include <mutex>
#include <optional>
#include <shared_mutex>
#include <unordered_map>

#include <unicode/numberformatter.h>
#include <unicode/numfmt.h>
#include <unicode/ucurr.h>
#include <unicode/uchar.h>

#include "kxui/frame/errors.h"
#include "kxui/frame/failure.h"
#include "services/icu_support.h"
#include "services/number_layout.h"

namespace kxui::services {
namespace {

using icu::number::LocalizedNumberFormatter;
constexpr std::string_view kSource = "KxLocale03.CurrencyFormatter";

// A currency code packed into 24 bits (0: no currency, plain amounts).
using CurrencyKey = uint32_t;

// Three letters, upper-cased and packed; whether ICU knows the currency is checked
// when its formatter is built.
CurrencyKey currency_key(const std::string& code) {
  CurrencyKey key = 0;
  bool letters = code.size() == 3;
  for (char c : code) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    letters = letters && c >= 'A' && c <= 'Z';
    key = (key << 8) | static_cast<uint8_t>(c);
  }
  if (!letters) fail(err::kInvalidProcedureCall, kSource, "unknown currency code '" + code + "'");
  return key;
}

LocalizedNumberFormatter build(int32_t locale_id, CurrencyKey currency) {
  const icu::Locale& loc = detail::locale_for(locale_id, kSource);
  // Ties away from zero, as money is rounded on paper; no minus sign on a zero.
  auto f = icu::number::NumberFormatter::withLocale(loc)
               .roundingMode(UNUM_ROUND_HALFUP)
               .sign(UNUM_SIGN_NEGATIVE);
  if (currency == 0) return f.precision(icu::number::Precision::minMaxFraction(0, 4));
  UChar iso[4] = {static_cast<UChar>(currency >> 16), static_cast<UChar>((currency >> 8) & 0xFF),
                  static_cast<UChar>(currency & 0xFF), 0};
  UErrorCode status = U_ZERO_ERROR;
  if (!ucurr_isAvailable(iso, U_DATE_MIN, U_DATE_MAX, &status) || U_FAILURE(status)) {
    fail(err::kInvalidProcedureCall, kSource,
         "unknown currency code '" + std::string{static_cast<char>(iso[0]), static_cast<char>(iso[1]),
                                                 static_cast<char>(iso[2])} + "'");
  }
  icu::CurrencyUnit unit(iso, status);
  detail::check(status, kSource, "currency unit");
  // The currency's own fraction digits are the default precision of a currency unit.
  return f.unit(unit);
}

// An ICU formatter and, when probing proved it gives the same bytes, the layout that
// prints its texts without ICU.
struct Formatter {
  LocalizedNumberFormatter icu;
  std::optional<detail::NumberLayout> layout;
  explicit Formatter(LocalizedNumberFormatter f)
      : icu(std::move(f)), layout(detail::NumberLayout::learn(icu)) {}
};

// Immutable formatters, shared by every thread; entries are never removed, so the
// table is bounded by the (locale, currency) pairs actually used.
class FormatterCache {
 public:
  const Formatter& get(uint64_t key, int32_t locale_id, CurrencyKey currency) {
    {
      std::shared_lock lock(mutex_);
      auto it = map_.find(key);
      if (it != map_.end()) return *it->second;
    }
    auto built = std::make_unique<const Formatter>(build(locale_id, currency));
    std::unique_lock lock(mutex_);
    return *map_.try_emplace(key, std::move(built)).first->second;
  }

 private:
  std::shared_mutex mutex_;
  std::unordered_map<uint64_t, std::unique_ptr<const Formatter>> map_;
};

// The shared formatter, remembered per thread as well so that the usual call takes no
// lock; the last one used is checked first, as a page formats one locale and currency.
const Formatter& formatter(int32_t locale_id, CurrencyKey currency) {
  static auto* shared = new FormatterCache;  // never destroyed: threads may outlive main
  struct Known {
    uint64_t last_key = ~uint64_t{0};
    const Formatter* last = nullptr;
    std::unordered_map<uint64_t, const Formatter*> all;
  };
  thread_local Known known;
  const uint64_t key = (static_cast<uint64_t>(static_cast<uint32_t>(locale_id)) << 32) | currency;
  if (key == known.last_key) return *known.last;
  auto it = known.all.find(key);
  const Formatter* f = it != known.all.end() ? it->second : &shared->get(key, locale_id, currency);
  if (it == known.all.end()) known.all.emplace(key, f);
  known.last_key = key;
  known.last = f;
  return *f;
}

std::string format(const Formatter& f, double amount, bool use_layout) {
  if (!std::isfinite(amount)) fail(err::kInvalidProcedureCall, kSource, "amount is not a finite number");
  if (use_layout && f.layout) return f.layout->format(amount);
  UErrorCode status = U_ZERO_ERROR;
  icu::number::FormattedNumber out = f.icu.formatDouble(amount, status);
  std::string text;
  out.toTempString(status).toUTF8String(text);
  detail::check(status, kSource, "formatting an amount");
  return text;
}

// Parsers keep mutable state, so each thread has its own.
const icu::NumberFormat& parser_for(int32_t locale_id) {
  thread_local std::unordered_map<int32_t, std::unique_ptr<icu::NumberFormat>> parsers;
  auto it = parsers.find(locale_id);
  if (it != parsers.end()) return *it->second;
  UErrorCode status = U_ZERO_ERROR;
  std::unique_ptr<icu::NumberFormat> nf(
      icu::NumberFormat::createInstance(detail::locale_for(locale_id, kSource), status));
  detail::check(status, kSource, "number parser");
  nf->setLenient(false);
  return *parsers.emplace(locale_id, std::move(nf)).first->second;
}

}  // namespace

std::string IcuCurrencyFormatter::FormatAmount(int32_t locale_id, double amount) {
  return format(formatter(locale_id, 0), amount, layouts_);
}

std::string IcuCurrencyFormatter::FormatCurrencyAmount(int32_t locale_id,
                                                       const std::string& currency_code,
                                                       double amount) {
  return format(formatter(locale_id, currency_key(currency_code)), amount, layouts_);
}

bool IcuCurrencyFormatter::ParseNumber(int32_t locale_id, const std::string& text,
                                       double& number) {
  const icu::NumberFormat& parser = parser_for(locale_id);
  icu::UnicodeString s = detail::from_utf8(text);
  int32_t begin = 0, end = s.length();
  while (begin < end && u_isUWhiteSpace(s.char32At(begin))) begin = s.moveIndex32(begin, 1);
  while (end > begin && u_isUWhiteSpace(s.char32At(s.moveIndex32(end, -1)))) {
    end = s.moveIndex32(end, -1);
  }
  if (begin == end) return false;
  const icu::UnicodeString trimmed = s.tempSubStringBetween(begin, end);
  icu::Formattable value;
  icu::ParsePosition pos(0);
  parser.parse(trimmed, value, pos);
  if (pos.getErrorIndex() >= 0 || pos.getIndex() != trimmed.length()) return false;
  UErrorCode status = U_ZERO_ERROR;
  double v = value.getDouble(status);
  if (U_FAILURE(status) || !std::isfinite(v)) return false;
  number = v;
  return true;
}

}  // namespace kxui::services
