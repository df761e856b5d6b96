// For the list-page benchmarks over the reference tier: a seeded database kept between
// runs, a runtime and session of its benchmark user, the list sizes to measure and a
// reporter that prints, page by page, the median cost on the largest list over the
// smallest.
#pragma once

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "kxui/frame/recordset.h"
#include "kxui/frame/runtime.h"
#include "kxui/frame/session.h"
#include "reference/database.h"
#include "reference/register.h"
#include "reference/seed.h"
#include "reference/soci_include.h"
#include "services/register.h"

namespace kxbench {

// The database `name` (bump its version whenever the seeded data changes), seeded by
// `fill` when no earlier run left it: seeding a million rows takes minutes, and a kept
// file gains any later schema version when it opens. It is seeded under another name
// and renamed when complete, so an interrupted run leaves no half-seeded file behind.
inline std::filesystem::path seeded_file(const std::string& name,
                                         const std::function<void(kxui::reference::SeedOptions&)>& fill) {
  const std::filesystem::path dir = KXUI_BENCH_DATA_DIR;
  std::filesystem::create_directories(dir);
  const std::filesystem::path file = dir / (name + ".db");
  if (std::filesystem::exists(file)) return file;
  const std::filesystem::path partial = dir / (name + ".seeding." + std::to_string(::getpid()));
  {
    auto db = kxui::reference::Database::Open(partial.string());
    kxui::reference::SeedOptions seed;
    seed.users_per_borg = 2;
    seed.parts = 50;
    seed.requisitions_per_user = 0;
    fill(seed);
    kxui::reference::Seed(*db, seed);
  }  // closed: its log is folded into the file
  std::filesystem::rename(partial, file);
  return file;
}

// The default services and the reference tier over a seeded file, and a session of its
// user "bench" in another zone than the database's, so that every date is converted as
// well as formatted.
struct Setup {
  std::filesystem::path ini_dir;
  std::shared_ptr<kxui::reference::Database> db;
  std::shared_ptr<kxui::Runtime> runtime = std::make_shared<kxui::Runtime>();
  std::shared_ptr<kxui::BasicSession> session = std::make_shared<kxui::BasicSession>();

  explicit Setup(const std::filesystem::path& file) {
    ini_dir = std::filesystem::temp_directory_path() /
              ("kxbench_" + std::to_string(::getpid()) + "_" + file.stem().string());
    std::filesystem::remove_all(ini_dir);
    std::filesystem::create_directories(ini_dir);
    db = kxui::reference::Database::Open(file.string());
    kxui::services::ServiceOptions options;
    options.ini_directory = ini_dir;
    kxui::services::RegisterDefaultServices(*runtime, options);
    kxui::reference::Register(*runtime, db);
    db->read([&](soci::session& sql) {
      sql << "SELECT sys_user_id, borg_id FROM users WHERE login_id = 'bench'",
          soci::into(session->sys_user_id), soci::into(session->borg_id);
    });
    session->time_zone_id = 4;
  }
  ~Setup() {
    runtime.reset();
    db.reset();
    std::error_code ec;
    std::filesystem::remove_all(ini_dir, ec);
  }
};

// One Setup per seeded file for the whole run.
inline Setup& setup(const std::filesystem::path& file) {
  static std::map<std::filesystem::path, std::unique_ptr<Setup>> cache;
  auto& s = cache[file];
  if (!s) s = std::make_unique<Setup>(file);
  return *s;
}

// KXUI_BENCH_LIST_ROWS (say "100,2000") replaces `fallback` for a quick run; ascending.
inline std::vector<int64_t> list_sizes(const char* fallback) {
  std::vector<int64_t> sizes;
  const char* env = std::getenv("KXUI_BENCH_LIST_ROWS");
  std::stringstream in(env ? env : fallback);
  std::string item;
  while (std::getline(in, item, ',')) sizes.push_back(std::stoll(item));
  std::sort(sizes.begin(), sizes.end());
  return sizes;
}

// Console output, then each page's median cost on the largest list over the smallest, in
// wall-clock and in CPU time (the steadier figure on a shared machine). A run is named by
// its arguments after the list size ("1/0" for "rows/1/0"), each with a label to print.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  using Labels = std::vector<std::pair<std::string, std::string>>;
  RatioReporter(std::vector<int64_t> sizes, Labels labels)
      : sizes_(std::move(sizes)), labels_(std::move(labels)) {}

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
    if (sizes_.empty()) return;
    for (const auto& [args, label] : labels_) {
      const auto small = ms_.find(std::to_string(sizes_.front()) + "/" + args);
      const auto large = ms_.find(std::to_string(sizes_.back()) + "/" + args);
      if (small == ms_.end() || large == ms_.end()) continue;
      std::printf(
          "%s, median: %lld rows %.3f ms real %.3f ms CPU, %lld rows %.3f ms real %.3f ms "
          "CPU, ratio %.2f real %.2f CPU\n",
          label.c_str(), static_cast<long long>(sizes_.front()),
          small->second.first, small->second.second, static_cast<long long>(sizes_.back()),
          large->second.first, large->second.second, large->second.first / small->second.first,
          large->second.second / small->second.second);
    }
  }

 private:
  std::vector<int64_t> sizes_;
  Labels labels_;
  std::map<std::string, std::pair<double, double>> ms_;  // arguments -> median ms, real and CPU
};

// One page of a list: `sort` as the page passes it, `page` counted from 1. A null record
// set is a failure, described in `error`.
using PageFn = std::function<kxui::RecordsetPtr(Setup&, const char* sort, int32_t page,
                                                std::string& error)>;

// Measures `name`'s first and middle page, newest and oldest first, over lists of every
// size (`fallback` unless KXUI_BENCH_LIST_ROWS says otherwise), each over the Setup
// `setup_for` gives for that size; then prints the ratios.
inline int run_list_pages(int argc, char** argv, const std::string& name, const char* fallback,
                          std::function<Setup&(int32_t)> setup_for, PageFn page_of) {
  static constexpr const char* kSorts[] = {"", "CreateDate"};  // the list's own, then oldest first
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  const std::vector<int64_t> sizes = list_sizes(fallback);
  // Args: rows, page (0 = the middle page), sort (index into kSorts).
  auto run = [setup_for, page_of, name](benchmark::State& state) {
    const auto rows = static_cast<int32_t>(state.range(0));
    Setup& s = setup_for(rows);
    const int32_t page = state.range(1) == 0 ? rows / 20 / 2 : static_cast<int32_t>(state.range(1));
    std::string error;
    for (auto _ : state) {
      kxui::RecordsetPtr out = page_of(s, kSorts[state.range(2)], page, error);
      if (!out || out->RecordCount() != 20) {
        state.SkipWithError(("no page of " + name + ": " + error).c_str());
        break;
      }
      benchmark::DoNotOptimize(out);
    }
    state.counters["rows"] = rows;
  };
  for (int64_t rows : sizes) {
    for (int64_t sort : {0, 1}) {
      for (int64_t page : {1, 0}) {
        benchmark::RegisterBenchmark(name.c_str(), run)
            ->Args({rows, page, sort})
            ->Repetitions(3)
            ->Unit(benchmark::kMillisecond);
      }
    }
  }
  RatioReporter reporter(sizes, {{"1/0", "first page, newest first"},
                                 {"0/0", "middle page, newest first"},
                                 {"1/1", "first page, oldest first"},
                                 {"0/1", "middle page, oldest first"}});
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  return 0;
}

}  // namespace kxbench
