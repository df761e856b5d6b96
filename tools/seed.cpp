// kxseed: fills a new reference database with a realistic data set.
//
//   kxseed --db demo.db [--rows N] [--orders N] [--parts N] [--users-per-borg N] [--seed N]
//
// --rows adds N requisitions of the user "bench" for list benchmarks, --orders N orders.
// The database may also be "postgresql://<conninfo>".
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>

#include "reference/database.h"
#include "reference/seed.h"

namespace {

int usage() {
  std::cerr << "usage: kxseed --db <file or url> [--rows N] [--orders N] [--parts N] "
               "[--users-per-borg N] [--seed N]\n";
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  using namespace kxui;
  std::string url;
  reference::SeedOptions options;
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    if (i + 1 >= argc) return usage();
    const std::string value = argv[++i];
    try {
      if (arg == "--db") url = value;
      else if (arg == "--rows") options.bench_rows = std::stoi(value);
      else if (arg == "--orders") options.bench_orders = std::stoi(value);
      else if (arg == "--parts") options.parts = std::stoi(value);
      else if (arg == "--users-per-borg") options.users_per_borg = std::stoi(value);
      else if (arg == "--seed") options.random_seed = static_cast<uint32_t>(std::stoul(value));
      else return usage();
    } catch (const std::exception&) {
      return usage();
    }
  }
  if (url.empty() || options.parts < 1 || options.users_per_borg < 5 || options.bench_rows < 0 ||
      options.bench_orders < 0) {
    return usage();
  }
  // Dates spread over the last 120 days: the clock starts back then and moves on.
  const auto now = std::chrono::duration_cast<std::chrono::seconds>(
                       std::chrono::system_clock::now().time_since_epoch())
                       .count();
  auto clock = std::make_shared<int64_t>(now - 120 * 86400);
  reference::DatabaseOptions db_options;
  db_options.clock = [clock] { return Date::from_seconds(*clock); };
  options.advance_clock = [clock, now](int64_t seconds) {
    *clock = std::min<int64_t>(*clock + seconds, now);
  };
  try {
    auto db = reference::Database::Open(url, db_options);
    const auto started = std::chrono::steady_clock::now();
    const reference::SeedCounts c = reference::Seed(*db, options);
    const double secs =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
    std::cout << "organisations " << c.borgs << ", users " << c.users << ", commodities "
              << c.commodities << ", parts " << c.parts << ", requisitions " << c.requisitions
              << ", orders " << c.orders << ", news " << c.news << " (" << secs << " s)\n";
    for (const auto& [table, rows] : reference::TableRowCounts(*db)) {
      std::cout << "  " << table << " " << rows << "\n";
    }
  } catch (const Failure& f) {
    std::cerr << "kxseed: " << f.description() << "\n";
    return 1;
  }
  return 0;
}
