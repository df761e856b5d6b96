// The report data sources over receipts, organisations and their people
// ("KxReport03.AR_POReceipts", "KxReport03.AR_POByBorg", "KxReport03.AR_PrivByBorg"),
// and the parameter readers every data source shares.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "kxui/business/report.h"
#include "reference/object_base.h"
#include "reference/soci_include.h"

namespace kxui::reference {

// A parameter given as a date or as date text; nothing when absent, Empty, Null or "".
std::optional<std::string> report_date_param(const std::vector<Variant>& params, size_t i);

// A start date (required) and an end date whose whole day counts, as stored texts.
struct ReportDateRange {
  std::string from, until;
};
ReportDateRange report_date_range(const std::vector<Variant>& params, size_t first);

// The organisation a "by organisation" report covers: the parameter when given, else the
// session's own. A user may report on their own organisation and on those they are a
// member of; any other is refused, an unknown one is not found.
int32_t report_borg(soci::session& sql, const Session& s, const std::vector<Variant>& params,
                    size_t i);

// "AR_POReceipts": every received line of the session's organisation's orders received
// in a date range (FromDate, ToDate), corrections included as negative quantities.
class RefPOReceiptsReport : public business::ReportData, public RefObject {
 public:
  explicit RefPOReceiptsReport(DatabasePtr db) : RefObject(std::move(db), "AR_POReceipts") {}
  RecordsetPtr GetReportData(const SessionPtr& session, const std::vector<Variant>& params,
                             Variant& custom_data) override;
  bool Success() override { return success_; }
};

// "AR_POByBorg": an organisation's orders (BorgID, FromDate, ToDate) per supplier and
// currency: how many, their value before tax and the value received so far.
class RefPOByBorgReport : public business::ReportData, public RefObject {
 public:
  explicit RefPOByBorgReport(DatabasePtr db) : RefObject(std::move(db), "AR_POByBorg") {}
  RecordsetPtr GetReportData(const SessionPtr& session, const std::vector<Variant>& params,
                             Variant& custom_data) override;
  bool Success() override { return success_; }
};

// "AR_PrivByBorg": what each user of an organisation (BorgID) may do: active or not, the
// manager their approvals go to, approval and spending limits in the organisation's
// currency, and who acts for them today under a delegation in force.
class RefPrivByBorgReport : public business::ReportData, public RefObject {
 public:
  explicit RefPrivByBorgReport(DatabasePtr db) : RefObject(std::move(db), "AR_PrivByBorg") {}
  RecordsetPtr GetReportData(const SessionPtr& session, const std::vector<Variant>& params,
                             Variant& custom_data) override;
  bool Success() override { return success_; }
};

}  // namespace kxui::reference
