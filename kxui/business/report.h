// "KxReport03.Report", "KxReport03.ReportParam" and the report data sources
// "KxReport03.AR_PO", "KxReport03.AR_POByBorg", "KxReport03.AR_POByCommodity",
// "KxReport03.AR_POReceipts", "KxReport03.AR_PrivByBorg", "KxReport03.AR_Req".
//
// A report is a row of the report catalogue: a name, the class of the data source that
// produces its rows (the ProgID's class part, e.g. "AR_PO") and its parameters. Which
// reports a user may run is the business tier's rule, applied by GetReportList and Load.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "kxui/business/business_object.h"
#include "kxui/frame/recordset.h"
#include "kxui/frame/session.h"
#include "kxui/frame/variant.h"

namespace kxui::business {

class Report : public virtual BusinessObject {
 public:
  // The reports the session's user may run, with at least "ReportID" and "ReportName".
  // Answers through Success().
  virtual RecordsetPtr GetReportList(const SessionPtr& session, Variant& custom_data) = 0;
  // Selects a report; False when it is unknown or the user may not run it.
  virtual bool Load(const SessionPtr& session, int32_t report_id, Variant& custom_data) = 0;
  // Of the loaded report.
  virtual std::string ReportName() = 0;
  virtual std::string ReportClass() = 0;
  virtual bool Success() = 0;
};

class ReportParam : public virtual BusinessObject {
 public:
  // The parameters of a report in the order its data source takes them, one row each,
  // with at least "ParamName", "Required" (Boolean) and "DefaultValue" (Null for none).
  // Answers through Success().
  virtual RecordsetPtr GetReportParams(const SessionPtr& session, int32_t report_id,
                                       Variant& custom_data) = 0;
  virtual bool Success() = 0;
};

// One data source ("KxReport03.AR_*").
class ReportData : public virtual BusinessObject {
 public:
  // The rows of the report for `params` (one value per parameter, in order). Answers
  // through Success().
  virtual RecordsetPtr GetReportData(const SessionPtr& session, const std::vector<Variant>& params,
                                     Variant& custom_data) = 0;
  virtual bool Success() = 0;
};

}  // namespace kxui::business
