// The default locale services against raw ICU calls on cached ICU objects, measured in
// one run so the ratios compare like with like:
//  - money: FormatCurrencyAmount on a formatter created through the runtime for every
//    call, versus a LocalizedNumberFormatter built once (target: at most 1.3x);
//  - dates: ConvertTimeZone + FormatDateValue on a formatter created per call, every day
//    a new one (so the day-text cache cannot help), versus getOffset + a SimpleDateFormat
//    built once (target: at most 1.3x);
//  - the day-text cache on a 10,000-row date column whose rows share a few hundred days.
#include <benchmark/benchmark.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

#include <unicode/basictz.h>
#include <unicode/numberformatter.h>
#include <unicode/smpdtfmt.h>

#include "kxui/frame/runtime.h"
#include "kxui/frame/services.h"
#include "services/date_formatter.h"
#include "services/register.h"

namespace {

using namespace kxui;

constexpr int32_t kLocale = 1033, kUTC = 15, kNewYork = 8;
constexpr int64_t kDay = 86400;

std::shared_ptr<Runtime> runtime() {
  static auto rt = [] {
    auto r = std::make_shared<Runtime>();
    services::RegisterDefaultServices(*r, {});
    // The same date service without its day-text cache, for the column comparison.
    r->Register("Bench.UncachedDates", [] { return std::make_shared<services::IcuDateFormatter>(false); });
    return r;
  }();
  return rt;
}

std::vector<double> amounts() {
  std::mt19937 rng(7);
  std::uniform_real_distribution<double> d(0, 100000);
  std::vector<double> out(4096);
  for (double& a : out) a = std::round(d(rng) * 100) / 100;
  return out;
}

// Stored (UTC) date-times, one per day over ~180 years: no two calls share a day
// within the cache's reach.
std::vector<Date> distinct_days() {
  std::vector<Date> out;
  const int64_t start = Date::from_civil(1900, 1, 1).seconds();
  for (int64_t i = 0; i < 65536; ++i) out.push_back(Date::from_seconds(start + i * kDay + (i * 7919) % kDay));
  return out;
}

// A list's date column: 10,000 rows created over a year, most in the last few months.
std::vector<Date> date_column() {
  std::mt19937 rng(11);
  std::exponential_distribution<double> age(1.0 / 45);
  std::uniform_int_distribution<int64_t> second(0, kDay - 1);
  const int64_t today = Date::from_civil(2024, 6, 30).seconds();
  std::vector<Date> out;
  for (int i = 0; i < 10000; ++i) {
    const int64_t days_ago = std::min<int64_t>(static_cast<int64_t>(age(rng)), 365);
    out.push_back(Date::from_seconds(today - days_ago * kDay + second(rng)));
  }
  return out;
}

// Arg: rows formatted per formatter created (1: a new one for every amount; 20: one per
// call for a page of 20 rows, as the display rebuild does). Times are per amount.
void BM_Money_Ours(benchmark::State& state) {
  const auto values = amounts();
  const auto rt = runtime();
  const int64_t rows = state.range(0);
  size_t i = 0;
  for (auto _ : state) {
    auto f = create_as<CurrencyFormatter>(*rt, service_class::kCurrencyFormatter);
    for (int64_t r = 0; r < rows; ++r) {
      benchmark::DoNotOptimize(f->FormatCurrencyAmount(kLocale, "USD", values[i++ & 4095]));
    }
  }
  state.counters["ns_per_amount"] = benchmark::Counter(
      static_cast<double>(state.iterations() * rows),
      benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(BM_Money_Ours)->Arg(1)->Arg(20);

void BM_Money_RawICU(benchmark::State& state) {
  const auto values = amounts();
  UErrorCode status = U_ZERO_ERROR;
  const auto f = icu::number::NumberFormatter::withLocale(icu::Locale("en_US"))
                     .unit(icu::CurrencyUnit(u"USD", status))
                     .roundingMode(UNUM_ROUND_HALFUP);
  size_t i = 0;
  for (auto _ : state) {
    auto out = f.formatDouble(values[i++ & 4095], status);
    std::string text;
    out.toTempString(status).toUTF8String(text);
    benchmark::DoNotOptimize(text);
  }
}
BENCHMARK(BM_Money_RawICU);

// Arg as for money: rows per formatter created. Times are per date.
void BM_Date_Ours(benchmark::State& state) {
  const auto dates = distinct_days();
  const auto rt = runtime();
  const int64_t rows = state.range(0);
  size_t i = 0;
  for (auto _ : state) {
    auto f = create_as<DateFormatter>(*rt, service_class::kDateFormatter);
    for (int64_t r = 0; r < rows; ++r) {
      const Date local = f->ConvertTimeZone(kUTC, dates[i++ & 65535], kNewYork);
      benchmark::DoNotOptimize(f->FormatDateValue(kLocale, 2, local.date_part()));
    }
  }
  state.counters["ns_per_date"] = benchmark::Counter(
      static_cast<double>(state.iterations() * rows),
      benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(BM_Date_Ours)->Arg(1)->Arg(20);

void BM_Date_RawICU(benchmark::State& state) {
  const auto dates = distinct_days();
  std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::createTimeZone("America/New_York"));
  std::unique_ptr<icu::DateFormat> df(
      icu::DateFormat::createDateInstance(icu::DateFormat::kMedium, icu::Locale("en_US")));
  df->setTimeZone(*icu::TimeZone::getGMT());
  size_t i = 0;
  for (auto _ : state) {
    UErrorCode status = U_ZERO_ERROR;
    const double utc = static_cast<double>(dates[i++ & 65535].seconds()) * 1000;
    int32_t raw = 0, dst = 0;
    zone->getOffset(utc, false, raw, dst, status);
    const int64_t local_s = static_cast<int64_t>(utc + raw + dst) / 1000;
    const int64_t day = local_s / kDay - (local_s % kDay < 0);
    icu::UnicodeString out;
    df->format(static_cast<double>(day * kDay) * 1000, out);
    std::string text;
    out.toUTF8String(text);
    benchmark::DoNotOptimize(text);
  }
}
BENCHMARK(BM_Date_RawICU);

// One list call: a formatter created once, then every row converted and formatted.
void date_column_bench(benchmark::State& state, const char* service) {
  const auto column = date_column();
  const auto rt = runtime();
  for (auto _ : state) {
    auto f = create_as<DateFormatter>(*rt, service);
    for (const Date& stored : column) {
      benchmark::DoNotOptimize(
          f->FormatDateValue(kLocale, 2, f->ConvertTimeZone(kUTC, stored, kNewYork).date_part()));
    }
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(column.size()));
}
void BM_DateColumn10k_DayCache(benchmark::State& state) {
  date_column_bench(state, service_class::kDateFormatter);
}
void BM_DateColumn10k_NoCache(benchmark::State& state) {
  date_column_bench(state, "Bench.UncachedDates");
}
BENCHMARK(BM_DateColumn10k_DayCache)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_DateColumn10k_NoCache)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
