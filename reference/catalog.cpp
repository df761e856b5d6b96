#include "reference/catalog.h"

#include <algorithm>
#include <cctype>

#include "kxui/frame/text.h"
#include "reference/errors.h"
#include "reference/req_store.h"
#include "reference/rows.h"

namespace kxui::reference {

namespace {

std::string lower(std::string_view s) { return kxui::text::lower_ascii(s); }

constexpr Column kPartColumns[] = {
    {"PartID", Kind::kInt},
    {"SupplierID", Kind::kInt},
    {"SupplierName", Kind::kText, 100},
    {"SupplierPartNum", Kind::kText, 50},
    {"SupplierPartNumExt", Kind::kText, 50},
    {"MfrName", Kind::kText, 100},
    {"MfrPartNum", Kind::kText, 50},
    {"Description", Kind::kText, 255},
    {"LongDesc", Kind::kText, 2000},
    {"CommodityID", Kind::kInt},
    {"CommodityName", Kind::kText, 100},
    {"UOMID", Kind::kText, 10},
    {"UnitPrice", Kind::kMoney},
    {"CurrencyCode", Kind::kText, 3},
    {"LeadDays", Kind::kInt}};
constexpr int32_t kPriceColumn = 12, kCurrencyColumn = 13;

const char* const kPartSelect =
    "SELECT p.part_id, p.supplier_id, s.name, p.supplier_part_num, p.supplier_part_num_ext, "
    "COALESCE(m.name, ''), p.mfr_part_num, COALESCE(t.description, p.description), p.long_desc, "
    "p.commodity_id, c.name, p.uom_id, p.unit_price, p.currency_code, p.lead_days "
    "FROM parts p JOIN suppliers s ON s.supplier_id = p.supplier_id "
    "LEFT JOIN manufacturers m ON m.mfr_id = p.mfr_id "
    "JOIN commodities c ON c.commodity_id = p.commodity_id "
    "LEFT JOIN part_texts t ON t.part_id = p.part_id AND t.lang_code = :lang ";

// Prices shown in `currency` ("" keeps each part's own) at today's rates.
RecordsetPtr priced(soci::session& sql, Database& db, soci::rowset<soci::row>& rows,
                    const std::string& currency) {
  RecordsetPtr rs = make_recordset(kPartColumns);
  const Date today = db.now();
  for (const soci::row& row : rows) {
    append_row(*rs, kPartColumns, row, [&](Recordset& r) {
      const std::string own = r.value(kCurrencyColumn).to_string();
      if (currency.empty() || currency == own) return;
      const double price = r.value(kPriceColumn).to_currency().to_double();
      r.set_value(kPriceColumn,
                  Variant(Currency::from_double(convert_currency(sql, price, own, currency, today))));
      r.set_value(kCurrencyColumn, Variant(currency));
    });
  }
  if (rs->RecordCount() > 0) rs->MoveFirst();
  return rs;
}

std::string pattern(const std::string& text, int32_t search_type) {
  switch (search_type) {
    case 0: return "%" + lower(text) + "%";
    case 1: return lower(text) + "%";
    case 2: return lower(text);
    default:
      refuse(Refusal::kInvalidArgument, "Search type " + std::to_string(search_type) + " is not known.");
  }
}

const char* order_by(int32_t sort_order) {
  switch (sort_order) {
    case 0: return " ORDER BY 8, p.part_id";
    case 1: return " ORDER BY p.supplier_part_num, p.part_id";
    case 2: return " ORDER BY s.name, p.part_id";
    case 3: return " ORDER BY 6, p.part_id";
    default:
      refuse(Refusal::kInvalidArgument, "Sort order " + std::to_string(sort_order) + " is not known.");
  }
}

}  // namespace

RecordsetPtr RefPartSearch::LoadPartDetail(const SessionPtr& session, int32_t part_id,
                                           const std::string&, const std::string&,
                                           const std::string& currency_code,
                                           const std::string& lang_code, int32_t, int32_t,
                                           int32_t, Variant&) {
  return answer("LoadPartDetail", RecordsetPtr(), [&] {
    session_of(session);
    return db().read([&](soci::session& sql) {
      soci::rowset<soci::row> rows =
          (sql.prepare << std::string(kPartSelect) + "WHERE p.part_id = :id", soci::use(lang_code),
           soci::use(part_id));
      RecordsetPtr rs = priced(sql, db(), rows, currency_code);
      if (rs->RecordCount() == 0) {
        refuse(Refusal::kNotFound, "Part " + std::to_string(part_id) + " is not in the catalog.");
      }
      return rs;
    });
  });
}

RecordsetPtr RefPartSearch::LoadPartViews(const SessionPtr& session, int32_t part_id,
                                          const std::string& lang_code, int32_t, int32_t,
                                          Variant&) {
  return answer("LoadPartViews", RecordsetPtr(), [&] {
    session_of(session);
    return db().read([&](soci::session& sql) {
      soci::rowset<soci::row> rows =
          (sql.prepare << std::string(kPartSelect) +
                              "JOIN parts o ON o.part_id = :id AND o.mfr_id = p.mfr_id AND "
                              "o.mfr_part_num = p.mfr_part_num AND o.mfr_part_num <> '' "
                              "WHERE p.part_id <> :id2 ORDER BY s.name, p.part_id",
           soci::use(lang_code), soci::use(part_id), soci::use(part_id));
      return priced(sql, db(), rows, "");
    });
  });
}

RecordsetPtr RefPartSearch::SearchParts(
    const SessionPtr& session, const std::string& keyword_search, bool search_long_desc,
    int32_t part_num_type, const std::string& part_num, const std::string& part_num_ext,
    const std::string& supplier_name, int32_t supplier_id, const std::string& manufacturer_name,
    int32_t commodity_id, bool commodity_subtrees, const std::string& search_currency1,
    const std::string& search_currency2, const std::string& display_currency,
    const std::string& lang_code, const std::string& uom, int32_t, int32_t, int32_t sort_order,
    int32_t search_type, int32_t, Variant&) {
  record_count_ = 0;
  auto rs = answer("SearchParts", RecordsetPtr(), [&] {
    session_of(session);
    if (part_num_type < 0 || part_num_type > 2) {
      refuse(Refusal::kInvalidArgument,
             "Part number type " + std::to_string(part_num_type) + " is not known.");
    }
    const std::string kw = keyword_search.empty() ? "" : pattern(keyword_search, search_type);
    const std::string pn = part_num.empty() ? "" : pattern(part_num, search_type);
    const std::string sn = supplier_name.empty() ? "" : pattern(supplier_name, 0);
    const std::string mn = manufacturer_name.empty() ? "" : pattern(manufacturer_name, 0);
    const int long_desc = search_long_desc ? 1 : 0, subtrees = commodity_subtrees ? 1 : 0;
    const std::string query =
        "WITH RECURSIVE sub(id) AS (SELECT commodity_id FROM commodities WHERE commodity_id = :c "
        "UNION ALL SELECT k.commodity_id FROM commodities k JOIN sub ON k.parent_id = sub.id "
        "WHERE :subtrees = 1) " +
        std::string(kPartSelect) +
        "WHERE (:kw = '' OR LOWER(COALESCE(t.description, p.description)) LIKE :kw2 OR "
        "(:ld = 1 AND LOWER(p.long_desc) LIKE :kw3)) "
        "AND (:pn = '' OR (:pt <> 2 AND LOWER(p.supplier_part_num) LIKE :pn2) OR "
        "(:pt2 <> 1 AND LOWER(p.mfr_part_num) LIKE :pn3)) "
        "AND (:px = '' OR p.supplier_part_num_ext = :px2) "
        "AND (:sn = '' OR LOWER(s.name) LIKE :sn2) AND (:sid = 0 OR p.supplier_id = :sid2) "
        "AND (:mn = '' OR LOWER(m.name) LIKE :mn2) "
        "AND (:cid = 0 OR p.commodity_id IN (SELECT id FROM sub)) "
        "AND ((:c1 = '' AND :c2 = '') OR p.currency_code IN (:c1b, :c2b)) "
        "AND (:uom = '' OR p.uom_id = :uom2)" +
        order_by(sort_order);
    last_query_ = query;
    if (debug_) {
      last_query_ += " -- keyword '" + kw + "', part number '" + pn + "', supplier '" + sn +
                     "' #" + std::to_string(supplier_id) + ", manufacturer '" + mn +
                     "', commodity " + std::to_string(commodity_id) + ", currencies '" +
                     search_currency1 + "' '" + search_currency2 + "', unit '" + uom + "'";
    }
    return db().read([&](soci::session& sql) {
      soci::rowset<soci::row> rows =
          (sql.prepare << query, soci::use(commodity_id), soci::use(subtrees),
           soci::use(lang_code), soci::use(kw), soci::use(kw), soci::use(long_desc),
           soci::use(kw), soci::use(pn), soci::use(part_num_type), soci::use(pn),
           soci::use(part_num_type), soci::use(pn), soci::use(part_num_ext),
           soci::use(part_num_ext), soci::use(sn), soci::use(sn), soci::use(supplier_id),
           soci::use(supplier_id), soci::use(mn), soci::use(mn), soci::use(commodity_id),
           soci::use(search_currency1), soci::use(search_currency2), soci::use(search_currency1),
           soci::use(search_currency2), soci::use(uom), soci::use(uom));
      return priced(sql, db(), rows, display_currency);
    });
  });
  if (rs) record_count_ = rs->RecordCount();
  return rs;
}

RecordsetPtr RefCommodity::GetChildren(const SessionPtr& session, int32_t parent_id, int32_t,
                                       int32_t, bool check_commodity_filter,
                                       bool always_return_unknown, int32_t, Variant&) {
  record_count_ = 0;
  auto rs = answer("GetChildren", RecordsetPtr(), [&] {
    const Session& s = session_of(session);
    static constexpr Column kColumns[] = {{"CommodityID", Kind::kInt},
                                          {"ParentID", Kind::kInt},
                                          {"Code", Kind::kText, 20},
                                          {"Name", Kind::kText, 100},
                                          {"HasChildren", Kind::kBool}};
    const int user = s.SysUserID(), check = check_commodity_filter ? 1 : 0;
    return db().read([&](soci::session& sql) {
      // below: the permitted subtrees; above: the paths down to them.
      soci::rowset<soci::row> rows =
          (sql.prepare
               << "WITH RECURSIVE below(id) AS (SELECT commodity_id FROM user_commodities WHERE "
                  "sys_user_id = :u UNION SELECT k.commodity_id FROM commodities k JOIN below b "
                  "ON k.parent_id = b.id), above(id) AS (SELECT commodity_id FROM "
                  "user_commodities WHERE sys_user_id = :u2 UNION SELECT k.parent_id FROM "
                  "commodities k JOIN above a ON k.commodity_id = a.id WHERE k.parent_id IS NOT "
                  "NULL) SELECT c.commodity_id, c.parent_id, c.code, c.name, CASE WHEN EXISTS "
                  "(SELECT 1 FROM commodities k WHERE k.parent_id = c.commodity_id) THEN 1 ELSE "
                  "0 END FROM commodities c WHERE ((:p = 0 AND c.parent_id IS NULL) OR "
                  "c.parent_id = :p2) AND (:chk = 0 OR NOT EXISTS (SELECT 1 FROM "
                  "user_commodities f WHERE f.sys_user_id = :u3) OR c.commodity_id IN (SELECT "
                  "id FROM below) OR c.commodity_id IN (SELECT id FROM above)) ORDER BY c.name",
           soci::use(user), soci::use(user), soci::use(parent_id), soci::use(parent_id),
           soci::use(check), soci::use(user));
      RecordsetPtr result = to_recordset(rows, kColumns);
      if (always_return_unknown) {
        result->AddNew();
        result->set_value(0, Variant(int32_t{0}));
        result->set_value(1, Variant(parent_id));
        result->set_value(2, Variant(std::string("UNKNOWN")));
        result->set_value(3, Variant(std::string("Unknown")));
        result->set_value(4, Variant(false));
        result->Update();
        result->MoveFirst();
      }
      return result;
    });
  });
  if (rs) record_count_ = rs->RecordCount();
  return rs;
}

RecordsetPtr RefCommodity::GetCommodityPath(const SessionPtr& session, int32_t commodity_id,
                                            int32_t, int32_t, Variant&) {
  record_count_ = 0;
  auto rs = answer("GetCommodityPath", RecordsetPtr(), [&] {
    session_of(session);
    static constexpr Column kColumns[] = {{"CommodityID", Kind::kInt},
                                          {"ParentID", Kind::kInt},
                                          {"Code", Kind::kText, 20},
                                          {"Name", Kind::kText, 100},
                                          {"Level", Kind::kInt}};
    return db().read([&](soci::session& sql) {
      soci::rowset<soci::row> rows =
          (sql.prepare << "WITH RECURSIVE path(id, depth) AS (SELECT CAST(:c AS INTEGER), 0 UNION ALL SELECT "
                          "k.parent_id, p.depth + 1 FROM commodities k JOIN path p ON "
                          "k.commodity_id = p.id WHERE k.parent_id IS NOT NULL) SELECT "
                          "c.commodity_id, c.parent_id, c.code, c.name, (SELECT MAX(depth) FROM "
                          "path) - p.depth FROM path p JOIN commodities c ON c.commodity_id = "
                          "p.id ORDER BY p.depth DESC",
           soci::use(commodity_id));
      RecordsetPtr result = to_recordset(rows, kColumns);
      if (result->RecordCount() == 0) {
        refuse(Refusal::kNotFound, "Commodity " + std::to_string(commodity_id) + " does not exist.");
      }
      return result;
    });
  });
  if (rs) record_count_ = rs->RecordCount();
  return rs;
}

}  // namespace kxui::reference
