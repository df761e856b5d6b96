// Row copy into a record set (AddNew / assignment by column index / Update) against the
// copy of the same data held as a plain vector of rows of std::variant, and the memory
// a stored value costs. Each copy runs in several repetitions; the ratios compare the
// fastest and the median repetitions.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <cstdio>
#include <map>
#include <string>
#include <variant>
#include <vector>

#include "kxui/frame/recordset.h"

namespace {

using kxui::Variant;

constexpr int32_t kRows = 1'000'000;
constexpr int32_t kCols = 12;
constexpr int kRepetitions = 5;

// The same kinds of value, as a program without Variant would hold them.
using Plain = std::variant<std::monostate, bool, int16_t, int32_t, double, kxui::Currency,
                           kxui::Date, std::string, kxui::ObjectPtr>;
using PlainRows = std::vector<std::vector<Plain>>;

// The source data, built once: ints, doubles, ~12-character strings and dates.
struct Source {
  kxui::RecordsetPtr rs;
  PlainRows rows;
};

Plain cell(int32_t r, int32_t c) {
  switch (c % 4) {
    case 0: return r * 7 + c;
    case 1: return r * 0.25 + c;
    case 2: return "item-" + std::to_string(1000000 + r);
    default: return kxui::Date::from_seconds(1'600'000'000 + int64_t{r} * 3600);
  }
}

Variant to_variant(const Plain& p) {
  return std::visit(
      [](const auto& v) -> Variant {
        if constexpr (std::is_same_v<std::decay_t<decltype(v)>, std::monostate>) {
          return Variant();
        } else {
          return Variant(v);
        }
      },
      p);
}

const Source& source() {
  static const Source s = [] {
    Source out;
    out.rs = std::make_shared<kxui::Recordset>();
    static const kxui::DataTypeEnum types[] = {kxui::adInteger, kxui::adDouble, kxui::adVarWChar,
                                               kxui::adDate};
    for (int32_t c = 0; c < kCols; ++c) {
      out.rs->GetFields().Append("F" + std::to_string(c), types[c % 4], c % 4 == 2 ? 40 : 0);
    }
    out.rs->Open();
    out.rows.reserve(kRows);
    for (int32_t r = 0; r < kRows; ++r) {
      out.rs->AddNew();
      std::vector<Plain> row;
      row.reserve(kCols);
      for (int32_t c = 0; c < kCols; ++c) {
        row.push_back(cell(r, c));
        out.rs->set_value(c, to_variant(row.back()));
      }
      out.rs->Update();
      out.rows.push_back(std::move(row));
    }
    return out;
  }();
  return s;
}

// The copy a page rebuild performs: clone the layout, then every row field by field.
// `presize` tells the target the row count first, as a copy of known size can.
kxui::RecordsetPtr copy_recordset(kxui::Recordset& src, bool presize) {
  auto dst = kxui::CloneRecordsetStructure(src);
  dst->Open();
  if (presize) dst->reserve(src.RecordCount());
  const int32_t width = src.GetFields().Count();
  for (src.MoveFirst(); !src.IsEOF(); src.MoveNext()) {
    dst->AddNew();
    for (int32_t c = 0; c < width; ++c) dst->set_value(c, src.value(c));
    dst->Update();
  }
  return dst;
}

// Arg 1: reserved up front; arg 0: grown row by row.
void BM_CopyRecordset(benchmark::State& state) {
  auto& rs = *source().rs;
  for (auto _ : state) {
    auto dst = copy_recordset(rs, state.range(0) != 0);
    benchmark::DoNotOptimize(dst.get());
    state.PauseTiming();
    dst.reset();
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * kRows);
}
BENCHMARK(BM_CopyRecordset)
    ->ArgName("presized")
    ->Arg(1)
    ->Arg(0)
    ->Repetitions(kRepetitions)
    ->ComputeStatistics("min", [](const std::vector<double>& v) {
      return *std::min_element(v.begin(), v.end());
    })
    ->Unit(benchmark::kMillisecond);

// The copy constructor: every vector allocated once at its final size.
void BM_CopyVectorBaseline(benchmark::State& state) {
  const PlainRows& rows = source().rows;
  for (auto _ : state) {
    PlainRows dst(rows);
    benchmark::DoNotOptimize(dst.data());
    state.PauseTiming();
    PlainRows().swap(dst);
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * kRows);
}
BENCHMARK(BM_CopyVectorBaseline)
    ->Repetitions(kRepetitions)
    ->ComputeStatistics("min", [](const std::vector<double>& v) {
      return *std::min_element(v.begin(), v.end());
    })
    ->Unit(benchmark::kMillisecond);

// Heap in use, including the large blocks malloc maps directly.
size_t heap_in_use() {
  const auto m = mallinfo2();
  return m.uordblks + m.hblkhd;
}

// Heap bytes held per stored value once a record set has been filled by AddNew.
void BM_RecordsetMemory(benchmark::State& state) {
  auto& rs = *source().rs;
  double per_value = 0;
  for (auto _ : state) {
    malloc_trim(0);
    const size_t before = heap_in_use();
    auto dst = copy_recordset(rs, state.range(0) != 0);
    const size_t after = heap_in_use();
    per_value = static_cast<double>(after - before) / (double{kRows} * kCols);
  }
  state.counters["bytes_per_value"] = per_value;
  state.counters["sizeof_Variant"] = sizeof(Variant);
  state.counters["sizeof_plain"] = sizeof(Plain);
}
BENCHMARK(BM_RecordsetMemory)->ArgName("presized")->Arg(1)->Arg(0)->Iterations(1)->Unit(benchmark::kMillisecond);

// Console output plus the ratios of the copies to the baseline, from the fastest and the
// median repetitions of the same run, in wall-clock and in CPU time (the CPU time is the
// steadier figure on a shared machine).
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const auto& run : runs) {
      if (run.run_type != Run::RT_Aggregate || run.error_occurred) continue;
      if (run.aggregate_name != "min" && run.aggregate_name != "median") continue;
      std::string name = run.run_name.function_name;
      if (!run.run_name.args.empty()) name += "/" + run.run_name.args;
      // Reported in milliseconds.
      Figures& f = figures_[name][run.aggregate_name];
      f.real = run.GetAdjustedRealTime() * 1e6 / kRows;
      f.cpu = run.GetAdjustedCPUTime() * 1e6 / kRows;
    }
  }
  void Finalize() override {
    ConsoleReporter::Finalize();
    std::printf("sizeof(Variant) %zu, sizeof(std::variant) %zu\n", sizeof(Variant), sizeof(Plain));
    auto base = figures_.find("BM_CopyVectorBaseline");
    if (base == figures_.end()) return;
    for (const auto& [name, stats] : figures_) {
      for (const char* stat : {"min", "median"}) {
        const auto have = stats.find(stat);
        if (have == stats.end()) continue;
        const Figures& b = base->second[stat];
        std::printf("%-28s %-6s %7.1f ns/row real (ratio %.2f), %7.1f ns/row CPU (ratio %.2f)\n",
                    name.c_str(), stat, have->second.real, have->second.real / b.real,
                    have->second.cpu, have->second.cpu / b.cpu);
      }
    }
  }

 private:
  struct Figures {
    double real = 0;
    double cpu = 0;
  };
  std::map<std::string, std::map<std::string, Figures>> figures_;
};

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  source();  // build outside every timing
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  return 0;
}
