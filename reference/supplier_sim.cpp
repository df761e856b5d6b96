#include "reference/supplier_sim.h"

#include "kxui/business/supplier_exchange.h"
#include "kxui/frame/errors.h"
#include "reference/errors.h"
#include "reference/rows.h"

namespace kxui::reference {

namespace sx = supplier;
using Names = std::map<std::string, int32_t, std::less<>>;

namespace {

[[noreturn]] void no_member(int32_t dispid) {
  throw Failure(err::kNoSuchMember, "KxSupplierLink",
                "The object has no member with dispatch id " + std::to_string(dispid) + ".");
}

constexpr int32_t kPrice = 1, kAvailable = 2, kStatus = 3;

}  // namespace

int32_t PropertyBag::GetIDOfName(std::string_view name) {
  const auto it = names().find(name);
  if (it == names().end()) {
    throw Failure(err::kNoSuchMember, "KxSupplierLink",
                  "The object has no member \"" + std::string(name) + "\".");
  }
  return it->second;
}

Variant PropertyBag::Invoke(int32_t dispid, std::span<Variant> args) {
  Variant result;
  if (call(dispid, args, result)) return result;
  bool known = false;
  for (const auto& [name, id] : names()) known = known || id == dispid;
  if (!known) no_member(dispid);
  if (args.size() == 1) {
    values_[dispid] = args[0];
    return Variant();
  }
  const auto it = values_.find(dispid);
  return it == values_.end() ? Variant() : it->second;
}

const Names& SimQuickCheckItem::names() const {
  static const Names n = {{"LineNum", sx::item::kLineNum},
                          {"SupplierPartNum", sx::item::kSupplierPartNum},
                          {"SupplierPartNumExt", sx::item::kSupplierPartNumExt},
                          {"BuyerSystem", sx::item::kBuyerSystem},
                          {"UOM", sx::item::kUOM},
                          {"Quantity", sx::item::kQuantity}};
  return n;
}

const Names& SimRequestHeader::names() const {
  static const Names n;
  return n;
}

SimResponse::SimResponse(double price, double available, std::string status) {
  values_[kPrice] = Variant(price);
  values_[kAvailable] = Variant(available);
  values_[kStatus] = Variant(std::move(status));
}

const Names& SimResponse::names() const {
  static const Names n = {{sx::kGetUnitPrice, kPrice},
                          {sx::kGetAvailableQty, kAvailable},
                          {sx::kGetStatusCode, kStatus}};
  return n;
}

const Names& SimSupplierQuery::names() const {
  static const Names n = {{"StatusPOID", sx::query::kStatusPOID},
                          {"StatusPONum", sx::query::kStatusPONum},
                          {"StatusSupplierID", sx::query::kStatusSupplierID},
                          {"SendOrderStatus", sx::query::kSendOrderStatus},
                          {"SendQuickCheck", sx::query::kSendQuickCheck},
                          {"ErrorText", sx::query::kErrorText},
                          {"ErrorCode", sx::query::kErrorCode}};
  return n;
}

bool SimSupplierQuery::call(int32_t dispid, std::span<Variant> args, Variant& result) {
  if (dispid == sx::query::kSendQuickCheck) {
    if (args.size() != sx::qc_arg::kCount) no_member(dispid);
    result = Variant(send_quick_check(args));
    return true;
  }
  if (dispid == sx::query::kSendOrderStatus) {
    if (args.size() != sx::status_arg::kCount) no_member(dispid);
    result = Variant(send_order_status(args));
    return true;
  }
  return false;
}

bool SimSupplierQuery::fail(const std::string& code, const std::string& text) {
  values_[sx::query::kErrorCode] = Variant(code);
  values_[sx::query::kErrorText] = Variant(text);
  return false;
}

bool SimSupplierQuery::available(soci::session& sql, int32_t supplier_id) {
  std::string code, text;
  sql << "SELECT error_code, error_text FROM sim_supplier_outages WHERE supplier_id = :s",
      soci::use(supplier_id), soci::into(code), soci::into(text);
  return !sql.got_data() || fail(code, text);
}

bool SimSupplierQuery::send_quick_check(std::span<Variant> args) {
  const int32_t supplier_id = args[sx::qc_arg::kSupplierID].to_int32();
  const Array& items = args[sx::qc_arg::kItems].array();
  std::vector<Variant> answers;
  const bool ok = db_->read([&](soci::session& sql) {
    if (!available(sql, supplier_id)) return false;
    for (int32_t i = items.lbound(); i <= items.ubound(); ++i) {
      auto item = query<Dispatch>(items.at(i).to_object());
      const std::string part = item->Invoke(sx::item::kSupplierPartNum, {}).to_string();
      const std::string ext = item->Invoke(sx::item::kSupplierPartNumExt, {}).to_string();
      long long price = 0;
      double qty = 0;
      sql << "SELECT unit_price, available_qty FROM sim_part_answers WHERE supplier_id = :s "
             "AND supplier_part_num = :p AND supplier_part_num_ext = :e",
          soci::use(supplier_id), soci::use(part), soci::use(ext), soci::into(price),
          soci::into(qty);
      if (!sql.got_data()) return fail("NOPART", "Part " + part + " is not offered.");
      answers.push_back(Variant(std::static_pointer_cast<Object>(std::make_shared<SimResponse>(
          Currency::from_scaled(price).to_double(), qty, ""))));
    }
    return true;
  });
  if (ok) args[sx::qc_arg::kResponses] = Variant(Array::of(std::move(answers)));
  return ok;
}

bool SimSupplierQuery::send_order_status(std::span<Variant> args) {
  const int32_t po_id = values_[sx::query::kStatusPOID].to_int32();
  const int32_t supplier_id = values_[sx::query::kStatusSupplierID].to_int32();
  std::string code;
  const bool ok = db_->read([&](soci::session& sql) {
    if (!available(sql, supplier_id)) return false;
    sql << "SELECT status_code FROM sim_order_answers WHERE po_id = :p", soci::use(po_id),
        soci::into(code);
    if (!sql.got_data()) {
      return fail("NOORDER", "No order " + values_[sx::query::kStatusPONum].to_string() +
                                 " is known.");
    }
    return true;
  });
  if (ok) {
    args[sx::status_arg::kResponses] = Variant(Array::of(
        {Variant(std::static_pointer_cast<Object>(std::make_shared<SimResponse>(0, 0, code)))}));
  }
  return ok;
}

RecordsetPtr RefCursorDataAccess::RunSP(const SessionPtr& session, const std::string& procedure,
                                        const std::vector<Variant>& params, Variant&) {
  return answer("RunSP", RecordsetPtr(), [&] {
    session_of(session);
    if (procedure != "Cat_BorgAccount_Sel_CustName") {
      refuse(Refusal::kNotAllowed, "The procedure \"" + procedure + "\" is not available.");
    }
    if (params.size() != 2) {
      refuse(Refusal::kInvalidArgument, "Cat_BorgAccount_Sel_CustName takes an organisation "
                                        "and a buying entity.");
    }
    const int32_t borg = params[0].to_int32(), ebo = params[1].to_int32();
    static constexpr Column kColumns[] = {{"CustomerName", Kind::kText, 100}};
    return db().read([&](soci::session& sql) {
      soci::rowset<soci::row> rows =
          (sql.prepare << "SELECT customer_name FROM borg_accounts WHERE borg_id = :b AND "
                          "ebo_id = :e",
           soci::use(borg), soci::use(ebo));
      return to_recordset(rows, kColumns);
    });
  });
}

void RegisterSimulatedSupplier(Runtime& rt, const DatabasePtr& db) {
  rt.Register(sx::kSupplierQuery, [db] { return std::make_shared<SimSupplierQuery>(db); });
  rt.Register(sx::kQuickCheckItem, [] { return std::make_shared<SimQuickCheckItem>(); });
  rt.Register(sx::kRequestHeader, [] { return std::make_shared<SimRequestHeader>(); });
}

}  // namespace kxui::reference
