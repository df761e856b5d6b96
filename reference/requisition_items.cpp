// RefRequisition: storing new lines (catalog, special request, favourite), completing
// and updating them.
#include "reference/errors.h"
#include "reference/req_store.h"
#include "reference/requisition.h"
#include "reference/rows.h"

namespace kxui::reference {

namespace {

constexpr const char* kReqLocks = "req_locks";
// The smart form that holds a special request's extra fields; catalog lines have none.
constexpr int32_t kSpecialRequestForm = 1;

// The caller's texts of a special request, checked against their columns.
void check_special_texts(const RefLineItem& item) {
  require_length(item.supplier_name, 100, "A supplier name");
  require_length(item.supplier_part_num, 50, "A part number");
  require_length(item.supplier_part_num_ext, 50, "A part number extension");
  require_length(item.mfr_name, 100, "A manufacturer name");
  require_length(item.commodity_alias, 100, "A commodity alias");
  require_length(item.part_desc, 255, "A description");
}

double quantity_of(const RefLineItem& item) {
  const std::optional<double> qty = item.qty.try_to_double();
  if (!qty || !(*qty > 0)) {
    refuse(Refusal::kInvalidArgument, "The order quantity must be a number above zero.");
  }
  return *qty;
}

}  // namespace

std::shared_ptr<business::RequisitionLineItem> RefRequisition::NewLineItem() {
  item_ = std::make_shared<RefLineItem>();
  return item_;
}

int32_t RefRequisition::target_requisition(soci::session& sql, const Session& s, int32_t req_id) {
  if (req_id != 0) {
    const ReqRow req = load_req(sql, req_id, s);
    require_editable(req, "changed");
    require_not_locked_by_other(sql, db(), kReqLocks, req_id, s);
    return req_id;
  }
  const int user = s.SysUserID();
  int borg = 0;
  std::string currency, full_name;
  sql << "SELECT borg_id, currency_code FROM users WHERE sys_user_id = :u", soci::use(user),
      soci::into(borg), soci::into(currency);
  if (!sql.got_data()) refuse(Refusal::kNotFound, "User " + std::to_string(user) + " does not exist.");
  const std::string now = date_text(db().now());
  const std::string name = "Requisition of " + now.substr(0, 10);
  int new_id = 0;
  sql << "INSERT INTO requisitions (req_name, status_id, requisitioner_id, borg_id, "
         "currency_code, create_date) VALUES (:n, :s, :u, :b, :c, :d) RETURNING req_id",
      soci::use(name), soci::use(req_status::kOpen), soci::use(user), soci::use(borg),
      soci::use(currency), soci::use(now), soci::into(new_id);
  log_req(sql, db(), new_id, user, "Created", name);
  return new_id;
}

int32_t RefRequisition::insert_line(soci::session& sql, int32_t req_id, const RefLineItem& item,
                                    std::optional<int32_t> part_id, bool complete) {
  int line = 0;
  sql << "SELECT COALESCE(MAX(line_num), 0) + 1 FROM req_lines WHERE req_id = :r",
      soci::use(req_id), soci::into(line);
  int part = part_id.value_or(0), supplier = item.supplier_id, mfr = item.mfr_id,
      commodity = item.commodity_id;
  soci::indicator part_ind = part_id ? soci::i_ok : soci::i_null;
  soci::indicator sup_ind = supplier ? soci::i_ok : soci::i_null;
  soci::indicator mfr_ind = mfr ? soci::i_ok : soci::i_null;
  soci::indicator com_ind = commodity ? soci::i_ok : soci::i_null;
  const double qty = quantity_of(item);
  const long long price = item.unit_price.scaled;
  const int special = item.special ? 1 : 0, done = complete ? 1 : 0;
  sql << "INSERT INTO req_lines (req_id, line_num, part_id, supplier_id, supplier_name, "
         "supplier_part_num, supplier_part_num_ext, qty, uom_id, mfr_id, mfr_name, commodity_id, "
         "commodity_alias, unit_price, currency_code, part_desc, is_special, complete) VALUES "
         "(:r, :l, :p, :s, :sn, :pn, :px, :q, :u, :m, :mn, :c, :ca, :up, :cc, :d, :sp, :done)",
      soci::use(req_id), soci::use(line), soci::use(part, part_ind),
      soci::use(supplier, sup_ind), soci::use(item.supplier_name),
      soci::use(item.supplier_part_num), soci::use(item.supplier_part_num_ext), soci::use(qty),
      soci::use(item.uom_id), soci::use(mfr, mfr_ind), soci::use(item.mfr_name),
      soci::use(commodity, com_ind), soci::use(item.commodity_alias), soci::use(price),
      soci::use(item.currency_code), soci::use(item.part_desc), soci::use(special),
      soci::use(done);
  return line;
}

bool RefRequisition::CommitItem(const SessionPtr& session, const std::string&, Variant&) {
  return answer("CommitItem", false, [&] {
    const Session& s = session_of(session);
    if (!item_) refuse(Refusal::kInvalidArgument, "No line item was handed out to be stored.");
    RefLineItem line = *item_;
    db().write([&](soci::session& sql) {
      // The catalog decides the price, description and unit of a catalog line.
      int part_id = 0, mfr = 0, commodity = 0;
      long long price = 0;
      std::string supplier, uom, currency, desc;
      soci::indicator mfr_ind = soci::i_ok;
      sql << "SELECT p.part_id, s.name, p.uom_id, p.unit_price, p.currency_code, p.description, "
             "p.mfr_id, p.commodity_id FROM parts p JOIN suppliers s ON s.supplier_id = "
             "p.supplier_id WHERE p.supplier_id = :s AND p.supplier_part_num = :n AND "
             "p.supplier_part_num_ext = :x",
          soci::use(line.supplier_id), soci::use(line.supplier_part_num),
          soci::use(line.supplier_part_num_ext), soci::into(part_id), soci::into(supplier),
          soci::into(uom), soci::into(price), soci::into(currency), soci::into(desc),
          soci::into(mfr, mfr_ind), soci::into(commodity);
      if (!sql.got_data()) {
        refuse(Refusal::kNotFound, "Supplier " + std::to_string(line.supplier_id) +
                                       " has no catalog part \"" + line.supplier_part_num + "\".");
      }
      if (!line.uom_id.empty() && line.uom_id != uom) {
        refuse(Refusal::kInvalidArgument, "Part \"" + line.supplier_part_num + "\" is sold by " +
                                              uom + ", not by " + line.uom_id + ".");
      }
      line.supplier_name = supplier;
      line.uom_id = uom;
      line.unit_price = Currency::from_scaled(price);
      line.currency_code = currency;
      line.part_desc = desc;
      line.mfr_id = mfr_ind == soci::i_null ? 0 : mfr;
      line.commodity_id = commodity;
      line.special = false;
      line.req_id = target_requisition(sql, s, line.req_id);
      line.line_num = insert_line(sql, line.req_id, line, part_id, false);
      log_req(sql, db(), line.req_id, s.SysUserID(), "Item added", desc);
    });
    item_->req_id = line.req_id;
    item_->line_num = line.line_num;
    return true;
  });
}

bool RefRequisition::CommitSpecialRequestItem(const SessionPtr& session, const std::string&,
                                              Variant&) {
  return answer("CommitSpecialRequestItem", false, [&] {
    const Session& s = session_of(session);
    if (!item_) refuse(Refusal::kInvalidArgument, "No line item was handed out to be stored.");
    if (item_->part_desc.empty()) {
      refuse(Refusal::kInvalidArgument, "A special request needs a description.");
    }
    check_special_texts(*item_);
    RefLineItem line = *item_;
    line.special = true;
    db().write([&](soci::session& sql) {
      line.req_id = target_requisition(sql, s, line.req_id);
      line.line_num = insert_line(sql, line.req_id, line, std::nullopt, false);
      log_req(sql, db(), line.req_id, s.SysUserID(), "Special request added", line.part_desc);
    });
    item_->req_id = line.req_id;
    item_->line_num = line.line_num;
    return true;
  });
}

bool RefRequisition::CompleteItem(const SessionPtr& session, int32_t req_id, int32_t line_num,
                                  Variant&) {
  return answer("CompleteItem", false, [&] {
    const Session& s = session_of(session);
    const int32_t form = db().write([&](soci::session& sql) {
      const ReqRow req = load_req(sql, req_id, s);
      require_editable(req, "changed");
      require_not_locked_by_other(sql, db(), kReqLocks, req_id, s);
      int special = 0;
      sql << "SELECT is_special FROM req_lines WHERE req_id = :r AND line_num = :l",
          soci::use(req_id), soci::use(line_num), soci::into(special);
      if (!sql.got_data()) {
        refuse(Refusal::kNotFound, "Requisition " + std::to_string(req_id) + " has no line " +
                                       std::to_string(line_num) + ".");
      }
      const int smart_form = special ? kSpecialRequestForm : 0;
      sql << "UPDATE req_lines SET complete = 1, smart_form_id = :f WHERE req_id = :r AND "
             "line_num = :l",
          soci::use(smart_form), soci::use(req_id), soci::use(line_num);
      return smart_form;
    });
    if (item_ && item_->req_id == req_id && item_->line_num == line_num) {
      item_->smart_form_id = form;
    }
    return true;
  });
}

bool RefRequisition::UpdateSpecialRequestItem(const SessionPtr& session, Variant&) {
  return answer("UpdateSpecialRequestItem", false, [&] {
    const Session& s = session_of(session);
    if (!item_) refuse(Refusal::kInvalidArgument, "No line item was handed out to be stored.");
    const RefLineItem& line = *item_;
    const double qty = quantity_of(line);
    check_special_texts(line);
    db().write([&](soci::session& sql) {
      const ReqRow req = load_req(sql, line.req_id, s);
      require_editable(req, "changed");
      require_not_locked_by_other(sql, db(), kReqLocks, line.req_id, s);
      int special = 0;
      sql << "SELECT is_special FROM req_lines WHERE req_id = :r AND line_num = :l",
          soci::use(line.req_id), soci::use(line.line_num), soci::into(special);
      if (!sql.got_data() || !special) {
        refuse(Refusal::kNotFound, "Requisition " + std::to_string(line.req_id) +
                                       " has no special request on line " +
                                       std::to_string(line.line_num) + ".");
      }
      int supplier = line.supplier_id, mfr = line.mfr_id, commodity = line.commodity_id;
      soci::indicator sup_ind = supplier ? soci::i_ok : soci::i_null;
      soci::indicator mfr_ind = mfr ? soci::i_ok : soci::i_null;
      soci::indicator com_ind = commodity ? soci::i_ok : soci::i_null;
      const long long price = line.unit_price.scaled;
      sql << "UPDATE req_lines SET supplier_id = :s, supplier_name = :sn, supplier_part_num = :pn, "
             "supplier_part_num_ext = :px, qty = :q, uom_id = :u, mfr_id = :m, mfr_name = :mn, "
             "commodity_id = :c, commodity_alias = :ca, unit_price = :up, currency_code = :cc, "
             "part_desc = :d WHERE req_id = :r AND line_num = :l",
          soci::use(supplier, sup_ind), soci::use(line.supplier_name),
          soci::use(line.supplier_part_num), soci::use(line.supplier_part_num_ext), soci::use(qty),
          soci::use(line.uom_id), soci::use(mfr, mfr_ind), soci::use(line.mfr_name),
          soci::use(commodity, com_ind), soci::use(line.commodity_alias), soci::use(price),
          soci::use(line.currency_code), soci::use(line.part_desc), soci::use(line.req_id),
          soci::use(line.line_num);
      log_req(sql, db(), line.req_id, s.SysUserID(), "Special request changed", line.part_desc);
    });
    return true;
  });
}

bool RefRequisition::AddFavoriteItem(const SessionPtr& session, int32_t part_base_id, double qty,
                                     int32_t& req_id, int32_t& line_num, int32_t& smart_form_id,
                                     Variant&) {
  return answer("AddFavoriteItem", false, [&] {
    const Session& s = session_of(session);
    RefLineItem line;
    line.qty = Variant(qty);
    quantity_of(line);
    const int user = s.SysUserID();
    db().write([&](soci::session& sql) {
      int supplier = 0, commodity = 0, mfr = 0;
      long long price = 0;
      soci::indicator mfr_ind = soci::i_ok;
      sql << "SELECT p.supplier_id, s.name, p.supplier_part_num, p.supplier_part_num_ext, "
             "p.uom_id, p.unit_price, p.currency_code, p.description, p.commodity_id, p.mfr_id "
             "FROM favorites f JOIN parts p ON p.part_id = f.part_id JOIN suppliers s ON "
             "s.supplier_id = p.supplier_id WHERE f.sys_user_id = :u AND f.part_id = :p",
          soci::use(user), soci::use(part_base_id), soci::into(supplier),
          soci::into(line.supplier_name), soci::into(line.supplier_part_num),
          soci::into(line.supplier_part_num_ext), soci::into(line.uom_id), soci::into(price),
          soci::into(line.currency_code), soci::into(line.part_desc), soci::into(commodity),
          soci::into(mfr, mfr_ind);
      if (!sql.got_data()) {
        refuse(Refusal::kNotFound,
               "Part " + std::to_string(part_base_id) + " is not among your favourites.");
      }
      line.supplier_id = supplier;
      line.commodity_id = commodity;
      line.mfr_id = mfr_ind == soci::i_null ? 0 : mfr;
      line.unit_price = Currency::from_scaled(price);
      line.req_id = target_requisition(sql, s, req_id);
      line.line_num = insert_line(sql, line.req_id, line, part_base_id, true);
      log_req(sql, db(), line.req_id, user, "Favourite added", line.part_desc);
    });
    req_id = line.req_id;
    line_num = line.line_num;
    smart_form_id = 0;
    return true;
  });
}

}  // namespace kxui::reference
