#include "reference/services.h"

#include "kxui/lang/detail/lang_facade.h"
#include "reference/errors.h"
#include "reference/req_store.h"
#include "reference/rows.h"

namespace kxui::reference {

std::string RefResource::LoadString(int16_t string_id, const std::string& default_string,
                                    const Array& args) {
  return answer_or_throw("LoadString", [&] {
    const int id = string_id;
    std::string text;
    const bool found = db().read([&](soci::session& sql) {
      sql << "SELECT text FROM resources WHERE locale_name = :l AND string_id = :i",
          soci::use(locale_), soci::use(id), soci::into(text);
      return sql.got_data();
    });
    return detail::fill_placeholders(found ? text : default_string, Variant(args));
  });
}

Variant RefUtils::GetServerDate(const SessionPtr& session, Variant&) {
  return answer("GetServerDate", Variant::null(), [&] {
    session_of(session);
    return Variant(db().now());
  });
}

bool RefUtils::ConvertCurrency(const SessionPtr& session, double amount,
                               const std::string& from_currency, const std::string& to_currency,
                               const Variant& at_date, double& converted, Variant&) {
  return answer("ConvertCurrency", false, [&] {
    session_of(session);
    const Date at = at_date.is_empty() || at_date.is_missing() ? db().now() : at_date.to_date();
    converted = db().read([&](soci::session& sql) {
      return convert_currency(sql, amount, from_currency, to_currency, at);
    });
    return true;
  });
}

bool RefPurchaseOrder::ReleaseSessionLocks(const SessionPtr& session, Variant&) {
  return answer("ReleaseSessionLocks", false, [&] {
    const Session& s = session_of(session);
    db().write([&](soci::session& sql) { release_locks(sql, "po_locks", s); });
    return true;
  });
}

bool TableAppIni::ReadValue(const SessionPtr&, const std::string& name,
                            const std::string& section, const std::string& app_name, Variant&) {
  return answer("ReadValue", false, [&] {
    std::string value;
    const bool found = db().read([&](soci::session& sql) {
      sql << "SELECT value FROM settings WHERE LOWER(app_name) = LOWER(:a) AND "
             "LOWER(section) = LOWER(:s) AND LOWER(name) = LOWER(:n)",
          soci::use(app_name), soci::use(section), soci::use(name), soci::into(value);
      return sql.got_data();
    });
    if (!found) {
      throw Failure(kSettingNotFound, "KxUtility03.AppIni",
                    "Setting \"" + name + "\" of section [" + section + "] of application " +
                        app_name + " is not set");
    }
    value_ = std::move(value);
    return true;
  });
}

RecordsetPtr TableAppIni::GetSettingsList(const SessionPtr&, Variant&) {
  return answer("GetSettingsList", RecordsetPtr(), [&] {
    static constexpr Column kColumns[] = {{"application", Kind::kText, 50},
                                          {"section", Kind::kText, 50},
                                          {"name", Kind::kText, 50},
                                          {"value", Kind::kText, 2000}};
    return db().read([&](soci::session& sql) {
      soci::rowset<soci::row> rows =
          (sql.prepare << "SELECT app_name, section, name, value FROM settings "
                          "ORDER BY app_name, section, name");
      return to_recordset(rows, kColumns);
    });
  });
}

void put_setting(Database& db, const std::string& app_name, const std::string& section,
                 const std::string& name, const std::string& value) {
  db.write([&](soci::session& sql) {
    // Names compare without case, so a setting written in other case replaces the old.
    sql << "DELETE FROM settings WHERE LOWER(app_name) = LOWER(:a) AND LOWER(section) = "
           "LOWER(:s) AND LOWER(name) = LOWER(:n)",
        soci::use(app_name), soci::use(section), soci::use(name);
    sql << "INSERT INTO settings (app_name, section, name, value) VALUES (:a, :s, :n, :v)",
        soci::use(app_name), soci::use(section), soci::use(name), soci::use(value);
  });
}

void TableLog::SetEventType(int32_t type) {
  if (type != 1 && type != 2 && type != 4) {
    fail(err::kInvalidProcedureCall, "KxUtility03.NTLog",
         "event type " + std::to_string(type) + " is not 1, 2 or 4");
  }
  type_ = type;
}

void TableLog::WriteEntry() {
  try {
    const std::string now = date_text(db_->now());
    db_->write([&](soci::session& sql) {
      sql << "INSERT INTO event_log (logged, event_type, message) VALUES (:d, :t, :m)",
          soci::use(now), soci::use(type_), soci::use(message_);
    });
  } catch (...) {
    // A log that cannot be written must not turn the caller's report into a failure.
  }
}

}  // namespace kxui::reference
