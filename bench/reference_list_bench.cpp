// UIReq.GetListPage over the reference tier: the first page and a middle page of one
// user's 1,000 and 1,000,000 requisitions, newest and oldest first, with the default
// services formatting the dates. The tier hands over a record set that reads its rows on
// demand, so a page should cost about the same whatever the length of the list; the
// ratios of the largest list to the smallest, page by page, say how far it does.
// KXUI_BENCH_LIST_ROWS (say "100,2000") replaces the sizes for a quick run. Each seeded
// database is kept in the build tree, so only the first run pays for seeding it.
#include <string>

#include "bench/list_bench.h"
#include "kxui/requisition/ui_req.h"

int main(int argc, char** argv) {
  using namespace kxui;
  return kxbench::run_list_pages(
      argc, argv, "BM_GetListPage", "1000,1000000",
      [](int32_t rows) -> kxbench::Setup& {
        return kxbench::setup(kxbench::seeded_file(
            "requisitions_v1_" + std::to_string(rows),
            [rows](reference::SeedOptions& seed) { seed.bench_rows = rows; }));
      },
      [](kxbench::Setup& s, const char* sort, int32_t page, std::string& error) {
        UIReq req(s.runtime);
        RecordsetPtr out = req.GetListPage(s.session, "bench", "", sort, "", page);
        if (!out) error = req.Error()->Description();
        return out;
      });
}
