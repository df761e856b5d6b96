// The formatted row of a list page: the display rebuild of 1,000 rows (the copied row, a
// money value in its currency, a plain number, and a stored date converted from zone 15
// to New York and formatted), against the same rebuild whose display columns call ICU
// directly on formatters built once. Both run in one program; the summary prints min and
// median ns/row over the repetitions and their ratio.
//
// Arg 0: dates repeat as in a real list (a few hundred days); arg 1: every date is a day
// no recent row had (the rows walk ~180 years, so no remembered day text helps).
//
// Also the cost of creating a money formatter per value through the runtime, against a
// cached ICU formatter.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <unicode/basictz.h>
#include <unicode/numberformatter.h>
#include <unicode/smpdtfmt.h>

#include "kxui/frame/display.h"
#include "kxui/frame/runtime.h"
#include "kxui/frame/services.h"
#include "services/register.h"

namespace {

using namespace kxui;

constexpr int32_t kRows = 1000, kLocale = 1033, kNewYork = 8, kSources = 64;
constexpr int64_t kDay = 86400;

std::shared_ptr<Runtime> runtime() {
  static auto rt = [] {
    auto r = std::make_shared<Runtime>();
    services::RegisterDefaultServices(*r, {});
    return r;
  }();
  return rt;
}

// A requisition line list: id, name, amount and its currency, quantity, creation time.
RecordsetPtr make_source(int32_t index, bool distinct_days) {
  std::mt19937 rng(static_cast<unsigned>(index + 1));
  std::uniform_real_distribution<double> money(0, 100000);
  std::uniform_int_distribution<int> decimals(0, 4);
  std::exponential_distribution<double> age(1.0 / 45);
  std::uniform_int_distribution<int64_t> second(0, kDay - 1);
  const int64_t today = Date::from_civil(2024, 6, 30).seconds();
  const int64_t first_day = Date::from_civil(1900, 1, 1).seconds() + int64_t{index} * kRows * kDay;
  auto rs = std::make_shared<Recordset>();
  auto& f = rs->GetFields();
  f.Append("LineID", adInteger);
  f.Append("LineName", adVarWChar, 50);
  f.Append("Amount", adDouble);
  f.Append("CurrencyCode", adVarWChar, 3);
  f.Append("Quantity", adDouble);
  f.Append("CreateDate", adDate);
  rs->Open();
  for (int32_t i = 0; i < kRows; ++i) {
    const double scale = std::pow(10.0, decimals(rng));
    const int64_t days_ago = std::min<int64_t>(static_cast<int64_t>(age(rng)), 365);
    const int64_t at = distinct_days ? first_day + int64_t{i} * kDay + second(rng)
                                     : today - days_ago * kDay + second(rng);
    rs->AddNew();
    rs->set_value(0, Variant(i + 1));
    rs->set_value(1, Variant("Line item " + std::to_string(i % 97)));
    rs->set_value(2, Variant(std::round(money(rng) * 100) / 100));
    rs->set_value(3, Variant(std::string("USD")));
    rs->set_value(4, Variant(std::round(money(rng) / 100 * scale) / scale));
    rs->set_value(5, Variant(Date::from_seconds(at)));
    rs->Update();
  }
  return rs;
}

const std::vector<RecordsetPtr>& sources(bool distinct_days) {
  static std::map<bool, std::vector<RecordsetPtr>> all;
  auto& v = all[distinct_days];
  if (v.empty()) {
    for (int32_t i = 0; i < (distinct_days ? kSources : 1); ++i) v.push_back(make_source(i, distinct_days));
  }
  return v;
}

// The display columns through the library's services.
std::vector<DisplayColumn> library_columns() {
  return {
      computed_display("UIDisplay_Amount", adVarWChar, 100,
                       [](const Recordset& src, DisplayContext& ctx) -> RowFiller {
                         const int32_t amount = src.GetFields().index_of("Amount");
                         const int32_t currency = src.GetFields().index_of("CurrencyCode");
                         return [&ctx, amount, currency](const Recordset& row) {
                           return Variant(ctx.money_text(row.value(amount).to_double(),
                                                         row.value(currency).to_string()));
                         };
                       }),
      computed_display("UIDisplay_Quantity", adVarWChar, 100,
                       [](const Recordset& src, DisplayContext& ctx) -> RowFiller {
                         const int32_t quantity = src.GetFields().index_of("Quantity");
                         return [&ctx, quantity](const Recordset& row) {
                           return Variant(ctx.amount_text(row.value(quantity).to_double()));
                         };
                       }),
      date_display("CreateDate"),
  };
}

int64_t floor_div(int64_t a, int64_t b) { return a / b - ((a % b != 0) && ((a < 0) != (b < 0))); }

// Raw ICU, every formatter built once: what the same row costs without the library.
struct RawIcu {
  icu::number::LocalizedNumberFormatter money, amount;
  std::unique_ptr<icu::TimeZone> zone;
  std::unique_ptr<icu::DateFormat> dates;

