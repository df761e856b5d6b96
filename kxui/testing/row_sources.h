// Record sets whose rows are read on demand, for tests that must hold over both kinds of
// record set: a source over rows in memory that counts what it was asked for, and the
// switch that makes make_recordset open its record sets over one.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "kxui/frame/recordset.h"

namespace kxui::testing {

class VectorRowSource : public RowSource {
 public:
  explicit VectorRowSource(std::vector<std::vector<Variant>> rows) : rows_(std::move(rows)) {}

  int64_t Count() override;
  void Fetch(int64_t first, int64_t count, std::vector<Variant>& out) override;

  // What was asked for so far.
  int32_t fetches = 0;
  int64_t rows_read = 0;
  std::vector<int64_t> firsts;
  // Runs before every fetch, with its first row and count; may throw.
  std::function<void(int64_t first, int64_t count)> before_fetch;
  // Rows left out at the end of every fetch, as when rows vanish after being counted.
  int64_t short_by = 0;

 private:
  std::vector<std::vector<Variant>> rows_;
};

// True when the environment sets KXUI_TEST_ROWS=on-demand: make_recordset then opens its
// record sets over a VectorRowSource (rows that fill every column) instead of adding them.
bool on_demand_rows();

// An open record set with `fields` and `rows`, read on demand or added row by row.
RecordsetPtr open_recordset(const std::vector<FieldInfo>& fields,
                            const std::vector<std::vector<Variant>>& rows, bool on_demand);

}  // namespace kxui::testing
