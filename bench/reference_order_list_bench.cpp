// UIPO.GetPOListPage over the reference tier: the first page and a middle page of one
// user's 1,000 and 100,000 orders, newest and oldest first, with the default services
// formatting dates and amounts. A page should cost about the same whatever the length of
// the list; the ratios of the largest list to the smallest, page by page, say how far it
// does. KXUI_BENCH_LIST_ROWS (say "100,2000") replaces the sizes for a quick run. Each
// seeded database is kept in the build tree, so only the first run pays for seeding it.
#include <string>

#include "bench/list_bench.h"
#include "kxui/po/ui_po.h"

int main(int argc, char** argv) {
  using namespace kxui;
  return kxbench::run_list_pages(
      argc, argv, "BM_GetPOListPage", "1000,100000",
      [](int32_t orders) -> kxbench::Setup& {
        return kxbench::setup(kxbench::seeded_file(
            "orders_v1_" + std::to_string(orders),
            [orders](reference::SeedOptions& seed) { seed.bench_orders = orders; }));
      },
      [](kxbench::Setup& s, const char* sort, int32_t page, std::string& error) {
        UIPO po(s.runtime);
        RecordsetPtr out = po.GetPOListPage(s.session, sort, "", "", "", "", page);
        if (!out) error = po.Error()->Description();
        return out;
      });
}
