// UIReq.GetListPage over the reference tier: the first page and a middle page of one
// user's 1,000 and 1,000,000 requisitions, newest and oldest first, with the default
// services formatting the dates. The tier hands over a record set that reads its rows on
// demand, so a page should cost about the same whatever the length of the list; the
// ratios of the largest list to the smallest, page by page, say how far it does.
// KXUI_BENCH_LIST_ROWS (say "100,2000") replaces the sizes for a quick run. Each seeded
// database is kept in the build tree, so only the first run pays for seeding it.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "bench/list_bench.h"
#include "kxui/requisition/ui_req.h"

namespace {

using namespace kxui;
using kxbench::Setup;

Setup& setup(int32_t rows) {
  return kxbench::setup(kxbench::seeded_file(
      "requisitions_v1_" + std::to_string(rows),
      [rows](reference::SeedOptions& seed) { seed.bench_rows = rows; }));
}

// The sorts measured: the list's own (newest first) and oldest first.
constexpr const char* kSorts[] = {"", "CreateDate"};

// Args: rows, page (0 = the middle page), sort (index into kSorts).
void BM_GetListPage(benchmark::State& state) {
  const auto rows = static_cast<int32_t>(state.range(0));
  Setup& s = setup(rows);
  const int32_t page = state.range(1) == 0 ? rows / 20 / 2 : static_cast<int32_t>(state.range(1));
  UIReq req(s.runtime);
  for (auto _ : state) {
    RecordsetPtr out = req.GetListPage(s.session, "bench", "", kSorts[state.range(2)], "", page);
    if (!out || out->RecordCount() != 20) {
      state.SkipWithError(("no page: " + req.Error()->Description()).c_str());
      break;
    }
    benchmark::DoNotOptimize(out);
  }
  state.counters["rows"] = rows;
}

std::vector<int64_t> list_sizes() { return kxbench::list_sizes("1000,1000000"); }

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  for (int64_t rows : list_sizes()) {
    for (int64_t sort : {0, 1}) {
      for (int64_t page : {1, 0}) {
        benchmark::RegisterBenchmark("BM_GetListPage", BM_GetListPage)
            ->Args({rows, page, sort})
            ->Repetitions(3)
            ->Unit(benchmark::kMillisecond);
      }
    }
  }
  kxbench::RatioReporter reporter(list_sizes(), {{"1/0", "first page, newest first"},
                                                 {"0/0", "middle page, newest first"},
                                                 {"1/1", "first page, oldest first"},
                                                 {"0/1", "middle page, oldest first"}});
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  return 0;
}
