// Preferences: the locale, time zone and currency every date and amount is shown in.
#include "apps/portal/portal.h"

namespace portal {

using kxui::RecordsetPtr;
using kxui::Variant;

namespace {

// A select of a list's rows; the values and texts are escaped here.
std::string select(const char* name, const char* label, kxui::Recordset* rs, const char* value_col,
                   const char* text_col, int32_t selected) {
  std::string out = "<div class=\"row\"><label for=\"" + std::string(name) + "\">" + label +
                    "</label><select id=\"" + name + "\" name=\"" + name + "\">";
  if (rs && rs->RecordCount() > 0) {
    for (rs->MoveFirst(); !rs->IsEOF(); rs->MoveNext()) {
      const int32_t v = field_int(*rs, value_col);
      out += "<option value=\"" + std::to_string(v) + "\"" + (v == selected ? " selected" : "") +
             ">" + esc(field(*rs, text_col)) + "</option>";
    }
  }
  return out + "</select></div>";
}

void prefs_page(Ctx& c, const std::string& error = "", int status = 200) {
  auto com = c.hub().Com();
  const auto s = c.session();
  RecordsetPtr locales, zones;
  std::string currencies;
  com->GetLocaleList(s, locales);
  com->GetTimeZoneList(s, zones);
  // Built by the library without escaping, from the currency table of the reference data.
  com->GetCurrencyList2(s, currencies, s->CurrencyCode());
  std::string date;
  com->GetHomeDate(s, date);
  std::string body = "<form method=\"post\" action=\"/prefs\" class=\"card\">" + csrf_field(c.csrf()) +
                     select("locale", "Language and formats", locales.get(), "LocaleID",
                            "Description", s->LocaleID()) +
                     select("zone", "Time zone", zones.get(), "TimeZoneID", "Description",
                            s->TimeZoneID()) +
                     "<div class=\"row\"><label for=\"currency\">Currency</label><select "
                     "id=\"currency\" name=\"currency\">" + currencies + "</select></div>"
                     "<div class=\"row\"><button id=\"saveprefs\">Save</button></div></form>"
                     "<p class=\"muted\">Today is shown as <b id=\"prefdate\">" + esc(date) + "</b>.</p>";
  c.render("Preferences", body, "", error, status);
}

void save_prefs(Ctx& c) {
  auto com = c.hub().Com();
  const auto s = c.session();
  SessionRow row = c.user.row;
  row.locale_id = c.int_param("locale", row.locale_id);
  row.time_zone_id = c.int_param("zone", row.time_zone_id);
  // Only a currency the reference data offers is taken.
  RecordsetPtr currencies = com->GetCurrencyList(s);
  const std::string wanted = c.param("currency");
  bool known = false;
  if (currencies && currencies->RecordCount() > 0) {
    for (currencies->MoveFirst(); !currencies->IsEOF(); currencies->MoveNext()) {
      known = known || field(*currencies, "CurrencyCode") == wanted;
    }
  }
  if (!known) return prefs_page(c, "\"" + wanted + "\" is not a currency this system offers.", 422);
  auto borg_user = std::make_shared<kxui::Recordset>();
  Variant holder(borg_user);
  if (!com->GetBorgUser(s, holder)) return prefs_page(c, failure_text(*com), 422);
  borg_user->MoveFirst();
  int32_t bill = field_int(*borg_user, "BillToID"), ship = field_int(*borg_user, "ShipToID"),
          cost = field_int(*borg_user, "CostCenterID");
  if (!com->SetUserPreferences(s, bill, ship, cost, row.time_zone_id, row.locale_id)) {
    return prefs_page(c, failure_text(*com), 422);
  }
  row.currency_code = wanted;
  c.portal.store().update_preferences(c.user.sid, row);
  c.portal.apply_row(c.user, row);
  c.redirect("/prefs", "Preferences saved.");
}

}  // namespace

void Portal::mount_account(httplib::Server& s) {
  get(s, "/prefs", [](Ctx& c) { prefs_page(c); });
  post(s, "/prefs", save_prefs);
}

}  // namespace portal
