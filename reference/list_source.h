// Lists read on demand: a record set whose count is taken when it opens and whose rows
// are read from the database a window at a time, as the cursor reaches them. A page of a
// long list then reads the count and the page, not the list.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "reference/database.h"
#include "reference/rows.h"

#include "kxui/frame/recordset.h"

namespace kxui::reference {

class QueryRowSource : public RowSource {
 public:
  using CountFn = std::function<int64_t(soci::session&)>;
  // Appends the values of `count` rows from the 0-based row `first`, in list order.
  using FetchFn =
      std::function<void(soci::session&, int64_t first, int64_t count, std::vector<Variant>&)>;

  QueryRowSource(DatabasePtr db, CountFn count, FetchFn fetch)
      : db_(std::move(db)), count_(std::move(count)), fetch_(std::move(fetch)) {}

  int64_t Count() override;
  void Fetch(int64_t first, int64_t count, std::vector<Variant>& out) override;

 private:
  DatabasePtr db_;
  CountFn count_;
  FetchFn fetch_;
};

// An open record set with `columns` over `source`, positioned at its first row.
RecordsetPtr open_on_demand(std::span<const Column> columns, std::shared_ptr<RowSource> source);

}  // namespace kxui::reference
