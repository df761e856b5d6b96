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

void prepare_statement(soci::session& sql, Database::PreparedState& state,
                       const std::string& query,
                       const std::function<void(soci::statement&)>& bind) {
  state.statement = std::make_unique<soci::statement>(sql);
  soci::statement& st = *state.statement;
  bind(st);
  st.alloc();
  st.prepare(query);
  st.define_and_bind();
}

int64_t run_count(soci::statement& st, const long long& count) {
  st.execute(true);
  // Stepped to its end: a kept statement left on its row holds a read snapshot, and the
  // connection's next change then fails as busy once another connection has written.
  st.fetch();
  return count;
}

void WindowBounds::bind_window(soci::statement& st) {
  st.exchange(soci::use(limit));
  st.exchange(soci::use(offset));
}

void WindowBounds::run_window(soci::statement& st, int64_t first, int64_t count,
                              const std::function<void()>& row) {
  limit = count;
  offset = first;
  st.execute(false);
  while (st.fetch()) row();
}

std::optional<int> single_user(soci::session& sql, const std::string& login, int self) {
  soci::rowset<int> ids =
      (sql.prepare << "SELECT u.sys_user_id FROM users u WHERE (:login = '' AND "
                      "u.sys_user_id = :self) OR LOWER(u.login_id) = :login2 LIMIT 2",
       soci::use(login), soci::use(self), soci::use(login));
  std::optional<int> one;
  for (int id : ids) {
    if (one) return std::nullopt;
    one = id;
  }
  return one;
}

}  // namespace kxui::reference
