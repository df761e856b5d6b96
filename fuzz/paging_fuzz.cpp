// The paging rule and the page rebuild: the window lies inside the list, and the rebuilt
// page holds exactly the window's rows with the paging columns describing it.
#include <cstdint>
#include <optional>

#include <fuzzer/FuzzedDataProvider.h>

#include "fuzz/fuzz_support.h"
#include "kxui/frame/display.h"
#include "kxui/frame/failure.h"
#include "kxui/frame/paging.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzedDataProvider in(data, size);
  const int32_t total = in.ConsumeIntegralInRange<int32_t>(0, 300);
  const int32_t page_size = in.ConsumeIntegral<int32_t>();
  const int32_t page = in.ConsumeIntegral<int32_t>();
  const auto past_end = in.ConsumeBool() ? kxui::PastEnd::kAnyNegative : kxui::PastEnd::kMinusOne;
  kxui::PagingWindow w;
  try {
    w = kxui::compute_paging_window(total, page_size, page, past_end);
  } catch (const kxui::Failure&) {
    return 0;
  }
  FUZZ_CHECK(w.total_records == total);
  // A negative page size follows the rule as it stands (the window is then empty or
  // reversed); the rebuild below must still cope with it.
  if (total > 0 && page_size > 0 && w.start_record >= 1 && w.start_record <= total) {
    FUZZ_CHECK(w.end_record >= w.start_record && w.end_record <= total);
  }

  kxui::Recordset source;
  source.GetFields().Append("N", kxui::adInteger);
  source.Open();
  for (int32_t i = 1; i <= total; ++i) {
    source.AddNew();
    source.set_value(0, kxui::Variant(i));
    source.Update();
  }
  try {
    auto target = kxui::open_display_target(source, {}, true);
    kxui::fill_display_rows(source, *target, {}, nullptr, w);
    const int32_t rows = target->RecordCount();
    FUZZ_CHECK(rows >= 0 && rows <= total);
    if (rows > 0) {
      // The rows are the window's, in order.
      target->MoveFirst();
      FUZZ_CHECK(target->value(0).to_int32() == w.start_record);
      target->MoveLast();
      FUZZ_CHECK(target->value(0).to_int32() == w.start_record + rows - 1);
      FUZZ_CHECK(target->GetFields()["UIDisplay_TotalRecords"].Value().to_int32() == total);
    }
  } catch (const kxui::Failure&) {
  }
  return 0;
}
