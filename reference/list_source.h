// Lists read on demand: a record set whose count is taken when it opens and whose rows
// are read from the database a window at a time, as the cursor reaches them. A page of a
// long list then reads the count and the page, not the list.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
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

// Builds `state`'s statement for `query`: `bind` exchanges the state's own members, first
// the values the query uses, then those its columns are read into, each in query order.
void prepare_statement(soci::session& sql, Database::PreparedState& state,
                       const std::string& query,
                       const std::function<void(soci::statement&)>& bind);

// Runs a kept statement that counts into `count`, and returns the count.
int64_t run_count(soci::statement& st, const long long& count);

// The bounds of a window statement ("LIMIT :n OFFSET :o"), bound after its filter.
struct WindowBounds {
  long long limit = 0, offset = 0;
  void bind_window(soci::statement& st);
  // Runs `st` for `count` rows from the 0-based row `first`; `row` takes each row read.
  void run_window(soci::statement& st, int64_t first, int64_t count,
                  const std::function<void()>& row);
};

// The one user a list's owner filter names, or nothing when it names none or several:
// the user whose login is `login` in any case, or with "" the session's user `self`.
std::optional<int> single_user(soci::session& sql, const std::string& login, int self);

}  // namespace kxui::reference
