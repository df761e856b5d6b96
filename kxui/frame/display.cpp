#include "kxui/frame/display.h"

#include <algorithm>

#include "kxui/frame/errors.h"
#include "kxui/frame/failure.h"
#include "kxui/frame/text.h"

namespace kxui {

DisplayContext::DisplayContext(const Runtime& rt, const Session& session, int32_t date_style)
    : rt_(rt),
      locale_id_(session.LocaleID()),
      time_zone_id_(session.TimeZoneID()),
      date_style_(date_style) {}

DateFormatter& DisplayContext::dates() {
  if (!dates_) dates_ = create_as<DateFormatter>(rt_, service_class::kDateFormatter);
  return *dates_;
}

CurrencyFormatter& DisplayContext::money() {
  if (!money_) money_ = create_as<CurrencyFormatter>(rt_, service_class::kCurrencyFormatter);
  return *money_;
}

std::string DisplayContext::date_text(const Variant& stored) {
  Date d = stored.to_date();
  DateFormatter& f = dates();
  if (time_zone_id_ != kServerTimeZone) d = f.ConvertTimeZone(kServerTimeZone, d, time_zone_id_);
  // The day by arithmetic: the same day the date's text starts with, and the same
  // overflow for a date out of range.
  return f.FormatDateValue(locale_id_, date_style_, d.date_part());
}

std::string DisplayContext::money_text(double amount, const std::string& currency_code) {
  return money().FormatCurrencyAmount(locale_id_, currency_code, amount);
}

std::string DisplayContext::amount_text(double amount) {
  return money().FormatAmount(locale_id_, amount);
}

DisplayColumn date_display(const std::string& source_column, std::string name) {
  if (name.empty()) name = "UIDisplay_" + source_column;
  return DisplayColumn{std::move(name), adVarWChar, 100,
                       [source_column](const Recordset& src, DisplayContext& ctx) -> RowFiller {
                         const int32_t col = src.GetFields().index_of(source_column);
                         return [col, &ctx](const Recordset& row) {
                           return Variant(ctx.date_text(row.value(col)));
                         };
                       }};
}

DisplayColumn computed_display(std::string name, DataTypeEnum type, int32_t defined_size,
                               std::function<RowFiller(const Recordset&, DisplayContext&)> bind) {
  return DisplayColumn{std::move(name), type, defined_size, std::move(bind)};
}

RecordsetPtr open_display_target(Recordset& source, std::span<const DisplayColumn> columns,
                                 bool paging) {
  RecordsetPtr target = CloneRecordsetStructure(source);
  Fields& fields = target->GetFields();
  for (const DisplayColumn& c : columns) {
    fields.Append(c.name, c.type, c.defined_size, adFldUnspecified);
  }
  if (paging) {
    for (const char* name : kPagingColumns) fields.Append(name, adInteger, 0, adFldUnspecified);
  }
  target->Open();
  return target;
}

RecordsetPtr rebuild_for_display(Recordset& source, std::span<const DisplayColumn> columns,
                                 DisplayContext& ctx, const std::optional<PagingWindow>& paging) {
  RecordsetPtr target = open_display_target(source, columns, paging.has_value());
  fill_display_rows(source, *target, columns, &ctx, paging);
  return target;
}

void fill_display_rows(Recordset& source, Recordset& target,
                       std::span<const DisplayColumn> columns, DisplayContext* ctx,
                       const std::optional<PagingWindow>& paging) {
  const int32_t width = source.GetFields().Count();
  int32_t last = INT32_MAX;
  if (paging) {
    source.SetAbsolutePosition(paging->start_record);
    last = paging->end_record;
    const int64_t rows = int64_t{paging->end_record} - std::max(paging->start_record, 1) + 1;
    target.reserve(static_cast<int32_t>(std::clamp<int64_t>(rows, 0, source.RecordCount())));
  } else if (source.RecordCount() > 0) {
    source.MoveFirst();
    target.reserve(source.RecordCount());
  }
  if (source.IsBOF() && source.IsEOF()) return;

  // Bound only when there is a row to fill, as a lookup per row would be.
  std::vector<RowFiller> fillers;
  fillers.reserve(columns.size());
  for (const DisplayColumn& c : columns) fillers.push_back(c.bind(source, *ctx));

  const Variant paging_values[] = {
      Variant(paging ? paging->page_size : 0),     Variant(paging ? paging->current_page : 0),
      Variant(paging ? paging->total_records : 0), Variant(paging ? paging->start_record : 0),
      Variant(paging ? paging->end_record : 0),
  };
  while (!source.IsEOF() && source.AbsolutePosition() <= last) {
    target.AddNew();
    for (int32_t i = 0; i < width; ++i) target.set_value(i, source.value(i));
    int32_t col = width;
    for (const RowFiller& fill : fillers) target.set_value(col++, fill(source));
    if (paging) {
      for (const Variant& v : paging_values) target.set_value(col++, v);
    }
    target.Update();
    source.MoveNext();
  }
  target.MoveFirst();
}

RecordsetPtr rebuild_row_for_display(Recordset& source, std::span<const DisplayColumn> columns,
                                     DisplayContext& ctx) {
  RecordsetPtr target = open_display_target(source, columns, false);
  target->AddNew();
  const int32_t width = source.GetFields().Count();
  for (int32_t i = 0; i < width; ++i) target->set_value(i, source.value(i));
  int32_t col = width;
  for (const DisplayColumn& c : columns) target->set_value(col++, c.bind(source, ctx)(source));
  target->Update();
  target->MoveFirst();
  return target;
}

std::string FormatAddress(const Runtime& rt, int32_t locale_id, const AddressParts& parts) {
  try {
    auto formatter = create_as<AddressFormatter>(rt, service_class::kAddressFormatter);
    std::string result;
    for (const std::string& line : formatter->FormatAddressLines(locale_id, parts)) {
      std::string kept = text::trim_spaces(line);
      if (kept.empty()) continue;
      result += kept;
      result += "\r\n";
    }
    return result;
  } catch (const Failure& f) {
    throw Failure(f.number(), "UIReq::FormatAddress", f.description());
  } catch (const std::bad_alloc&) {
    fail(err::kOutOfMemory, "UIReq::FormatAddress");
  } catch (const std::exception& e) {
    throw Failure(err::kAutomationError, "UIReq::FormatAddress", e.what());
  } catch (...) {
    fail(err::kInternalError, "UIReq::FormatAddress");
  }
}

RecordsetPtr display_list_page(const Runtime& rt, AppIni& ini, const SessionPtr& session,
                               Variant& custom_data, Recordset& source, int32_t page,
                               int32_t date_style, std::span<const DisplayColumn> columns,
                               const ListPageOptions& options) {
  const int32_t page_size = read_page_size(ini, session, custom_data, options.default_page_size);
  const PagingWindow window =
      compute_paging_window(source.RecordCount(), page_size, page, options.past_end);
  DisplayContext ctx(rt, require(session), date_style);
  return rebuild_for_display(source, columns, ctx, window);
}

RecordsetPtr display_list_page(AppIni& ini, const SessionPtr& session, Variant& custom_data,
                               Recordset& source, int32_t page, DisplayContext& ctx,
                               std::span<const DisplayColumn> columns,
                               const ListPageOptions& options) {
  const int32_t page_size = read_page_size(ini, session, custom_data, options.default_page_size);
  const PagingWindow window =
      compute_paging_window(source.RecordCount(), page_size, page, options.past_end);
  return rebuild_for_display(source, columns, ctx, window);
}

}  // namespace kxui
