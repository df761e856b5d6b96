// UIReq.GetListPage over the reference tier: the first page and a middle page of one
// user's 1,000 and 1,000,000 requisitions, with the default services formatting the
// dates; beside it the business object's list alone, which is what the contract makes
// the façade wait for. The ratios printed at the end show what the contract costs: the
// tier hands the façade every row of the list, so a page's cost grows with the list.
//
// The large data set is generated once into the build tree and reused (a few minutes
// the first time). KXUI_BENCH_ROWS sets its size (default 1000000; CI runs use fewer);
// KXUI_BENCH_DATA_DIR moves it.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <iomanip>
#include <iostream>
#include <map>
#include <memory>
#include <string>

#include "kxui/requisition/ui_req.h"
#include "reference/database.h"
#include "reference/register.h"
#include "reference/requisition.h"
#include "reference/seed.h"
#include "reference/soci_include.h"
#include "services/register.h"

#ifndef KXUI_BENCH_DATA_DIR
#define KXUI_BENCH_DATA_DIR "bench_data"
#endif

namespace {

using namespace kxui;

constexpr int32_t kSmall = 1000;
constexpr int32_t kPageSize = 20;

int32_t large_rows() {
  const char* env = std::getenv("KXUI_BENCH_ROWS");
  const int32_t rows = env ? std::atoi(env) : 1000000;
  return rows > kSmall ? rows : 1000000;
}

std::filesystem::path data_dir() {
  const char* env = std::getenv("KXUI_BENCH_DATA_DIR");
  return env ? std::filesystem::path(env) : std::filesystem::path(KXUI_BENCH_DATA_DIR);
}

int32_t bench_rows_in(reference::Database& db) {
  return db.read([](soci::session& sql) {
    int n = 0;
    sql << "SELECT COUNT(*) FROM requisitions r JOIN users u ON u.sys_user_id = "
           "r.requisitioner_id WHERE u.login_id = 'bench'",
        soci::into(n);
    return n;
  });
}

// A database of `rows` requisitions of the user "bench": reused when a previous run left
// a complete one, else made afresh.
std::shared_ptr<reference::Database> data_set(int32_t rows) {
  const std::filesystem::path dir = data_dir();
  std::filesystem::create_directories(dir);
  const std::filesystem::path file = dir / ("reference_list_" + std::to_string(rows) + ".db");
  if (std::filesystem::exists(file)) {
    try {
      auto db = reference::Database::Open(file.string());
      if (bench_rows_in(*db) == rows) return db;
    } catch (const Failure&) {
    }
    for (const char* suffix : {"", "-wal", "-shm"}) {
      std::filesystem::remove(file.string() + suffix);
    }
  }
  std::cerr << "Generating " << rows << " requisitions into " << file << " ...\n";
  const std::filesystem::path partial = file.string() + ".partial";
  std::filesystem::remove(partial);
  {
    auto db = reference::Database::Open(partial.string());
    reference::SeedOptions seed;
    seed.users_per_borg = 5;
    seed.parts = 200;
    seed.requisitions_per_user = 0;
    seed.bench_rows = rows;
    reference::Seed(*db, seed);
  }
  for (const char* suffix : {"-wal", "-shm"}) std::filesystem::remove(partial.string() + suffix);
  std::filesystem::rename(partial, file);
  return reference::Database::Open(file.string());
}

struct Setup {
  std::shared_ptr<reference::Database> db;
  std::shared_ptr<Runtime> runtime = std::make_shared<Runtime>();
  std::shared_ptr<BasicSession> session = std::make_shared<BasicSession>();

