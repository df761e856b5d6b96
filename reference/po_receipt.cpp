#include "reference/po_receipt.h"

#include <cmath>

#include "kxui/frame/runtime.h"
#include "reference/errors.h"
#include "reference/purchase_order.h"
#include "reference/req_store.h"
#include "reference/rows.h"

namespace kxui::reference {

namespace {

const std::set<int32_t> kReceivable = {po_status::kOpen, po_status::kSent,
                                       po_status::kAcknowledged, po_status::kPartlyReceived};

std::string text_param(const Array& params, int32_t i) {
  const Variant& v = params.at(i);
  return v.is_empty() || v.is_null() || v.is_missing() ? std::string() : v.to_string();
}

constexpr Column kLineColumns[] = {{"LineNum", Kind::kInt},
                                   {"ShortDesc", Kind::kText, 255},
                                   {"OrderQty", Kind::kDouble},
                                   {"ReceivedToDateQty", Kind::kDouble},
                                   {"UnitPrice", Kind::kMoney},
                                   {"CurrencyCode", Kind::kText, 3}};

constexpr const char* kLines =
    "SELECT line_num, description, qty, received_qty, unit_price, currency_code FROM po_lines "
    "WHERE po_id = :p ORDER BY line_num";

constexpr Column kFormColumns[] = {
    {"LineNum", Kind::kInt},         {"ShortDesc", Kind::kText, 255},
    {"OrderQty", Kind::kDouble},     {"ReceivedToDateQty", Kind::kDouble},
    {"ReceivedQty", Kind::kDouble},  {"PackingSlipQty", Kind::kDouble},
    {"Comments", Kind::kText, 2000}};

constexpr Column kHeaderColumns[] = {
    {"ReceiptID", Kind::kInt},      {"POID", Kind::kInt},
    {"PONum", Kind::kText, 30},     {"SupplierName", Kind::kText, 100},
    {"CartonCnt", Kind::kInt},      {"ReceiveDate", Kind::kDate},
    {"DocCreateDate", Kind::kDate}, {"ReceivedByName", Kind::kText, 100}};

constexpr Column kReceiptLineColumns[] = {
    {"ReceiptID", Kind::kInt},      {"LineNum", Kind::kInt},
    {"ShortDesc", Kind::kText, 255}, {"OrderQty", Kind::kDouble},
    {"ReceivedQty", Kind::kDouble}, {"PackingSlipQty", Kind::kDouble},
    {"Comments", Kind::kText, 2000}};

}  // namespace

RecordsetPtr RefPOReceipt::GetReceiveList(const SessionPtr& session, Array& params) {
  return answer("GetReceiveList", RecordsetPtr(), [&] {
    const Session& s = session_of(session);
    std::set<int32_t> statuses = parse_status_list(text_param(params, 1));
    if (statuses.empty()) statuses = kReceivable;
    return order_list(db_ptr(), s, text_param(params, 3), text_param(params, 4),
                      text_param(params, 2), text_param(params, 0), statuses);
  });
}

RecordsetPtr RefPOReceipt::GetPOItems(const SessionPtr& session, Array& params) {
  return answer("GetPOItems", RecordsetPtr(), [&] {
    const Session& s = session_of(session);
    const int32_t po_id = params.at(0).to_int32();
    return db().read([&](soci::session& sql) {
      load_order(sql, po_id, s);
      soci::rowset<soci::row> rows = (sql.prepare << kLines, soci::use(po_id));
      return to_recordset(rows, kLineColumns);
    });
  });
}

RecordsetPtr RefPOReceipt::GetReceiptHdr(const SessionPtr& session, Array& params) {
  return answer("GetReceiptHdr", RecordsetPtr(), [&] {
    const Session& s = session_of(session);
    const int32_t po_id = params.at(0).to_int32();
    const Date now = db().now();
    const int user = s.SysUserID();
    return db().read([&](soci::session& sql) {
      load_order(sql, po_id, s);
      // A new receipt: no id yet, no cartons, received and documented today.
      soci::rowset<soci::row> rows =
          (sql.prepare << "SELECT 0, o.po_id, 'PO-' || CAST(o.po_id AS VARCHAR(20)), "
                          "o.supplier_name, 0, o.create_date, o.create_date, u.full_name "
                          "FROM purchase_orders o, users u WHERE o.po_id = :p AND "
                          "u.sys_user_id = :u",
           soci::use(po_id), soci::use(user));
      RecordsetPtr rs = make_recordset(kHeaderColumns);
      for (const soci::row& row : rows) {
        append_row(*rs, kHeaderColumns, row, [&](Recordset& r) {
          r.set_value(5, Variant(now));
          r.set_value(6, Variant(now));
        });
      }
      if (rs->RecordCount() > 0) rs->MoveFirst();
      return rs;
    });
  });
}

RecordsetPtr RefPOReceipt::GetReceiptHdrList(const SessionPtr& session, Array& params) {
  return answer("GetReceiptHdrList", RecordsetPtr(), [&] {
    const Session& s = session_of(session);
    const int32_t po_id = params.at(0).to_int32();
    return db().read([&](soci::session& sql) {
      load_order(sql, po_id, s);
      soci::rowset<soci::row> rows =
          (sql.prepare << "SELECT r.receipt_id, o.po_id, 'PO-' || CAST(o.po_id AS VARCHAR(20)), "
                          "o.supplier_name, r.carton_cnt, r.receive_date, r.doc_create_date, "
                          "u.full_name FROM receipts r JOIN purchase_orders o ON o.po_id = "
                          "r.po_id JOIN users u ON u.sys_user_id = r.received_by "
                          "WHERE r.po_id = :p ORDER BY r.receipt_id",
           soci::use(po_id));
      return to_recordset(rows, kHeaderColumns);
    });
  });
}

RecordsetPtr RefPOReceipt::GetReceiptItems(const SessionPtr& session, Array& params) {
  return answer("GetReceiptItems", RecordsetPtr(), [&] {
    const Session& s = session_of(session);
    const int32_t po_id = params.at(0).to_int32();
    const bool all = params.at(1).to_bool();
    return db().read([&](soci::session& sql) {
      load_order(sql, po_id, s);
      soci::rowset<soci::row> rows =
          (sql.prepare << "SELECT line_num, description, qty, received_qty, 0, 0, '' "
                          "FROM po_lines WHERE po_id = :p ORDER BY line_num",
           soci::use(po_id));
      RecordsetPtr rs = make_recordset(kFormColumns);
      for (const soci::row& row : rows) {
        append_row(*rs, kFormColumns, row, [&](Recordset& r) {
          // Receiving all proposes what is still outstanding.
          const double open = std::max(0.0, r["OrderQty"].Value().to_double() -
                                                r["ReceivedToDateQty"].Value().to_double());
          const double proposed = all ? open : 0.0;
          r.set_value(4, Variant(proposed));
          r.set_value(5, Variant(proposed));
        });
      }
      if (rs->RecordCount() > 0) rs->MoveFirst();
      return rs;
    });
  });
}

RecordsetPtr RefPOReceipt::GetReceiptItemList(const SessionPtr& session, Array& params) {
  return answer("GetReceiptItemList", RecordsetPtr(), [&] {
    const Session& s = session_of(session);
    const int32_t receipt_id = params.at(0).to_int32();
    return db().read([&](soci::session& sql) {
      int po_id = 0;
      sql << "SELECT po_id FROM receipts WHERE receipt_id = :r", soci::use(receipt_id),
          soci::into(po_id);
      if (!sql.got_data()) {
        refuse(Refusal::kNotFound, "Receipt " + std::to_string(receipt_id) + " does not exist.");
      }
      load_order(sql, po_id, s);
      soci::rowset<soci::row> rows =
          (sql.prepare << "SELECT rl.receipt_id, rl.line_num, l.description, l.qty, "
                          "rl.received_qty, rl.packing_slip_qty, rl.comments FROM receipt_lines "
                          "rl JOIN receipts r ON r.receipt_id = rl.receipt_id JOIN po_lines l "
                          "ON l.po_id = r.po_id AND l.line_num = rl.line_num "
                          "WHERE rl.receipt_id = :r ORDER BY rl.line_num",
           soci::use(receipt_id));
      return to_recordset(rows, kReceiptLineColumns);
    });
  });
}

int32_t RefPOReceipt::SubmitReceipt(const SessionPtr& session, const RecordsetPtr& header,
                                    const RecordsetPtr& line_items, Array&) {
  return answer("SubmitReceipt", int32_t{0}, [&] {
    const Session& s = session_of(session);
    Recordset& hdr = require(header);
    Recordset& lines = require(line_items);
    if (hdr.RecordCount() == 0) refuse(Refusal::kNoData, "The receipt has no header.");
    hdr.MoveFirst();
    const int32_t po_id = hdr["POID"].Value().to_int32();
    const int32_t cartons = hdr["CartonCnt"].Value().to_int32();
    if (cartons < 0) refuse(Refusal::kInvalidArgument, "The carton count cannot be negative.");
    const std::string received_on = date_text(hdr["ReceiveDate"].Value().to_date());
    const std::string documented = date_text(hdr["DocCreateDate"].Value().to_date());
    const std::string now = date_text(db().now());
    const int user = s.SysUserID();
    return db().write([&](soci::session& sql) {
      const PORow po = load_order(sql, po_id, s);
      if (!kReceivable.count(po.status)) {
        refuse(Refusal::kWrongStatus,
               "Order " + std::to_string(po_id) + " is not awaiting receipt.");
      }
      int receipt_id = 0;
      sql << "INSERT INTO receipts (po_id, receive_date, doc_create_date, carton_cnt, "
             "received_by, create_date) VALUES (:p, :r, :d, :c, :u, :n) RETURNING receipt_id",
          soci::use(po_id), soci::use(received_on), soci::use(documented), soci::use(cartons),
          soci::use(user), soci::use(now), soci::into(receipt_id);
      int recorded = 0;
      if (lines.RecordCount() > 0) {
        for (lines.MoveFirst(); !lines.IsEOF(); lines.MoveNext()) {
          const int line = lines["LineNum"].Value().to_int32();
          const double qty = lines["ReceivedQty"].Value().to_double();
          const double packing = lines["PackingSlipQty"].Value().to_double();
          const Variant comment_value = lines["Comments"].Value();
          const std::string comments = comment_value.is_null() ? "" : comment_value.to_string();
          if (qty == 0 && packing == 0) continue;
          double ordered = 0, so_far = 0;
          sql << "SELECT qty, received_qty FROM po_lines WHERE po_id = :p AND line_num = :l",
              soci::use(po_id), soci::use(line), soci::into(ordered), soci::into(so_far);
          if (!sql.got_data()) {
            refuse(Refusal::kNotFound, "Order " + std::to_string(po_id) + " has no line " +
                                           std::to_string(line) + ".");
          }
          const std::string which = "Line " + std::to_string(line);
          if (qty < 0 && comments.find_first_not_of(" \t") == std::string::npos) {
            refuse(Refusal::kInvalidArgument, which + ": a correction needs a comment.");
          }
          if (so_far + qty < 0) {
            refuse(Refusal::kInvalidArgument, which + ": the correction takes back more than "
                                                      "was received.");
          }
          if (so_far + qty > ordered) {
            refuse(Refusal::kInvalidArgument, which + ": more would be received than ordered.");
          }
          require_length(comments, 2000, "The comment");
          sql << "INSERT INTO receipt_lines (receipt_id, line_num, received_qty, "
                 "packing_slip_qty, comments) VALUES (:r, :l, :q, :k, :c)",
              soci::use(receipt_id), soci::use(line), soci::use(qty), soci::use(packing),
              soci::use(comments);
          sql << "UPDATE po_lines SET received_qty = received_qty + :q WHERE po_id = :p AND "
                 "line_num = :l",
              soci::use(qty), soci::use(po_id), soci::use(line);
          ++recorded;
        }
      }
      if (recorded == 0) refuse(Refusal::kNoItems, "Nothing was received.");
      int lines_total = 0, lines_full = 0, lines_started = 0;
      sql << "SELECT COUNT(*), COALESCE(SUM(CASE WHEN received_qty >= qty THEN 1 ELSE 0 END), 0), "
             "COALESCE(SUM(CASE WHEN received_qty > 0 THEN 1 ELSE 0 END), 0) FROM po_lines "
             "WHERE po_id = :p",
          soci::use(po_id), soci::into(lines_total), soci::into(lines_full),
          soci::into(lines_started);
      const int32_t status = lines_full == lines_total ? po_status::kReceived
                             : lines_started > 0       ? po_status::kPartlyReceived
                                                       : po.status;
      sql << "UPDATE purchase_orders SET status_id = :s, status_date = :d WHERE po_id = :p",
          soci::use(status), soci::use(now), soci::use(po_id);
      log_po(sql, db(), po_id, user, "Receipt",
             "Receipt " + std::to_string(receipt_id) + " recorded", "");
      return static_cast<int32_t>(receipt_id);
    });
  });
}

}  // namespace kxui::reference
