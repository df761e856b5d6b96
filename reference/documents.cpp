#include "reference/documents.h"

#include "reference/errors.h"
#include "reference/report_sources.h"
#include "reference/rows.h"

namespace kxui::reference {

namespace {

std::string to_hex(const std::string& bytes) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string out;
  out.reserve(bytes.size() * 2);
  for (unsigned char c : bytes) {
    out.push_back(kDigits[c >> 4]);
    out.push_back(kDigits[c & 15]);
  }
  return out;
}

int nibble(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  refuse(Refusal::kDatabaseCorrupt, "A stored attachment is damaged.");
}

std::string from_hex(const std::string& hex) {
  if (hex.size() % 2 != 0) refuse(Refusal::kDatabaseCorrupt, "A stored attachment is damaged.");
  std::string out(hex.size() / 2, '\0');
  for (size_t i = 0; i < out.size(); ++i) {
    out[i] = static_cast<char>(nibble(hex[2 * i]) * 16 + nibble(hex[2 * i + 1]));
  }
  return out;
}

// The owner (and its line) must exist and belong to the caller's organisation: files are
// reached by identifiers a page shows, so knowing one is no permission to read it.
void require_owner(soci::session& sql, AttachmentOwner owner, int32_t id, int32_t line,
                   const Session& s) {
  int borg = 0, lines = 1;
  const bool is_req = owner == AttachmentOwner::kReq || owner == AttachmentOwner::kReqItem;
  if (is_req) {
    sql << "SELECT borg_id FROM requisitions WHERE req_id = :i", soci::use(id), soci::into(borg);
  } else {
    sql << "SELECT r.borg_id FROM purchase_orders p JOIN requisitions r ON r.req_id = p.req_id "
           "WHERE p.po_id = :i",
        soci::use(id), soci::into(borg);
  }
  if (!sql.got_data()) refuse(Refusal::kNotFound, "The document the file belongs to does not exist.");
  if (borg != s.BorgID()) {
    refuse(Refusal::kNotAllowed, "The document the file belongs to is another organisation's.");
  }
  if (owner == AttachmentOwner::kReqItem) {
    sql << "SELECT COUNT(*) FROM req_lines WHERE req_id = :i AND line_num = :l", soci::use(id),
        soci::use(line), soci::into(lines);
  } else if (owner == AttachmentOwner::kPOItem) {
    sql << "SELECT COUNT(*) FROM po_lines WHERE po_id = :i AND line_num = :l", soci::use(id),
        soci::use(line), soci::into(lines);
  }
  if (lines == 0) refuse(Refusal::kNotFound, "The document the file belongs to does not exist.");
}

}  // namespace

RecordsetPtr RefAttachment::GetAttachmentList(const SessionPtr& session, int32_t owner_id,
                                              int32_t line_num, Variant&) {
  return answer("GetAttachmentList", RecordsetPtr(), [&] {
    const Session& s = session_of(session);
    const int32_t line = is_line() ? line_num : 0;
    const int kind = static_cast<int>(owner_);
    static constexpr Column kColumns[] = {{"AttachmentID", Kind::kInt},
                                          {"FileName", Kind::kText, 255},
                                          {"FileSize", Kind::kInt},
                                          {"DateAttached", Kind::kDate}};
    return db().read([&](soci::session& sql) {
      require_owner(sql, owner_, owner_id, line, s);
      soci::rowset<soci::row> rows =
          (sql.prepare << "SELECT attachment_id, file_name, file_size, date_attached FROM "
                          "attachments WHERE owner_kind = :k AND owner_id = :o AND line_num = "
                          ":l ORDER BY attachment_id",
           soci::use(kind), soci::use(owner_id), soci::use(line));
      return to_recordset(rows, kColumns);
    });
  });
}

bool RefAttachment::AddAttachment(const SessionPtr& session, int32_t owner_id, int32_t line_num,
                                  const std::string& file_name, const std::string& content,
                                  int32_t& attachment_id, Variant&) {
  return answer("AddAttachment", false, [&] {
    const Session& s = session_of(session);
    const int32_t user = s.SysUserID();
    if (file_name.empty()) refuse(Refusal::kInvalidArgument, "A file needs a name.");
    const int32_t line = is_line() ? line_num : 0;
    const int kind = static_cast<int>(owner_);
    const std::string hex = to_hex(content);
    const long long size = static_cast<long long>(content.size());
    const std::string now = date_text(db().now());
    attachment_id = db().write([&](soci::session& sql) {
      require_owner(sql, owner_, owner_id, line, s);
      int id = 0;
      sql << "INSERT INTO attachments (owner_kind, owner_id, line_num, file_name, file_size, "
             "content_hex, date_attached, sys_user_id) VALUES (:k, :o, :l, :n, :s, :c, :d, :u) "
             "RETURNING attachment_id",
          soci::use(kind), soci::use(owner_id), soci::use(line), soci::use(file_name),
          soci::use(size), soci::use(hex), soci::use(now), soci::use(user), soci::into(id);
      return id;
    });
    return true;
  });
}