  explicit Setup(int32_t rows) : db(data_set(rows)) {
    services::ServiceOptions options;
    options.ini_directory = data_dir();
    services::RegisterDefaultServices(*runtime, options);
    reference::Register(*runtime, db, {.table_settings = true});
    db->read([&](soci::session& sql) {
      sql << "SELECT sys_user_id, borg_id FROM users WHERE login_id = 'bench'",
          soci::into(session->sys_user_id), soci::into(session->borg_id);
    });
    session->time_zone_id = 4;  // not 15: every date is converted as well as formatted
  }
};

Setup& setup(int32_t rows) {
  static std::map<int32_t, std::unique_ptr<Setup>> cache;
  auto& s = cache[rows];
  if (!s) s = std::make_unique<Setup>(rows);
  return *s;
}

int32_t rows_of(const benchmark::State& state) {
  return state.range(0) == 0 ? large_rows() : static_cast<int32_t>(state.range(0));
}

// Args: rows (0 = the large set), page (0 = the middle page).
void BM_GetListPage(benchmark::State& state) {
  const int32_t rows = rows_of(state);
  Setup& s = setup(rows);
  const int32_t page =
      state.range(1) == 0 ? rows / kPageSize / 2 : static_cast<int32_t>(state.range(1));
  UIReq req(s.runtime);
  for (auto _ : state) {
    RecordsetPtr out = req.GetListPage(s.session, "bench", "", "CreateDate", "", page);
    if (!out || out->RecordCount() != kPageSize) {
      state.SkipWithError(("no page: " + req.Error()->Description()).c_str());
      break;
    }
    benchmark::DoNotOptimize(out);
  }
  state.counters["rows"] = rows;
  state.counters["page"] = page;
}

// The business object's whole list, which every page of the façade waits for.
void BM_BusinessList(benchmark::State& state) {
  const int32_t rows = rows_of(state);
  Setup& s = setup(rows);
  reference::RefRequisition req(s.db);
  Variant custom;
  for (auto _ : state) {
    RecordsetPtr all = req.GetRequisitionList(s.session, "bench", "", "CreateDate", "", custom);
    if (!all || all->RecordCount() != rows) {
      state.SkipWithError("the list is incomplete");
      break;
    }
    benchmark::DoNotOptimize(all);
  }
  state.counters["rows"] = rows;
}

BENCHMARK(BM_GetListPage)->Args({kSmall, 1})->Args({kSmall, 0})->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BusinessList)->Args({kSmall})->Unit(benchmark::kMillisecond);
BENCHMARK(BM_GetListPage)->Args({0, 1})->Args({0, 0})->Iterations(3)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BusinessList)->Args({0})->Iterations(3)->Unit(benchmark::kMillisecond);

// Prints each run as usual and remembers its times per iteration for the ratios. CPU
// time is printed beside wall time: on a shared machine the wall time also counts the
// waits for a core.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      if (run.error_occurred || run.run_type != Run::RT_Iteration) continue;
      times_[run.benchmark_name()] = {run.GetAdjustedRealTime(), run.GetAdjustedCPUTime()};
    }
  }
  void Ratios() const {
    const std::string big = std::to_string(large_rows());
    const std::pair<const char*, const char*> pairs[][2] = {
        {{"first page", "BM_GetListPage/1000/1"}, {"", "BM_GetListPage/0/1/iterations:3"}},
        {{"middle page", "BM_GetListPage/1000/0"}, {"", "BM_GetListPage/0/0/iterations:3"}},
        {{"business list", "BM_BusinessList/1000"}, {"", "BM_BusinessList/0/iterations:3"}},
    };
    std::cout << "\nRatios, " << big << " rows against " << kSmall << " rows (wall; CPU):\n"
              << std::fixed;
    for (const auto& pair : pairs) {
      const auto small = times_.find(pair[0].second), large = times_.find(pair[1].second);
      if (small == times_.end() || large == times_.end()) continue;
      const Times& a = small->second;
      const Times& b = large->second;
      if (a.wall <= 0 || a.cpu <= 0) continue;
      std::cout << "  " << std::left << std::setw(14) << pair[0].first << std::setprecision(2)
                << a.wall << " -> " << b.wall << " ms x" << std::setprecision(0)
                << b.wall / a.wall << "; " << std::setprecision(2) << a.cpu << " -> " << b.cpu
                << " ms x" << std::setprecision(0) << b.cpu / a.cpu << "\n";
    }
    const auto page = times_.find("BM_GetListPage/0/0/iterations:3");
    const auto list = times_.find("BM_BusinessList/0/iterations:3");
    if (page != times_.end() && list != times_.end() && page->second.cpu > 0) {
      std::cout << "  the business list is " << std::setprecision(0)
                << 100 * list->second.cpu / page->second.cpu << "% of a middle page's CPU at "
                << big << " rows\n";
    }
  }

 private:
  struct Times {
    double wall = 0, cpu = 0;
  };
  std::map<std::string, Times> times_;
};

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  reporter.Ratios();
  benchmark::Shutdown();
  return 0;
}
