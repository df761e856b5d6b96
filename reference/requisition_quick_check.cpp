// RefRequisition's quick check: what a supplier is asked about each line of the loaded
// requisition, and the prices it answers, kept until Save.
#include "reference/errors.h"
#include "reference/req_store.h"
#include "reference/requisition.h"
#include "reference/rows.h"

namespace kxui::reference {

std::vector<business::Requisition::QuickCheckLine> RefRequisition::QuickCheckLines() {
  return answer("QuickCheckLines", std::vector<QuickCheckLine>(), [&] {
    if (!header_) refuse(Refusal::kInvalidArgument, "No requisition is loaded.");
    const int32_t req_id = header_->req_id;
    return db().read([&](soci::session& sql) {
      std::vector<QuickCheckLine> lines;
      // A line without a known supplier is asked about in its own currency.
      soci::rowset<soci::row> rows =
          (sql.prepare << "SELECT l.line_num, l.supplier_id, l.supplier_part_num, "
                          "l.supplier_part_num_ext, l.uom_id, l.qty, "
                          "COALESCE(s.currency_code, l.currency_code) FROM req_lines l "
                          "LEFT JOIN suppliers s ON s.supplier_id = l.supplier_id "
                          "WHERE l.req_id = :r ORDER BY l.line_num",
           soci::use(req_id));
      for (const soci::row& row : rows) {
        QuickCheckLine line;
        line.line_num = int_of(row, 0);
        line.supplier_id = static_cast<int32_t>(get_int(row, 1).value_or(0));
        line.supplier_part_num = text_of(row, 2);
        line.supplier_part_num_ext = text_of(row, 3);
        line.uom_id = text_of(row, 4);
        line.order_qty = *get_double(row, 5);
        line.supplier_currency_code = text_of(row, 6);
        lines.push_back(std::move(line));
      }
      return lines;
    });
  });
}

std::string RefRequisition::ReqCurrencyCode() {
  return answer("ReqCurrencyCode", std::string(), [&] {
    if (!header_) refuse(Refusal::kInvalidArgument, "No requisition is loaded.");
    return db().read([&](soci::session& sql) { return find_req(sql, header_->req_id).currency_code; });
  });
}

void RefRequisition::SetQuickCheckPrice(int32_t index, Currency price) {
  answer("SetQuickCheckPrice", false, [&] {
    const std::vector<QuickCheckLine> lines = QuickCheckLines();
    if (index < 0 || static_cast<size_t>(index) >= lines.size()) {
      refuse(Refusal::kInvalidArgument,
             "The requisition has no line at position " + std::to_string(index) + ".");
    }
    if (price.to_double() < 0) refuse(Refusal::kInvalidArgument, "A price cannot be negative.");
    quick_check_prices_[lines[static_cast<size_t>(index)].line_num] = price;
    return true;
  });
}

void RefRequisition::store_quick_check_prices(soci::session& sql, int32_t user_id) {
  for (const auto& [line_num, price] : quick_check_prices_) {
    const long long scaled = price.scaled;
    sql << "UPDATE req_lines SET unit_price = :p WHERE req_id = :r AND line_num = :l",
        soci::use(scaled), soci::use(header_->req_id), soci::use(line_num);
    log_req(sql, db(), header_->req_id, user_id, "Price checked",
            "Line " + std::to_string(line_num));
  }
}

}  // namespace kxui::reference