bool RefAttachment::GetAttachment(const SessionPtr& session, int32_t owner_id, int32_t line_num,
                                  int32_t attachment_id, std::string& file_name,
                                  std::string& content, Variant&) {
  return answer("GetAttachment", false, [&] {
    const Session& s = session_of(session);
    const int32_t line = is_line() ? line_num : 0;
    const int kind = static_cast<int>(owner_);
    std::string name, hex;
    const bool found = db().read([&](soci::session& sql) {
      require_owner(sql, owner_, owner_id, line, s);
      sql << "SELECT file_name, content_hex FROM attachments WHERE attachment_id = :a AND "
             "owner_kind = :k AND owner_id = :o AND line_num = :l",
          soci::use(attachment_id), soci::use(kind), soci::use(owner_id), soci::use(line),
          soci::into(name), soci::into(hex);
      return sql.got_data();
    });
    if (!found) refuse(Refusal::kNotFound, "The document has no such file.");
    content = from_hex(hex);
    file_name = std::move(name);
    return true;
  });
}

bool RefAttachment::DeleteAttachment(const SessionPtr& session, int32_t owner_id,
                                     int32_t line_num, int32_t attachment_id, Variant&) {
  return answer("DeleteAttachment", false, [&] {
    const Session& s = session_of(session);
    const int32_t line = is_line() ? line_num : 0;
    const int kind = static_cast<int>(owner_);
    return db().write([&](soci::session& sql) {
      require_owner(sql, owner_, owner_id, line, s);
      int found = 0;
      sql << "SELECT COUNT(*) FROM attachments WHERE attachment_id = :a AND owner_kind = :k AND "
             "owner_id = :o AND line_num = :l",
          soci::use(attachment_id), soci::use(kind), soci::use(owner_id), soci::use(line),
          soci::into(found);
      if (found == 0) refuse(Refusal::kNotFound, "The document has no such file.");
      sql << "DELETE FROM attachments WHERE attachment_id = :a", soci::use(attachment_id);
      return true;
    });
  });
}

RecordsetPtr RefReport::GetReportList(const SessionPtr& session, Variant&) {
  return answer("GetReportList", RecordsetPtr(), [&] {
    session_of(session);
    static constexpr Column kColumns[] = {{"ReportID", Kind::kInt},
                                          {"ReportName", Kind::kText, 100},
                                          {"ReportClass", Kind::kText, 50}};
    return db().read([&](soci::session& sql) {
      soci::rowset<soci::row> rows =
          (sql.prepare << "SELECT report_id, name, class_name FROM reports ORDER BY name");
      return to_recordset(rows, kColumns);
    });
  });
}

bool RefReport::Load(const SessionPtr& session, int32_t report_id, Variant&) {
  return answer("Load", false, [&] {
    session_of(session);
    std::string name, report_class;
    const bool found = db().read([&](soci::session& sql) {
      sql << "SELECT name, class_name FROM reports WHERE report_id = :r", soci::use(report_id),
          soci::into(name), soci::into(report_class);
      return sql.got_data();
    });
    if (!found) refuse(Refusal::kNotFound, "Report " + std::to_string(report_id) + " does not exist.");
    name_ = std::move(name);
    class_ = std::move(report_class);
    return true;
  });
}

RecordsetPtr RefReportParam::GetReportParams(const SessionPtr& session, int32_t report_id,
                                             Variant&) {
  return answer("GetReportParams", RecordsetPtr(), [&] {
    session_of(session);
    static constexpr Column kColumns[] = {{"ParamName", Kind::kText, 50},
                                          {"Required", Kind::kBool},
                                          {"DefaultValue", Kind::kText, 100}};
    return db().read([&](soci::session& sql) {
      soci::rowset<soci::row> rows =
          (sql.prepare << "SELECT name, required, default_value FROM report_params WHERE "
                          "report_id = :r ORDER BY seq_num",
           soci::use(report_id));
      return to_recordset(rows, kColumns);
    });
  });
}


