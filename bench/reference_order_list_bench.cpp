// UIPO.GetPOListPage over the reference tier: the first page and a middle page of one
// user's 1,000 and 100,000 orders, newest and oldest first, with the default services
// formatting dates and amounts. A page should cost about the same whatever the length of the list;
// the ratios of the largest list to the smallest, page by page, say how far it does.
// KXUI_BENCH_LIST_ROWS (say "100,2000") replaces the sizes for a quick run. Each seeded
// database is kept in the build tree, so only the first run pays for seeding it.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <unistd.h>

#include "bench/list_ratio.h"
#include "kxui/po/ui_po.h"
#include "reference/database.h"
#include "reference/register.h"
#include "reference/seed.h"
#include "reference/soci_include.h"
#include "services/register.h"

namespace {

using namespace kxui;

// Bumped whenever the seeded data changes, so that an older file is not reused.
constexpr const char* kDataVersion = "v1";

// The seeded database for `orders`, seeded first when no earlier run left it. It is
// seeded under another name and renamed when complete: an interrupted run leaves no
// half-seeded file behind to be taken for a whole one.
std::filesystem::path seeded_file(int32_t orders) {
  const std::filesystem::path dir = KXUI_BENCH_DATA_DIR;
  std::filesystem::create_directories(dir);
  const std::string name = std::string("orders_") + kDataVersion + "_" + std::to_string(orders);
  const std::filesystem::path file = dir / (name + ".db");
  if (std::filesystem::exists(file)) return file;
  const std::filesystem::path partial = dir / (name + ".seeding." + std::to_string(::getpid()));
  {
    auto db = reference::Database::Open(partial.string());
    reference::SeedOptions seed;
    seed.users_per_borg = 2;
    seed.parts = 50;
    seed.requisitions_per_user = 0;
    seed.bench_orders = orders;
    reference::Seed(*db, seed);
  }
  std::filesystem::rename(partial, file);
  return file;
}

struct Setup {
  std::filesystem::path ini_dir;
  std::shared_ptr<reference::Database> db;
  std::shared_ptr<Runtime> runtime = std::make_shared<Runtime>();
  std::shared_ptr<BasicSession> session = std::make_shared<BasicSession>();

  explicit Setup(int32_t orders) {
    ini_dir = std::filesystem::temp_directory_path() /
              ("kxbench_po_" + std::to_string(::getpid()) + "_" + std::to_string(orders));
    std::filesystem::remove_all(ini_dir);
    std::filesystem::create_directories(ini_dir);
    db = reference::Database::Open(seeded_file(orders).string());
    services::ServiceOptions options;
    options.ini_directory = ini_dir;
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
    std::filesystem::remove_all(ini_dir, ec);
  }
};

Setup& setup(int32_t orders) {
  static std::map<int32_t, std::unique_ptr<Setup>> cache;
  auto& s = cache[orders];
  if (!s) s = std::make_unique<Setup>(orders);
  return *s;
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
