// For the list-page benchmarks: the list sizes to measure and a reporter that prints, page
// by page, the median cost on the largest list over the smallest.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace kxbench {

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

}  // namespace kxbench