RecordsetPtr RefReqReport::GetReportData(const SessionPtr& session,
                                         const std::vector<Variant>& params, Variant&) {
  return answer("GetReportData", RecordsetPtr(), [&] {
    const int32_t borg = session_of(session).BorgID();
    const bool any_status = params.empty() || params[0].is_null() || params[0].is_empty() ||
                            (params[0].is_string() && params[0].get_string().empty());
    const int32_t status = any_status ? 0 : params[0].to_int32();
    const int all = any_status ? 1 : 0;
    static constexpr Column kColumns[] = {
        {"ReqID", Kind::kInt},          {"ReqName", Kind::kText, 100},
        {"StatusID", Kind::kInt},       {"Requisitioner", Kind::kText, 100},
        {"CreateDate", Kind::kDate},    {"CurrencyCode", Kind::kText, 3},
        {"LineCount", Kind::kInt},      {"Total", Kind::kMoney}};
    return db().read([&](soci::session& sql) {
      soci::rowset<soci::row> rows =
          (sql.prepare << "SELECT r.req_id, r.req_name, r.status_id, u.full_name, r.create_date, "
                          "r.currency_code, COUNT(l.line_num), "
                          "CAST(COALESCE(SUM(ROUND(l.qty * l.unit_price)), 0) AS BIGINT) "
                          "FROM requisitions r JOIN users u ON u.sys_user_id = r.requisitioner_id "
                          "LEFT JOIN req_lines l ON l.req_id = r.req_id WHERE r.borg_id = :b AND "
                          "(:all = 1 OR r.status_id = :s) GROUP BY r.req_id, r.req_name, "
                          "r.status_id, u.full_name, r.create_date, r.currency_code "
                          "ORDER BY r.req_id",
           soci::use(borg), soci::use(all), soci::use(status));
      return to_recordset(rows, kColumns);
    });
  });
}


RecordsetPtr RefPOByCommodityReport::GetReportData(const SessionPtr& session,
                                                   const std::vector<Variant>& params, Variant&) {
  return answer("GetReportData", RecordsetPtr(), [&] {
    const int32_t borg = session_of(session).BorgID();
    const ReportDateRange range = report_date_range(params, 0);
    static constexpr Column kColumns[] = {{"Commodity", Kind::kText, 100},
                                          {"CurrencyCode", Kind::kText, 3},
                                          {"OrderCount", Kind::kInt},
                                          {"Total", Kind::kMoney}};
    return db().read([&](soci::session& sql) {
      soci::rowset<soci::row> rows =
          (sql.prepare << "SELECT COALESCE(c.name, 'Unknown'), p.currency_code, "
                          "COUNT(DISTINCT p.po_id), CAST(SUM(ROUND(l.qty * l.unit_price)) AS "
                          "BIGINT) FROM purchase_orders p JOIN requisitions r ON r.req_id = "
                          "p.req_id JOIN po_lines l ON l.po_id = p.po_id LEFT JOIN parts pt ON "
                          "pt.part_id = l.part_id LEFT JOIN commodities c ON c.commodity_id = "
                          "pt.commodity_id WHERE r.borg_id = :b AND p.create_date >= :f AND "
                          "p.create_date <= :t GROUP BY COALESCE(c.name, 'Unknown'), "
                          "p.currency_code ORDER BY 1, 2",
           soci::use(borg), soci::use(range.from), soci::use(range.until));
      return to_recordset(rows, kColumns);
    });
  });
}

RecordsetPtr RefPOReport::GetReportData(const SessionPtr& session,
                                        const std::vector<Variant>& params, Variant&) {
  return answer("GetReportData", RecordsetPtr(), [&] {
    const int32_t borg = session_of(session).BorgID();
    const ReportDateRange range = report_date_range(params, 0);
    const std::string& from = range.from;
    const std::string& until = range.until;
    static constexpr Column kColumns[] = {
        {"POID", Kind::kInt},          {"ReqID", Kind::kInt},
        {"SupplierName", Kind::kText, 100}, {"StatusID", Kind::kInt},
        {"CreateDate", Kind::kDate},   {"CurrencyCode", Kind::kText, 3},
        {"Total", Kind::kMoney}};
    return db().read([&](soci::session& sql) {
      soci::rowset<soci::row> rows =
          (sql.prepare << "SELECT p.po_id, p.req_id, p.supplier_name, p.status_id, "
                          "p.create_date, p.currency_code, "
                          "CAST(COALESCE(SUM(ROUND(l.qty * l.unit_price)), 0) AS BIGINT) "
                          "FROM purchase_orders p JOIN requisitions r ON r.req_id = p.req_id "
                          "LEFT JOIN po_lines l ON l.po_id = p.po_id WHERE r.borg_id = :b AND "
                          "p.create_date >= :f AND p.create_date <= :t GROUP BY p.po_id, "
                          "p.req_id, p.supplier_name, p.status_id, p.create_date, "
                          "p.currency_code ORDER BY p.po_id",
           soci::use(borg), soci::use(from), soci::use(until));
      return to_recordset(rows, kColumns);
    });
  });
}

}  // namespace kxui::reference
