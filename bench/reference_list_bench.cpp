// UIReq.GetListPage over the reference tier: the first page and a middle page of one
// user's 1,000 and 1,000,000 requisitions, newest and oldest first, with the default
// services formatting the dates. The tier hands over a record set that reads its rows on demand, so a page should
// cost about the same whatever the length of the list; the ratios of the largest list to
// the smallest, page by page, say how far it does. KXUI_BENCH_LIST_ROWS (say "100,2000")
// replaces the sizes for a quick run.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <unistd.h>

#include "kxui/requisition/ui_req.h"
#include "reference/database.h"
#include "reference/register.h"
#include "reference/seed.h"
#include "reference/soci_include.h"
#include "services/register.h"

namespace {

using namespace kxui;

// The seeded lists are kept in the build tree: seeding a million requisitions takes
// minutes, and a kept file gains any later schema version when it opens.
std::filesystem::path seeded_list(int32_t rows) {
  const std::filesystem::path dir = KXUI_BENCH_DATA_DIR;
  std::filesystem::create_directories(dir);
  const std::filesystem::path file = dir / ("requisition_list_" + std::to_string(rows) + ".db");
  if (std::filesystem::exists(file)) return file;
  // Seeded under another name first, so an interrupted run leaves no half-filled list.
  const std::filesystem::path partial = file.string() + ".partial";
  std::filesystem::remove(partial);
  {
    auto db = reference::Database::Open(partial.string());
    reference::SeedOptions seed;
    seed.users_per_borg = 2;
    seed.parts = 50;
    seed.requisitions_per_user = 0;
    seed.bench_rows = rows;
    reference::Seed(*db, seed);
  }  // closed: the log is folded into the file
  std::filesystem::rename(partial, file);
  return file;
}

struct Setup {
  std::filesystem::path dir;
  std::shared_ptr<reference::Database> db;
  std::shared_ptr<Runtime> runtime = std::make_shared<Runtime>();
  std::shared_ptr<BasicSession> session = std::make_shared<BasicSession>();

  explicit Setup(int32_t rows) {
    dir = std::filesystem::temp_directory_path() /
          ("kxbench_" + std::to_string(::getpid()) + "_" + std::to_string(rows));
    std::filesystem::remove_all(dir);
    std::filesystem::create_directories(dir);
    db = reference::Database::Open(seeded_list(rows).string());
    services::ServiceOptions options;
    options.ini_directory = dir;
    services::RegisterDefaultServices(*runtime, options);
    reference::Register(*runtime, db);
    db->read([&](soci::session& sql) {
      sql << "SELECT sys_user_id, borg_id FROM users WHERE login_id = 'bench'",
          soci::into(session->sys_user_id), soci::into(session->borg_id);
    });
    session->time_zone_id = 4;  // not 15: every date is converted as well as formatted
  }
  ~Setup() {
    runtime.reset();
    db.reset();
    std::error_code ec;
    std::filesystem::remove_all(dir, ec);
  }
};

Setup& setup(int32_t rows) {
  static std::map<int32_t, std::unique_ptr<Setup>> cache;
  auto& s = cache[rows];
  if (!s) s = std::make_unique<Setup>(rows);
  return *s;
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

std::vector<int64_t> list_sizes() {
  std::vector<int64_t> sizes;
  const char* env = std::getenv("KXUI_BENCH_LIST_ROWS");
  std::stringstream in(env ? env : "1000,1000000");
  std::string item;
  while (std::getline(in, item, ',')) sizes.push_back(std::stoll(item));
  std::sort(sizes.begin(), sizes.end());
  return sizes;
}

// Console output, then each page's median cost on the largest list over the smallest, in
// wall-clock and in CPU time (the steadier figure on a shared machine).
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const auto& run : runs) {
      if (run.run_type != Run::RT_Aggregate || run.aggregate_name != "median") continue;
      if (run.error_occurred) continue;
      ms_[run.run_name.args] = {run.GetAdjustedRealTime(), run.GetAdjustedCPUTime()};
    }
  }
  void Finalize() override {
    ConsoleReporter::Finalize();
    const auto sizes = list_sizes();
    for (const char* page : {"1/0", "0/0", "1/1", "0/1"}) {
      const auto small = ms_.find(std::to_string(sizes.front()) + "/" + page);
      const auto large = ms_.find(std::to_string(sizes.back()) + "/" + page);
      if (small == ms_.end() || large == ms_.end()) continue;
      std::printf(
          "%s page, %s, median: %lld rows %.3f ms real %.3f ms CPU, %lld rows %.3f ms real "
          "%.3f ms CPU, ratio %.2f real %.2f CPU\n",
          page[0] == '1' ? "first" : "middle", page[2] == '0' ? "newest first" : "oldest first",
          static_cast<long long>(sizes.front()),
          small->second.first, small->second.second, static_cast<long long>(sizes.back()),
          large->second.first, large->second.second, large->second.first / small->second.first,
          large->second.second / small->second.second);
    }
  }

 private:
  // "rows/page/sort" -> median ms, real and CPU
  std::map<std::string, std::pair<double, double>> ms_;
};

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
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  return 0;
}
