#include "reference/reconcile.h"

#include "kxui/frame/errors.h"
#include "kxui/frame/failure.h"
#include "reference/errors.h"
#include "reference/purchase_order.h"
#include "reference/req_store.h"
#include "reference/rows.h"

namespace kxui::reference {

namespace {

// Makes the working copy from the order's lines unless it exists.
void ensure_copy(soci::session& sql, int32_t po_id) {
  int lines = 0;
  sql << "SELECT COUNT(*) FROM recon_lines WHERE po_id = :p", soci::use(po_id), soci::into(lines);
  if (lines > 0) return;
  sql << "INSERT INTO recon_lines (po_id, line_num, supplier_part_num, supplier_part_num_ext, "
         "uom_id, description, unit_price, actual_unit_price, currency_code, order_qty, "
         "shipped_qty) SELECT l.po_id, l.line_num, COALESCE(rl.supplier_part_num, ''), "
         "COALESCE(rl.supplier_part_num_ext, ''), COALESCE(rl.uom_id, 'EA'), l.description, "
         "l.unit_price, l.unit_price, l.currency_code, l.qty, l.qty FROM po_lines l "
         "JOIN purchase_orders o ON o.po_id = l.po_id LEFT JOIN req_lines rl ON "
         "rl.req_id = o.req_id AND rl.line_num = l.req_line_num WHERE l.po_id = :p",
      soci::use(po_id);
}

// The numbers of a page's array (or a single value).
std::vector<Variant> values_of(const Variant& v) {
  if (!v.is_array()) return {v};
  const Array& a = v.array();
  std::vector<Variant> out;
  for (int32_t i = a.lbound(); i <= a.ubound(); ++i) out.push_back(a.at(i));
  return out;
}

constexpr Column kItemColumns[] = {
    {"LineNum", Kind::kInt},           {"SupplierPartNum", Kind::kText, 50},
    {"ShortDesc", Kind::kText, 255},   {"UnitPrice", Kind::kMoney},
    {"ActualPrice", Kind::kMoney},     {"CurrencyCode", Kind::kText, 3},
    {"OrderQty", Kind::kDouble},       {"BackOrderQty", Kind::kDouble},
    {"ShippedQty", Kind::kDouble},     {"InStockQty", Kind::kDouble},
    {"POOrderQty", Kind::kDouble},     {"POBackOrderQty", Kind::kDouble}};  // ordered, not yet received

}  // namespace

template <class T>
void RefReconcileItem::store(const char* column, T value) {
  db_->write([&](soci::session& sql) {
    sql << "UPDATE recon_lines SET " + std::string(column) +
               " = :v WHERE po_id = :p AND line_num = :l",
        soci::use(value), soci::use(po_id_), soci::use(line_num);
  });
}

void RefReconcileItem::SetDeleted(bool v) {
  store("deleted", v ? 1 : 0);
  deleted = v;
}
void RefReconcileItem::SetUnitPrice(Currency p) { store("unit_price", (long long)p.scaled); }
void RefReconcileItem::SetActualUnitPrice(Currency p) {
  store("actual_unit_price", (long long)p.scaled);
}
void RefReconcileItem::SetInStockQty(double qty) { store("in_stock_qty", qty); }

void RefReconcileItems::load(const Session& s, int32_t po_id, int32_t line_number) {
  std::vector<std::shared_ptr<RefReconcileItem>> items;
  db().write([&](soci::session& sql) {
    items.clear();  // a change replayed after a conflict starts over
    load_order(sql, po_id, s);
    ensure_copy(sql, po_id);
    soci::rowset<soci::row> rows =
        (sql.prepare << "SELECT r.line_num, r.supplier_part_num, r.supplier_part_num_ext, "
                        "r.uom_id, r.shipped_qty, r.deleted, COALESCE(o.supplier_id, 0) "
                        "FROM recon_lines r JOIN purchase_orders o ON o.po_id = r.po_id "
                        "WHERE r.po_id = :p AND (:n = 0 OR r.line_num = :n2) ORDER BY r.line_num",
         soci::use(po_id), soci::use(line_number), soci::use(line_number));
    for (const soci::row& row : rows) {
      auto item = std::make_shared<RefReconcileItem>(db_ptr(), po_id);
      item->line_num = int_of(row, 0);
      item->part_num = text_of(row, 1);
      item->part_num_ext = text_of(row, 2);
      item->uom = text_of(row, 3);
      item->shipped = *get_double(row, 4);
      item->deleted = int_of(row, 5) != 0;
      item->supplier_id = int_of(row, 6);
      items.push_back(std::move(item));
    }
  });
  items_ = std::move(items);
}

bool RefReconcileItems::Load(const SessionPtr& session, int32_t po_id, Variant&) {
  return answer("Load", false, [&] {
    load(session_of(session), po_id, 0);
    return true;
  });
}

std::shared_ptr<business::ReconcileItem> RefReconcileItems::Item(int32_t index) {
  if (index < 1 || index > Count()) {
    throw Failure(err::kSubscriptOutOfRange, "ReconcileItems::Item",
                  std::string(err::text(err::kSubscriptOutOfRange)));
  }
  return items_[static_cast<size_t>(index - 1)];
}

bool RefReconcileOrder::LoadOrder(const SessionPtr& session, int32_t po_id, int32_t line_number,
                                  Variant&) {
  return answer("LoadOrder", false, [&] {
    const Session& s = session_of(session);
    auto items = std::make_shared<RefReconcileItems>(db_ptr());
    items->load(s, po_id, line_number);
    items_ = std::move(items);
    po_id_ = po_id;
    return true;
  });
}

bool RefReconcileOrder::SaveOrder(const SessionPtr& session, Variant&) {
  return answer("SaveOrder", false, [&] {
    const Session& s = session_of(session);
    if (!items_) refuse(Refusal::kInvalidArgument, "No order is loaded to be saved.");
    // The lines were written as they changed; saving records it on the order.
    db().write([&](soci::session& sql) {
      const PORow po = load_order(sql, po_id_, s);
      require_changeable(sql, db(), po, s, "reconciling it");
      log_po(sql, db(), po_id_, s.SysUserID(), "Reconcile", "Working copy saved", "");
    });
    return true;
  });
}

RecordsetPtr RefReconcileOrder::GetOrderItems(const SessionPtr& session, int32_t po_id,
                                              int32_t line_number, Variant&) {
  return answer("GetOrderItems", RecordsetPtr(), [&] {
    const Session& s = session_of(session);
    return db().write([&](soci::session& sql) {
      load_order(sql, po_id, s);
      ensure_copy(sql, po_id);
      soci::rowset<soci::row> rows =
          (sql.prepare << "SELECT r.line_num, r.supplier_part_num, r.description, r.unit_price, "
                          "CAST(ROUND(r.actual_unit_price * r.shipped_qty) AS BIGINT), "
                          "r.currency_code, r.order_qty, r.back_order_qty, r.shipped_qty, "
                          "r.in_stock_qty, COALESCE(l.qty, 0), CASE WHEN l.qty > l.received_qty "
                          "THEN l.qty - l.received_qty ELSE 0 END FROM recon_lines r "
                          "LEFT JOIN po_lines l ON l.po_id = r.po_id AND l.line_num = r.line_num "
                          "WHERE r.po_id = :p AND r.deleted = 0 AND (:n = 0 OR r.line_num = :n2) "
                          "ORDER BY r.line_num",
           soci::use(po_id), soci::use(line_number), soci::use(line_number));
      return to_recordset(rows, kItemColumns);
    });
  });
}

bool RefReconcileOrder::AddAlternateItem(const SessionPtr& session, int32_t po_id, int32_t,
                                         const std::shared_ptr<business::POItems>& items,
                                         Variant&) {
  return answer("AddAlternateItem", false, [&] {
    const Session& s = session_of(session);
    auto list = std::dynamic_pointer_cast<RefPOItems>(items);
    if (!list || list->items.empty()) refuse(Refusal::kNoItems, "No alternative was given.");
    db().write([&](soci::session& sql) {
      const PORow po = load_order(sql, po_id, s);
      require_changeable(sql, db(), po, s, "adding an alternative");
      ensure_copy(sql, po_id);
      for (const auto& entry : list->items) {
        auto item = std::dynamic_pointer_cast<RefPOItem>(entry);
        if (!item) refuse(Refusal::kInvalidArgument, "An alternative is not one of this tier's.");
        int next = 0;
        sql << "SELECT COALESCE(MAX(line_num), 0) + 1 FROM recon_lines WHERE po_id = :p",
            soci::use(po_id), soci::into(next);
        const long long price = item->unit_price.scaled, actual = item->actual_unit_price.scaled;
        const std::string uom = item->uom.empty() ? "EA" : item->uom;
        // An alternative starts with nothing shipped: the user sets its quantities.
        sql << "INSERT INTO recon_lines (po_id, line_num, supplier_part_num, "
               "supplier_part_num_ext, uom_id, description, unit_price, actual_unit_price, "
               "currency_code, order_qty, shipped_qty) VALUES (:p, :l, :n, :x, :u, :d, :up, "
               ":ap, :c, 0, 0)",
            soci::use(po_id), soci::use(next), soci::use(item->supplier_part_num),
            soci::use(item->supplier_part_num_ext), soci::use(uom), soci::use(item->short_desc),
            soci::use(price), soci::use(actual), soci::use(item->actual_currency);
      }
    });
    return true;
  });
}

bool RefReconcileOrder::UpdateQuantities(const SessionPtr& session, int32_t po_id,
                                         const Variant& line_numbers, const Variant& shipped_qtys,
                                         const Variant& back_order_qtys, Variant&) {
  return answer("UpdateQuantities", false, [&] {
    const Session& s = session_of(session);
    const auto lines = values_of(line_numbers), shipped = values_of(shipped_qtys),
               back = values_of(back_order_qtys);
    if (lines.size() != shipped.size() || lines.size() != back.size()) {
      refuse(Refusal::kInvalidArgument, "The line and quantity lists differ in length.");
    }
    db().write([&](soci::session& sql) {
      const PORow po = load_order(sql, po_id, s);
      require_changeable(sql, db(), po, s, "changing quantities");
      ensure_copy(sql, po_id);
      for (size_t i = 0; i < lines.size(); ++i) {
        const int line = lines[i].to_int32();
        const double ship = shipped[i].to_double(), later = back[i].to_double();
        if (ship < 0 || later < 0) {
          refuse(Refusal::kInvalidArgument,
                 "Line " + std::to_string(line) + ": quantities cannot be negative.");
        }
        int found = 0;
        sql << "SELECT COUNT(*) FROM recon_lines WHERE po_id = :p AND line_num = :l",
            soci::use(po_id), soci::use(line), soci::into(found);
        if (!found) refuse(Refusal::kNotFound, "Order " + std::to_string(po_id) +
                                                   " has no line " + std::to_string(line) + ".");
        const double ordered = ship + later;
        sql << "UPDATE recon_lines SET shipped_qty = :s, back_order_qty = :b, order_qty = :o "
               "WHERE po_id = :p AND line_num = :l",
            soci::use(ship), soci::use(later), soci::use(ordered), soci::use(po_id),
            soci::use(line);
      }
    });
    return true;
  });
}

bool RefReconcileOrder::SubmitOrder(const SessionPtr& session, int32_t po_id, Variant&) {
  return answer("SubmitOrder", false, [&] {
    const Session& s = session_of(session);
    db().write([&](soci::session& sql) {
      const PORow po = load_order(sql, po_id, s);
      require_changeable(sql, db(), po, s, "submitting its reconciliation");
      ensure_copy(sql, po_id);
      int kept = 0;
      sql << "SELECT COUNT(*) FROM recon_lines WHERE po_id = :p AND deleted = 0 AND "
             "order_qty > 0", soci::use(po_id), soci::into(kept);
      if (kept == 0) refuse(Refusal::kNoItems, "A reconciled order needs at least one line.");
      // Lines dropped or reduced to nothing leave the order; the others take the
      // supplier's price and quantities; alternatives join it.
      sql << "DELETE FROM po_lines WHERE po_id = :p AND line_num IN (SELECT line_num FROM "
             "recon_lines WHERE po_id = :p2 AND (deleted = 1 OR order_qty <= 0))",
          soci::use(po_id), soci::use(po_id);
      sql << "UPDATE po_lines SET qty = (SELECT r.order_qty FROM recon_lines r WHERE "
             "r.po_id = po_lines.po_id AND r.line_num = po_lines.line_num), unit_price = "
             "(SELECT r.actual_unit_price FROM recon_lines r WHERE r.po_id = po_lines.po_id AND "
             "r.line_num = po_lines.line_num) WHERE po_id = :p",
          soci::use(po_id);
      sql << "INSERT INTO po_lines (po_id, line_num, req_line_num, description, qty, "
             "unit_price, currency_code) SELECT r.po_id, r.line_num, 0, r.description, "
             "r.order_qty, r.actual_unit_price, r.currency_code FROM recon_lines r WHERE "
             "r.po_id = :p AND r.deleted = 0 AND r.order_qty > 0 AND NOT EXISTS (SELECT 1 FROM "
             "po_lines l WHERE l.po_id = r.po_id AND l.line_num = r.line_num)",
          soci::use(po_id);
      sql << "DELETE FROM recon_lines WHERE po_id = :p", soci::use(po_id);
      const std::string now = date_text(db().now());
      sql << "UPDATE purchase_orders SET status_id = :s, status_date = :d WHERE po_id = :p",
          soci::use(po_status::kSent), soci::use(now), soci::use(po_id);
      log_po(sql, db(), po_id, s.SysUserID(), "Reconcile", "Reconciled and sent", "");
    });
    return true;
  });
}

bool RefReconcileOrder::LoadOrderHeader(const SessionPtr& session, int32_t po_id,
                                        const std::string&, Variant&) {
  return answer("LoadOrderHeader", false, [&] {
    const Session& s = session_of(session);
    auto h = std::make_shared<RefReconcileOrderHeader>();
    long long sub = 0, tax = 0;
    db().write([&](soci::session& sql) {
      load_order(sql, po_id, s);
      ensure_copy(sql, po_id);
      soci::indicator sup_ind = soci::i_ok;
      sql << "SELECT o.supplier_name, o.supplier_id, o.currency_code, "
             "COALESCE((SELECT CAST(ROUND(SUM(r.actual_unit_price * r.order_qty)) AS BIGINT) "
             "FROM recon_lines r WHERE r.po_id = o.po_id AND r.deleted = 0), 0), "
             "COALESCE((SELECT CAST(ROUND(SUM(r.actual_unit_price * r.order_qty) * b.tax_rate) "
             "AS BIGINT) FROM recon_lines r WHERE r.po_id = o.po_id AND r.deleted = 0), 0) "
             "FROM purchase_orders o JOIN requisitions q ON q.req_id = o.req_id "
             "JOIN borgs b ON b.borg_id = q.borg_id WHERE o.po_id = :p",
          soci::use(po_id), soci::into(h->supplier), soci::into(h->supplier_id, sup_ind),
          soci::into(h->currency), soci::into(sub), soci::into(tax);
      if (sup_ind != soci::i_ok) h->supplier_id = 0;
    });
    h->po_num = "PO-" + std::to_string(po_id);
    h->sub_total = Currency::from_scaled(sub);
    h->tax = Currency::from_scaled(tax);
    h->total = Currency::from_scaled(sub + tax);
    header_ = std::move(h);
    return true;
  });
}

}  // namespace kxui::reference
