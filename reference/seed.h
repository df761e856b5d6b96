// A realistic data set for demonstrations and benchmarks: organisations in three locales,
// users in approval hierarchies across time zones, a catalog in a commodity tree,
// requisitions in every status taken there by the business objects' own rules (so
// their routes, logs and orders are real), special requests with their forms,
// reviewers, favourites, settings and news, addresses, cost centres and splits, payment
// and shipping methods, delegations, files, receipts with corrections and the simulated
// supplier's answers.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "reference/database.h"

namespace kxui::reference {

struct SeedOptions {
  int32_t users_per_borg = 17;     // three organisations: ~50 users
  int32_t parts = 3000;
  int32_t requisitions_per_user = 6;
  // Extra requisitions of the benchmark user "bench" (one line each, statuses in turn),
  // written straight into the tables: the size knob for list benchmarks.
  int32_t bench_rows = 0;
  // Orders of the benchmark user, each from an approved requisition of its own with one
  // line, written straight into the tables: the size knob for order list benchmarks.
  int32_t bench_orders = 0;
  uint32_t random_seed = 42;
  // When given, moves the database's clock on by some seconds between requisitions, so
  // dates spread over the past instead of all being now.
  std::function<void(int64_t seconds)> advance_clock;
};

struct SeedCounts {
  int32_t borgs = 0, users = 0, commodities = 0, parts = 0, requisitions = 0, orders = 0,
          news = 0;
};

// Fills an empty, migrated database. Users' passwords are "<login>-pw", hashed at the
// minimum Argon2id cost (the data is for tests and demonstrations, not for production).
// Throws Failure when the database is not empty or a write fails.
SeedCounts Seed(Database& db, const SeedOptions& options);

// Every table of the schema with its number of rows, by name.
std::vector<std::pair<std::string, int64_t>> TableRowCounts(Database& db);

}  // namespace kxui::reference
