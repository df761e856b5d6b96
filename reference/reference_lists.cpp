#include "reference/reference_lists.h"

#include "reference/errors.h"
#include "reference/rows.h"

namespace kxui::reference {

namespace {

constexpr Column kAddressColumns[] = {
    {"ID", Kind::kInt},          {"Line1", Kind::kText, 100},      {"Line2", Kind::kText, 100},
    {"Line3", Kind::kText, 100}, {"City", Kind::kText, 50},        {"State", Kind::kText, 50},
    {"PostalCode", Kind::kText, 20}, {"CountryCode", Kind::kText, 3},
    {"ContactName", Kind::kText, 35}, {"Telephone", Kind::kText, 35},
    {"Email", Kind::kText, 80},  {"Fax", Kind::kText, 35},         {"ContactLocation", Kind::kText, 35}};

const char* const kAddressSelect =
    "line1, line2, line3, city, state, postal_code, country_code, contact_name, telephone, "
    "email, fax, contact_location";

// The table names are constants of this file, never input.
RecordsetPtr address_list(Database& db, const char* table, const char* key, int32_t borg_id) {
  return db.read([&](soci::session& sql) {
    soci::rowset<soci::row> rows =
        (sql.prepare << "SELECT " << key << ", " << kAddressSelect << " FROM " << table
                     << " WHERE borg_id = :b ORDER BY " << key,
         soci::use(borg_id));
    return to_recordset(rows, kAddressColumns);
  });
}

AddressRow load_address(Database& db, const char* table, const char* key, int32_t id) {
  return db.read([&](soci::session& sql) {
    soci::rowset<soci::row> rows =
        (sql.prepare << "SELECT " << key << ", " << kAddressSelect << ", "
                     << (std::string(table) == "ship_tos" ? "taxable" : "0") << " FROM " << table
                     << " WHERE " << key << " = :i",
         soci::use(id));
    for (const soci::row& r : rows) {
      AddressRow a;
      a.id = static_cast<double>(int_of(r, 0));
      a.address.line1 = text_of(r, 1);
      a.address.line2 = text_of(r, 2);
      a.address.line3 = text_of(r, 3);
      a.address.city = text_of(r, 4);
      a.address.state = text_of(r, 5);
      a.address.postal_code = text_of(r, 6);
      a.address.country_code = text_of(r, 7);
      a.contact_name = text_of(r, 8);
      a.telephone = text_of(r, 9);
      a.email = text_of(r, 10);
      a.fax = text_of(r, 11);
      a.contact_location = text_of(r, 12);
      a.taxable = int_of(r, 13) != 0;
      return a;
    }
    refuse(Refusal::kNotFound, "Address " + std::to_string(id) + " does not exist.");
  });
}

template <size_t N>
RecordsetPtr list(Database& db, const Column (&columns)[N], const std::string& query) {
  return db.read([&](soci::session& sql) {
    soci::rowset<soci::row> rows = (sql.prepare << query);
    return to_recordset(rows, columns);
  });
}

constexpr Column kCurrencyColumns[] = {{"CurrencyCode", Kind::kText, 3},
                                       {"CurrencyName", Kind::kText, 100}};
constexpr Column kUomColumns[] = {{"UOMID", Kind::kText, 10}, {"VeltrixDesc", Kind::kText, 100}};
constexpr Column kMethodColumns[] = {{"ID", Kind::kInt}, {"Name", Kind::kText, 50}};

}  // namespace

RecordsetPtr RefBillTo::GetBillToList(const SessionPtr& session, int32_t borg_id, Variant&) {
  return answer("GetBillToList", RecordsetPtr(), [&] {
    session_of(session);
    return address_list(db(), "bill_tos", "bill_to_id", borg_id);
  });
}

bool RefBillTo::Load(const SessionPtr& session, int32_t id, Variant&) {
  return answer("Load", false, [&] {
    session_of(session);
    row_ = load_address(db(), "bill_tos", "bill_to_id", id);
    return true;
  });
}

RecordsetPtr RefShipTo::GetShipToList(const SessionPtr& session, int32_t borg_id, Variant&) {
  return answer("GetShipToList", RecordsetPtr(), [&] {
    session_of(session);
    return address_list(db(), "ship_tos", "ship_to_id", borg_id);
  });
}

bool RefShipTo::Load(const SessionPtr& session, int32_t id, Variant&) {
  return answer("Load", false, [&] {
    session_of(session);
    row_ = load_address(db(), "ship_tos", "ship_to_id", id);
    return true;
  });
}

RecordsetPtr RefCurrencyCodes::GetCurrencyList(const SessionPtr& session, Variant&) {
  return answer("GetCurrencyList", RecordsetPtr(), [&] {
    session_of(session);
    return list(db(), kCurrencyColumns,
                "SELECT currency_code, description FROM currencies ORDER BY currency_code");
  });
}

RecordsetPtr RefCurrencyCodes::GetCurrencyListByBorg(const SessionPtr& session, Variant&) {
  return answer("GetCurrencyListByBorg", RecordsetPtr(), [&] {
    const int32_t borg = session_of(session).BorgID();
    return db().read([&](soci::session& sql) {
      soci::rowset<soci::row> rows =
          (sql.prepare << "SELECT c.currency_code, c.description FROM currencies c WHERE "
                          "c.currency_code = (SELECT currency_code FROM borgs WHERE borg_id = :b) "
                          "OR c.currency_code IN (SELECT currency_code FROM suppliers) "
                          "ORDER BY c.currency_code <> (SELECT currency_code FROM borgs "
                          "WHERE borg_id = :b2), c.currency_code",
           soci::use(borg), soci::use(borg));
      return to_recordset(rows, kCurrencyColumns);
    });
  });
}

RecordsetPtr RefMfr::GetMfrList(const SessionPtr& session, Variant&) {
  return answer("GetMfrList", RecordsetPtr(), [&] {
    session_of(session);
    static constexpr Column kColumns[] = {{"MfrID", Kind::kInt}, {"Name", Kind::kText, 100}};
    return list(db(), kColumns, "SELECT mfr_id, name FROM manufacturers ORDER BY name");
  });
}

RecordsetPtr RefBorg::GetSupplierList(const SessionPtr& session, Variant&) {
  return answer("GetSupplierList", RecordsetPtr(), [&] {
    session_of(session);
    static constexpr Column kColumns[] = {{"SupplierID", Kind::kInt}, {"Name", Kind::kText, 100}};
    return list(db(), kColumns, "SELECT supplier_id, name FROM suppliers ORDER BY name");
  });
}

RecordsetPtr RefUOM::GetUOMList(const SessionPtr& session, Variant&) {
  return answer("GetUOMList", RecordsetPtr(), [&] {
    session_of(session);
    return list(db(), kUomColumns, "SELECT uom_id, description FROM uoms ORDER BY uom_id");
  });
}

RecordsetPtr RefUOM::GetUOMDescList(const SessionPtr& session, Variant&) {
  return answer("GetUOMDescList", RecordsetPtr(), [&] {
    session_of(session);
    return list(db(), kUomColumns, "SELECT uom_id, description FROM uoms ORDER BY description");
  });
}

RecordsetPtr RefPaymentMethod::GetPaymentMethodList(const SessionPtr& session,
                                                    int32_t supplier_id, int32_t, Variant&) {
  return answer("GetPaymentMethodList", RecordsetPtr(), [&] {
    session_of(session);
    return db().read([&](soci::session& sql) {
      soci::rowset<soci::row> rows =
          (sql.prepare << "SELECT m.payment_method_id, m.name FROM payment_methods m WHERE "
                          "NOT EXISTS (SELECT 1 FROM supplier_payment_methods WHERE "
                          "supplier_id = :s) OR m.payment_method_id IN (SELECT "
                          "payment_method_id FROM supplier_payment_methods WHERE supplier_id = "
                          ":s2) ORDER BY m.payment_method_id",
           soci::use(supplier_id), soci::use(supplier_id));
      return to_recordset(rows, kMethodColumns);
    });
  });
}

RecordsetPtr RefShipMethod::GetShipMethodList(const SessionPtr& session, int32_t supplier_id,
                                              Variant&) {
  return answer("GetShipMethodList", RecordsetPtr(), [&] {
    session_of(session);
    return db().read([&](soci::session& sql) {
      soci::rowset<soci::row> rows =
          (sql.prepare << "SELECT ship_method_id, name FROM ship_methods WHERE supplier_id IS "
                          "NULL OR supplier_id = :s ORDER BY ship_method_id",
           soci::use(supplier_id));
      return to_recordset(rows, kMethodColumns);
    });
  });
}

RecordsetPtr RefReceiptItemStatus::GetReceiptItemStatusList(const SessionPtr& session, Variant&) {
  return answer("GetReceiptItemStatusList", RecordsetPtr(), [&] {
    session_of(session);
    static constexpr Column kColumns[] = {{"StatusID", Kind::kInt},
                                          {"Description", Kind::kText, 50}};
    return list(db(), kColumns,
                "SELECT status_id, description FROM receipt_item_statuses ORDER BY status_id");
  });
}

RecordsetPtr RefSysUser::GetUserBorgList(const SessionPtr& session, Variant&) {
  return answer_or_throw("GetUserBorgList", [&] {
    const int32_t user = session_of(session).SysUserID();
    static constexpr Column kColumns[] = {{"BorgID", Kind::kInt}, {"Name", Kind::kText, 100}};
    return db().read([&](soci::session& sql) {
      soci::rowset<soci::row> rows =
          (sql.prepare << "SELECT b.borg_id, b.name FROM borgs b JOIN users u ON u.borg_id = "
                          "b.borg_id WHERE u.sys_user_id = :u ORDER BY b.name",
           soci::use(user));
      return to_recordset(rows, kColumns);
    });
  });
}

RecordsetPtr RefLocale::GetLocaleList(const SessionPtr& session, Variant&) {
  return answer_or_throw("GetLocaleList", [&] {
    session_of(session);
    static constexpr Column kColumns[] = {{"LocaleID", Kind::kInt},
                                          {"LocaleName", Kind::kText, 10},
                                          {"Description", Kind::kText, 100}};
    return list(db(), kColumns,
                "SELECT locale_id, name, description FROM locales ORDER BY description");
  });
}

RecordsetPtr RefTimeZone::GetTimeZoneList(const SessionPtr& session, Variant&) {
  return answer_or_throw("GetTimeZoneList", [&] {
    session_of(session);
    static constexpr Column kColumns[] = {{"TimeZoneID", Kind::kInt},
                                          {"Description", Kind::kText, 100}};
    return list(db(), kColumns,
                "SELECT time_zone_id, display_name FROM time_zones ORDER BY time_zone_id");
  });
}

RecordsetPtr RefCostCenter::GetBorgCostCenters(const SessionPtr& session, int32_t borg_id,
                                               Variant&) {
  return answer_or_throw("GetBorgCostCenters", [&] {
    session_of(session);
    static constexpr Column kColumns[] = {{"CostCenterID", Kind::kInt},
                                          {"Code", Kind::kText, 20},
                                          {"Description", Kind::kText, 100}};
    return db().read([&](soci::session& sql) {
      soci::rowset<soci::row> rows =
          (sql.prepare << "SELECT cost_center_id, code, name FROM cost_centers WHERE borg_id = "
                          ":b ORDER BY code",
           soci::use(borg_id));
      return to_recordset(rows, kColumns);
    });
  });
}

namespace {

constexpr Column kCardColumns[] = {{"PaymentMethodID", Kind::kInt},
                                   {"PaymentMethodName", Kind::kText, 50},
                                   {"CardHolder", Kind::kText, 100},
                                   {"CardLast4", Kind::kText, 4},
                                   {"CCExpiration", Kind::kDate},
                                   {"Priority", Kind::kInt}};

const char* const kCardSelect =
    "SELECT u.payment_method_id, m.name, u.card_holder, u.card_last4, u.cc_expiration, "
    "u.priority FROM user_payment_methods u JOIN payment_methods m ON m.payment_method_id = "
    "u.payment_method_id WHERE u.sys_user_id = :u";

}  // namespace

RecordsetPtr RefUserPaymentMethod::GetDataBySysUserID(const SessionPtr& session,
                                                      int32_t sys_user_id, Variant&) {
  return answer("GetDataBySysUserID", RecordsetPtr(), [&] {
    session_of(session);
    return db().read([&](soci::session& sql) {
      soci::rowset<soci::row> rows =
          (sql.prepare << kCardSelect << " ORDER BY u.priority, u.payment_method_id",
           soci::use(sys_user_id));
      return to_recordset(rows, kCardColumns);
    });
  });
}

RecordsetPtr RefUserPaymentMethod::GetDataBySysUserIDPayMethID(const SessionPtr& session,
                                                               int32_t sys_user_id,
                                                               int32_t payment_method_id,
                                                               Variant&) {
  return answer("GetDataBySysUserIDPayMethID", RecordsetPtr(), [&] {
    session_of(session);
    return db().read([&](soci::session& sql) {
      soci::rowset<soci::row> rows =
          (sql.prepare << kCardSelect << " AND u.payment_method_id = :m",
           soci::use(sys_user_id), soci::use(payment_method_id));
      return to_recordset(rows, kCardColumns);
    });
  });
}

bool RefUserPaymentMethod::Update(const SessionPtr& session, int32_t sys_user_id,
                                  int32_t payment_method_id, const Variant& cc_expiration,
                                  int32_t priority, Variant&) {
  return answer("Update", false, [&] {
    if (session_of(session).SysUserID() != sys_user_id) {
      refuse(Refusal::kNotAllowed, "Only the user may change their payment methods.");
    }
    if (priority < 1) refuse(Refusal::kInvalidArgument, "The priority must be 1 or more.");
    std::string expiration;
    soci::indicator ind = soci::i_null;
    if (!cc_expiration.is_null() && !cc_expiration.is_empty()) {
      expiration = date_text(cc_expiration.to_date());
      ind = soci::i_ok;
    }
    return db().write([&](soci::session& sql) {
      int found = 0;
      sql << "SELECT COUNT(*) FROM user_payment_methods WHERE sys_user_id = :u AND "
             "payment_method_id = :m",
          soci::use(sys_user_id), soci::use(payment_method_id), soci::into(found);
      if (found == 0) {
        refuse(Refusal::kNotFound, "The user has no payment method " +
                                       std::to_string(payment_method_id) + ".");
      }
      sql << "UPDATE user_payment_methods SET cc_expiration = :e, priority = :p WHERE "
             "sys_user_id = :u AND payment_method_id = :m",
          soci::use(expiration, ind), soci::use(priority), soci::use(sys_user_id),
          soci::use(payment_method_id);
      return true;
    });
  });
}

}  // namespace kxui::reference
