// Row copy into a record set (AddNew / assignment by column index / Update) against the
// same copy into a plain vector of rows, and the memory a stored value costs.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "kxui/frame/recordset.h"

namespace {

using kxui::Variant;

constexpr int32_t kRows = 1'000'000;
constexpr int32_t kCols = 12;

using Rows = std::vector<std::vector<Variant>>;

// The source data, built once: ints, doubles, ~12-character strings and dates.
struct Source {
  kxui::RecordsetPtr rs;
  Rows rows;
};

Variant cell(int32_t r, int32_t c) {
  switch (c % 4) {
    case 0: return Variant(r * 7 + c);
    case 1: return Variant(r * 0.25 + c);
    case 2: return Variant("item-" + std::to_string(1000000 + r));
    default: return Variant(kxui::Date::from_seconds(1'600'000'000 + int64_t{r} * 3600));
  }
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
      std::vector<Variant> row;
      row.reserve(kCols);
      for (int32_t c = 0; c < kCols; ++c) {
        row.push_back(cell(r, c));
        out.rs->set_value(c, row.back());
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

Rows copy_rows(const Rows& src) {
  Rows dst;
  for (const auto& row : src) {
    std::vector<Variant> out;
    out.reserve(row.size());
    for (const auto& v : row) out.push_back(v);
    dst.push_back(std::move(out));
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
BENCHMARK(BM_CopyRecordset)->ArgName("presized")->Arg(1)->Arg(0)->Unit(benchmark::kMillisecond);

void BM_CopyVectorBaseline(benchmark::State& state) {
  const Rows& rows = source().rows;
  for (auto _ : state) {
    Rows dst = copy_rows(rows);
    benchmark::DoNotOptimize(dst.data());
    state.PauseTiming();
    Rows().swap(dst);
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * kRows);
}
BENCHMARK(BM_CopyVectorBaseline)->Unit(benchmark::kMillisecond);

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
}
BENCHMARK(BM_RecordsetMemory)->ArgName("presized")->Arg(1)->Arg(0)->Iterations(1)->Unit(benchmark::kMillisecond);

// Console output plus the ratio of the two copies, measured in the same run.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const auto& run : runs) {
      if (run.run_type != Run::RT_Iteration || run.iterations == 0) continue;
      ns_per_row_[run.benchmark_name()] =
          run.GetAdjustedRealTime() * 1e6 / kRows;  // reported in milliseconds
    }
  }
  void Finalize() override {
    ConsoleReporter::Finalize();
    auto vec = ns_per_row_.find("BM_CopyVectorBaseline");
    if (vec == ns_per_row_.end()) return;
    std::printf("vector baseline: %.1f ns/row\n", vec->second);
    for (const char* name : {"BM_CopyRecordset/presized:1", "BM_CopyRecordset/presized:0"}) {
      auto rs = ns_per_row_.find(name);
      if (rs == ns_per_row_.end()) continue;
      std::printf("%s: %.1f ns/row, ratio to baseline %.2f\n", name, rs->second,
                  rs->second / vec->second);
    }
  }

 private:
  std::map<std::string, double> ns_per_row_;
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
