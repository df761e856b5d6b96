#include "kxui/testing/row_sources.h"

#include <cstdlib>
#include <string_view>

namespace kxui::testing {

int64_t VectorRowSource::Count() { return static_cast<int64_t>(rows_.size()); }

void VectorRowSource::Fetch(int64_t first, int64_t count, std::vector<Variant>& out) {
  if (before_fetch) before_fetch(first, count);
  ++fetches;
  rows_read += count;
  firsts.push_back(first);
  for (int64_t r = first; r < first + count - short_by; ++r) {
    for (const Variant& v : rows_.at(static_cast<size_t>(r))) out.push_back(v);
  }
}

bool on_demand_rows() {
  const char* mode = std::getenv("KXUI_TEST_ROWS");
  return mode != nullptr && std::string_view(mode) == "on-demand";
}

RecordsetPtr open_recordset(const std::vector<FieldInfo>& fields,
                            const std::vector<std::vector<Variant>>& rows, bool on_demand) {
  auto rs = std::make_shared<Recordset>();
  for (const FieldInfo& f : fields) {
    rs->GetFields().Append(f.name, f.type, f.defined_size, f.attributes);
  }
  // A row that leaves fields out keeps them Empty, which only rows added one by one do.
  for (const auto& row : rows) on_demand = on_demand && row.size() == fields.size();
  if (on_demand) {
    rs->Open(std::make_shared<VectorRowSource>(rows));
  } else {
    rs->Open();
    for (const auto& row : rows) {
      rs->AddNew();
      for (size_t i = 0; i < row.size(); ++i) rs->set_value(static_cast<int32_t>(i), row[i]);
      rs->Update();
    }
  }
  if (rs->RecordCount() > 0) rs->MoveFirst();
  return rs;
}

}  // namespace kxui::testing
