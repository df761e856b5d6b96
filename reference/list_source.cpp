#include "reference/list_source.h"

namespace kxui::reference {

int64_t QueryRowSource::Count() {
  return db_->read([&](soci::session& sql) { return count_(sql); });
}

void QueryRowSource::Fetch(int64_t first, int64_t count, std::vector<Variant>& out) {
  db_->read([&](soci::session& sql) { fetch_(sql, first, count, out); });
}

RecordsetPtr open_on_demand(std::span<const Column> columns, std::shared_ptr<RowSource> source) {
  RecordsetPtr rs = make_recordset(columns, std::move(source));
  if (rs->RecordCount() > 0) rs->MoveFirst();
  return rs;
}

}  // namespace kxui::reference
