// PagingWindow: the paging rule of every list page. Given the number of records N, the
// page size S and the requested page P it yields the first and last record of the page
// and the page number to show. Arithmetic is 32-bit and fails rather than wraps:
// 6 Overflow, 11 Division by zero for S = 0.
//
// The quirks are kept because pages depend on them: a page past the end on an exact
// multiple starts at N - S (one below the last page's first record), and an empty list
// asked for a positive page starts at -S.
#pragma once

#include <cstdint>

namespace kxui {

struct PagingWindow {
  int32_t page_size = 0;
  int32_t current_page = 0;
  int32_t total_records = 0;
  int32_t start_record = 0;
  int32_t end_record = 0;
};

// Which requested pages count as "past the end" besides those above the last page.
enum class PastEnd {
  kAnyNegative,  // every negative page gives the last page
  kMinusOne,     // only -1 does; other negative pages are taken literally
};

PagingWindow compute_paging_window(int32_t total_records, int32_t page_size, int32_t page,
                                   PastEnd past_end = PastEnd::kAnyNegative);

// Paging column names, in the order they are appended.
inline constexpr const char* kPagingColumns[] = {
    "UIDisplay_PageSize", "UIDisplay_CurrentPage", "UIDisplay_TotalRecords",
    "UIDisplay_StartRecord", "UIDisplay_EndRecord",
};

}  // namespace kxui
