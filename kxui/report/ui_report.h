// UIReport: the reports a user may run, their parameters, and report files.
//
// Business objects, created through the ClassFactory once per call and released before
// the call returns: "KxReport03.Report" (the catalogue and who may run what),
// "KxReport03.ReportParam" (a report's parameters) and the data source a report names,
// one of "KxReport03.AR_PO", "KxReport03.AR_POByBorg", "KxReport03.AR_POByCommodity",
// "KxReport03.AR_POReceipts", "KxReport03.AR_PrivByBorg", "KxReport03.AR_Req".
//
// On failure an operation records the error under "UIReport::<operation>" and returns
// False or Nothing; in/out arguments are written only on success. A business object that
// answers False (or whose Success reads False) has its own error recorded. The class has
// no Success property.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "kxui/frame/byref.h"
#include "kxui/frame/facade.h"
#include "kxui/frame/messages.h"
#include "kxui/frame/recordset.h"

namespace kxui {

namespace msg {
inline constexpr Message kUnsupportedReportFormat{
    11660, "Unsupported report format. The format must be CSV."};
inline constexpr Message kReportParamRequired{11661, "A required report parameter has no value."};
}  // namespace msg

class UIReport : public Facade {
 public:
  explicit UIReport(std::shared_ptr<Runtime> runtime = Runtime::process());

  // One page of the reports the user may run: the catalogue's columns and the five
  // paging columns. Page 0 is the first page; a page past the end or a negative page
  // gives the last. Nothing on failure.
  RecordsetPtr GetReportListPage(const SessionPtr& p_Session, int32_t p_lPage,
                                 ByRef<Variant> p_CustomData = {}) noexcept;

  // The parameters of a report, one row each in the order GenerateReport takes their
  // values, as the business tier gives them. Nothing on failure.
  RecordsetPtr GetReportParamsRs(const SessionPtr& p_Session, int32_t p_lReportID,
                                 ByRef<Variant> p_CustomData = {}) noexcept;

  // Runs a report the user may run and returns it as a file. p_sFormat must be "CSV"
  // (any case; message 11660, checked first). p_Params holds one value per parameter
  // in order (an array; omitted or Empty for none); a missing trailing value, or a
  // Missing one, takes the parameter's default, and a required parameter whose value is
  // then Null, Empty or blank text fails with message 11661; more values than
  // parameters fail with error 5. A report whose data-source class is not one of the
  // six above fails with error 429, so a catalogue row can never make this class create
  // an arbitrary object. True with the file text in p_ReportFile (the CSV of
  // report/detail/csv.h: a header line, then one line per row, "\r\n" endings) and a
  // download name made of the report's name in p_sFileName.
  bool GenerateReport(const SessionPtr& p_Session, int32_t p_lReportID, const Variant& p_Params,
                      const std::string& p_sFormat, ByRef<Variant> p_sFileName,
                      ByRef<Variant> p_ReportFile, ByRef<Variant> p_CustomData = {}) noexcept;
};

}  // namespace kxui
