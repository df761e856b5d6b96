// UIReport: the report catalogue, report parameters and CSV report files.
#include "kxui/report/ui_report.h"

#include <optional>
#include <string_view>
#include <vector>

#include "kxui/business/progids.h"
#include "kxui/business/report.h"
#include "kxui/frame/display.h"
#include "kxui/frame/settings.h"
#include "kxui/report/detail/csv.h"

namespace kxui {

namespace {

// The report lists show no dates, so the date style is never used.
constexpr int32_t kNoDateStyle = 2;

// The data sources a catalogue row may name, by class.
std::optional<std::string_view> data_source_progid(const std::string& report_class) {
  for (std::string_view id : {progid::AR_PO, progid::AR_POByBorg, progid::AR_POByCommodity,
                              progid::AR_POReceipts, progid::AR_PrivByBorg, progid::AR_Req}) {
    if (id.substr(id.find('.') + 1) == report_class) return id;
  }
  return std::nullopt;
}

bool is_csv(const std::string& format) {
  return format.size() == 3 && (format[0] | 0x20) == 'c' && (format[1] | 0x20) == 's' &&
         (format[2] | 0x20) == 'v';
}

std::vector<Variant> array_values(const Variant& v) {
  if (v.is_missing() || v.is_empty()) return {};
  if (!v.is_array() || v.array().dims() != 1) fail(err::kTypeMismatch);
  return v.array().values();
}

bool is_blank(const Variant& v) {
  if (v.is_null() || v.is_empty() || v.is_missing()) return true;
  return v.is_string() && conv::trim(v.get_string()).empty();
}

}  // namespace

UIReport::UIReport(std::shared_ptr<Runtime> runtime) : Facade("UIReport", std::move(runtime)) {}

RecordsetPtr UIReport::GetReportListPage(const SessionPtr& p_Session, int32_t p_lPage,
                                         ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIReport::GetReportListPage", RecordsetPtr(), [&] {
    auto report = create<business::Report>(progid::Report);
    RecordsetPtr list = report->GetReportList(p_Session, *p_CustomData);
    check(report, report->Success());
    Recordset& source = require(list);
    auto ini = create<AppIni>(progid::AppIni);
    return display_list_page(runtime(), *ini, p_Session, *p_CustomData, source, p_lPage,
                             kNoDateStyle, {});
  });
}

RecordsetPtr UIReport::GetReportParamsRs(const SessionPtr& p_Session, int32_t p_lReportID,
                                         ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIReport::GetReportParamsRs", RecordsetPtr(), [&] {
    auto params = create<business::ReportParam>(progid::ReportParam);
    RecordsetPtr list = params->GetReportParams(p_Session, p_lReportID, *p_CustomData);
    check(params, params->Success());
    require(list);
    return list;
  });
}

bool UIReport::GenerateReport(const SessionPtr& p_Session, int32_t p_lReportID,
                              const Variant& p_Params, const std::string& p_sFormat,
                              ByRef<Variant> p_sFileName, ByRef<Variant> p_ReportFile,
                              ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIReport::GenerateReport", false, [&] {
    if (!is_csv(p_sFormat)) raise_validation(p_Session, msg::kUnsupportedReportFormat);
    const std::vector<Variant> given = array_values(p_Params);

    auto report = create<business::Report>(progid::Report);
    check(report, report->Load(p_Session, p_lReportID, *p_CustomData));
    const std::string report_class = report->ReportClass();
    const std::optional<std::string_view> source_id = data_source_progid(report_class);
    if (!source_id) {
      fail(err::kCannotCreateObject, "UIReport", "no report data source \"" + report_class + "\"");
    }

    auto definitions = create<business::ReportParam>(progid::ReportParam);
    RecordsetPtr params_ptr = definitions->GetReportParams(p_Session, p_lReportID, *p_CustomData);
    check(definitions, definitions->Success());
    Recordset& params = require(params_ptr);
    if (given.size() > static_cast<size_t>(params.RecordCount())) {
      fail(err::kInvalidProcedureCall, {}, "more values than the report has parameters");
    }
    std::vector<Variant> values;
    if (params.RecordCount() > 0) {
      const int32_t required_col = params.GetFields().index_of("Required");
      const int32_t default_col = params.GetFields().index_of("DefaultValue");
      for (params.MoveFirst(); !params.IsEOF(); params.MoveNext()) {
        const size_t i = values.size();
        Variant value =
            i < given.size() && !given[i].is_missing() ? given[i] : params.value(default_col);
        if (is_blank(value) && params.value(required_col).to_bool()) {
          raise_validation(p_Session, msg::kReportParamRequired);
        }
        values.push_back(std::move(value));
      }
    }

    auto data = create<business::ReportData>(*source_id);
    RecordsetPtr rows = data->GetReportData(p_Session, values, *p_CustomData);
    check(data, data->Success());
    std::string file = detail::csv_text(require(rows));
    std::string name = detail::download_name(report->ReportName(), ".csv");
    *p_sFileName = Variant(std::move(name));
    *p_ReportFile = Variant(std::move(file));
    return true;
  });
}

}  // namespace kxui
