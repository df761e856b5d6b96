// UIPO.GetPOListPage over the reference tier: the first page and a middle page of one
// user's 1,000 and 100,000 orders, newest and oldest first, with the default services
// formatting dates and amounts. A page should cost about the same whatever the length of the list;
// the ratios of the largest list to the smallest, page by page, say how far it does.
// KXUI_BENCH_LIST_ROWS (say "100,2000") replaces the sizes for a quick run. Each seeded
// database is kept in the build tree, so only the first run pays for seeding it.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "bench/list_bench.h"
#include "kxui/po/ui_po.h"

namespace {

using namespace kxui;
using kxbench::Setup;

Setup& setup(int32_t orders) {
  return kxbench::setup(kxbench::seeded_file(
      "orders_v1_" + std::to_string(orders),
      [orders](reference::SeedOptions& seed) { seed.bench_orders = orders; }));
}

// The sorts measured: the list's own (newest first) and oldest first.
constexpr const char* kSorts[] = {"", "CreateDate"};

// Args: orders, page (0 = the middle page), sort (index into kSorts).
void BM_GetPOListPage(benchmark::State& state) {
  const auto orders = static_cast<int32_t>(state.range(0));
  Setup& s = setup(orders);
  const int32_t page =
      state.range(1) == 0 ? orders / 20 / 2 : static_cast<int32_t>(state.range(1));
  UIPO po(s.runtime);
  for (auto _ : state) {
    RecordsetPtr out = po.GetPOListPage(s.session, kSorts[state.range(2)], "", "", "", "", page);
    if (!out || out->RecordCount() != 20) {
      state.SkipWithError(("no page: " + po.Error()->Description()).c_str());
      break;
    }
    benchmark::DoNotOptimize(out);
  }
  state.counters["orders"] = orders;
}

std::vector<int64_t> list_sizes() { return kxbench::list_sizes("1000,100000"); }

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  for (int64_t orders : list_sizes()) {
    for (int64_t sort : {0, 1}) {
      for (int64_t page : {1, 0}) {
        benchmark::RegisterBenchmark("BM_GetPOListPage", BM_GetPOListPage)
            ->Args({orders, page, sort})
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