  RawIcu() {
    UErrorCode status = U_ZERO_ERROR;
    const icu::Locale loc("en_US");
    auto base = icu::number::NumberFormatter::withLocale(loc)
                    .roundingMode(UNUM_ROUND_HALFUP)
                    .sign(UNUM_SIGN_NEGATIVE);
    money = base.unit(icu::CurrencyUnit(u"USD", status));
    amount = base.precision(icu::number::Precision::minMaxFraction(0, 4));
    zone.reset(icu::TimeZone::createTimeZone("America/New_York"));
    dates.reset(icu::DateFormat::createDateInstance(icu::DateFormat::kMedium, loc));
    dates->setTimeZone(*icu::TimeZone::getGMT());
  }
  static std::string text(const icu::number::LocalizedNumberFormatter& f, double v) {
    UErrorCode status = U_ZERO_ERROR;
    std::string out;
    f.formatDouble(v, status).toTempString(status).toUTF8String(out);
    return out;
  }
  std::string date_text(Date stored) const {
    UErrorCode status = U_ZERO_ERROR;
    const double utc = static_cast<double>(stored.seconds()) * 1000;
    int32_t raw = 0, dst = 0;
    zone->getOffset(utc, false, raw, dst, status);
    const int64_t local_ms = static_cast<int64_t>(utc) + raw + dst;
    const int64_t day = floor_div(floor_div(local_ms, 1000), kDay);
    icu::UnicodeString out;
    dates->format(static_cast<double>(day * kDay) * 1000, out);
    std::string s;
    out.toUTF8String(s);
    return s;
  }
};

RawIcu& raw_icu() {
  static RawIcu r;
  return r;
}

std::vector<DisplayColumn> raw_icu_columns() {
  RawIcu* icu = &raw_icu();
  return {
      computed_display("UIDisplay_Amount", adVarWChar, 100,
                       [icu](const Recordset& src, DisplayContext&) -> RowFiller {
                         const int32_t amount = src.GetFields().index_of("Amount");
                         return [icu, amount](const Recordset& row) {
                           return Variant(RawIcu::text(icu->money, row.value(amount).to_double()));
                         };
                       }),
      computed_display("UIDisplay_Quantity", adVarWChar, 100,
                       [icu](const Recordset& src, DisplayContext&) -> RowFiller {
                         const int32_t quantity = src.GetFields().index_of("Quantity");
                         return [icu, quantity](const Recordset& row) {
                           return Variant(RawIcu::text(icu->amount, row.value(quantity).to_double()));
                         };
                       }),
      computed_display("UIDisplay_CreateDate", adVarWChar, 100,
                       [icu](const Recordset& src, DisplayContext&) -> RowFiller {
                         const int32_t date = src.GetFields().index_of("CreateDate");
                         return [icu, date](const Recordset& row) {
                           return Variant(icu->date_text(row.value(date).to_date()));
                         };
                       }),
  };
}

BasicSession& session() {
  static BasicSession s = [] {
    BasicSession b;
    b.locale_id = kLocale;
    b.time_zone_id = kNewYork;
    return b;
  }();
  return s;
}

void rebuild_bench(benchmark::State& state, const std::vector<DisplayColumn>& columns) {
  const auto& srcs = sources(state.range(0) != 0);
  const auto rt = runtime();
  size_t next = 0;
  for (auto _ : state) {
    DisplayContext ctx(*rt, session(), 2);
    auto out = rebuild_for_display(*srcs[next++ % srcs.size()], columns, ctx);
    benchmark::DoNotOptimize(out);
  }
  state.counters["ns_per_row"] = benchmark::Counter(
      static_cast<double>(state.iterations() * kRows),
      benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void BM_Row_Library(benchmark::State& state) {
  static const auto columns = library_columns();
  rebuild_bench(state, columns);
}
void BM_Row_RawICU(benchmark::State& state) {
  static const auto columns = raw_icu_columns();
  rebuild_bench(state, columns);
}
// The row copy alone, without display columns: the floor under both.
void BM_Row_CopyOnly(benchmark::State& state) { rebuild_bench(state, {}); }
BENCHMARK(BM_Row_CopyOnly)->ArgName("distinct_days")->Arg(0)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Row_Library)->ArgName("distinct_days")->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Row_RawICU)->ArgName("distinct_days")->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

std::vector<double> amounts() {
  std::mt19937 rng(7);
  std::uniform_real_distribution<double> d(0, 100000);
  std::vector<double> out(4096);
  for (double& a : out) a = std::round(d(rng) * 100) / 100;
  return out;
}

// A money formatter created through the runtime for every value.
void BM_Money_CreatedPerValue(benchmark::State& state) {
  const auto values = amounts();
  const auto rt = runtime();
  size_t i = 0;
  for (auto _ : state) {
    auto f = create_as<CurrencyFormatter>(*rt, service_class::kCurrencyFormatter);
    benchmark::DoNotOptimize(f->FormatCurrencyAmount(kLocale, "USD", values[i++ & 4095]));
  }
}
BENCHMARK(BM_Money_CreatedPerValue);

void BM_Money_RawICU(benchmark::State& state) {
  const auto values = amounts();
  const RawIcu& icu = raw_icu();
  size_t i = 0;
  for (auto _ : state) benchmark::DoNotOptimize(RawIcu::text(icu.money, values[i++ & 4095]));
}
BENCHMARK(BM_Money_RawICU);

// The creation alone: what a page pays before its first value.
void BM_CreateMoneyFormatter(benchmark::State& state) {
  const auto rt = runtime();
  for (auto _ : state) {
    benchmark::DoNotOptimize(create_as<CurrencyFormatter>(*rt, service_class::kCurrencyFormatter));
  }
}
BENCHMARK(BM_CreateMoneyFormatter);

// Every display text of both rebuilds must be the same bytes before anything is timed.
bool outputs_agree() {
  const auto lib = library_columns();
  const auto raw = raw_icu_columns();
  for (bool distinct : {false, true}) {
    for (const RecordsetPtr& src : sources(distinct)) {
      DisplayContext a(*runtime(), session(), 2), b(*runtime(), session(), 2);
      auto x = rebuild_for_display(*src, lib, a);
      auto y = rebuild_for_display(*src, raw, b);
      const int32_t width = x->GetFields().Count();
      for (; !x->IsEOF(); x->MoveNext(), y->MoveNext()) {
        for (int32_t c = width - 3; c < width; ++c) {
          if (x->value(c).to_string() != y->value(c).to_string()) {
            std::fprintf(stderr, "column %d differs: '%s' vs ICU '%s'\n", c,
                         x->value(c).to_string().c_str(), y->value(c).to_string().c_str());
            return false;
          }
        }
      }
    }
  }
  return true;
}

// Console output, then per benchmark the min and median over the repetitions (every
// repetition when there are none) and the ratios to raw ICU.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const auto& run : runs) {
      if (run.run_type != Run::RT_Iteration || run.iterations == 0) continue;
      auto counter = run.counters.find("ns_per_row");
      // CPU time: the machines these run on are shared, and wall time counts the waits.
      const double ns = counter != run.counters.end()
                            ? counter->second.value * 1e9  // seconds per row
                            : run.GetAdjustedCPUTime() * (run.time_unit == benchmark::kMicrosecond ? 1e3 : 1);
      samples_[run.run_name.str()].push_back(ns);
    }
  }
  void Finalize() override {
    ConsoleReporter::Finalize();
    std::printf("\n%-36s %10s %10s %8s %8s\n", "", "min ns", "median ns", "x min", "x median");
    line("BM_Row_Library/distinct_days:0", "BM_Row_RawICU/distinct_days:0");
    line("BM_Row_Library/distinct_days:1", "BM_Row_RawICU/distinct_days:1");
    line("BM_Money_CreatedPerValue", "BM_Money_RawICU");
    line("BM_CreateMoneyFormatter", nullptr);
    line("BM_Row_CopyOnly/distinct_days:0", nullptr);
    line("BM_Row_RawICU/distinct_days:0", nullptr);
    line("BM_Row_RawICU/distinct_days:1", nullptr);
    line("BM_Money_RawICU", nullptr);
  }

 private:
  struct Stats {
    double min = 0, median = 0;
  };
  bool stats(const std::string& name, Stats& out) {
    auto it = samples_.find(name);
    if (it == samples_.end() || it->second.empty()) return false;
    auto v = it->second;
    std::sort(v.begin(), v.end());
    out.min = v.front();
    out.median = v.size() % 2 ? v[v.size() / 2] : (v[v.size() / 2 - 1] + v[v.size() / 2]) / 2;
    return true;
  }
  void line(const std::string& name, const char* baseline) {
    Stats s, b;
    if (!stats(name, s)) return;
    if (baseline && stats(baseline, b)) {
      std::printf("%-36s %10.1f %10.1f %8.2f %8.2f\n", name.c_str(), s.min, s.median,
                  s.min / b.min, s.median / b.median);
    } else {
      std::printf("%-36s %10.1f %10.1f\n", name.c_str(), s.min, s.median);
    }
  }
  std::map<std::string, std::vector<double>> samples_;
};

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  if (!outputs_agree()) return 1;
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  return 0;
}
