// The display rebuild: a business result copied into a new disconnected record set with
// extra "UIDisplay_..." columns formatted for the user, and, for list pages, the five
// paging columns. Callers describe their columns as data; names are resolved once per
// call and the formatters are created once per call, on first use.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "kxui/frame/paging.h"
#include "kxui/frame/recordset.h"
#include "kxui/frame/runtime.h"
#include "kxui/frame/services.h"
#include "kxui/frame/session.h"
#include "kxui/frame/settings.h"

namespace kxui {

// The zone in which stored dates are kept.
inline constexpr int32_t kServerTimeZone = 15;

// Per-call formatting state: the user's locale, zone and date style, and the locale
// services, created directly through the runtime on first use and released with the
// context.
class DisplayContext {
 public:
  DisplayContext(const Runtime& rt, const Session& session, int32_t date_style);

  int32_t locale_id() const { return locale_id_; }
  int32_t time_zone_id() const { return time_zone_id_; }
  int32_t date_style() const { return date_style_; }
  // For operations that read the session before the date style.
  void set_date_style(int32_t style) { date_style_ = style; }

  DateFormatter& dates();
  CurrencyFormatter& money();

  // The date display rule: the stored value (zone 15) as a date (Null fails with 94),
  // converted to the user's zone unless that is 15, cut to its date part,
  // and formatted in the user's locale and date style.
  std::string date_text(const Variant& stored);
  // Money in a currency, formatted for the user's locale.
  std::string money_text(double amount, const std::string& currency_code);
  // A quantity or plain amount, formatted for the user's locale.
  std::string amount_text(double amount);

 private:
  const Runtime& rt_;
  int32_t locale_id_;
  int32_t time_zone_id_;
  int32_t date_style_;
  std::shared_ptr<DateFormatter> dates_;
  std::shared_ptr<CurrencyFormatter> money_;
};

// Computes a display value from the current row of the source.
using RowFiller = std::function<Variant(const Recordset& source)>;

// One appended display column: its layout, and how to fill it. `bind` runs once per
// call, with the source, to resolve the source columns it reads and return the filler.
struct DisplayColumn {
  std::string name;
  DataTypeEnum type = adVarWChar;
  int32_t defined_size = 100;
  std::function<RowFiller(const Recordset& source, DisplayContext& ctx)> bind;
};

// "UIDisplay_<source>" (or `name`) from a date column by the date display rule.
DisplayColumn date_display(const std::string& source_column, std::string name = {});
// A text column filled by `fill` from the current row (resolve names in `bind` instead
// when the filler reads columns by name).
DisplayColumn computed_display(std::string name, DataTypeEnum type, int32_t defined_size,
                               std::function<RowFiller(const Recordset&, DisplayContext&)> bind);

// Rebuilds `source` with `columns` appended. With `paging`, the paging columns follow and
// only the rows of the window are copied (the source is positioned at StartRecord before
// it is tested for emptiness); without, every row is copied. The target is returned
// positioned at its first row. Any failure (a Null date included) throws: a partial
// result is never returned.
RecordsetPtr rebuild_for_display(Recordset& source, std::span<const DisplayColumn> columns,
                                 DisplayContext& ctx,
                                 const std::optional<PagingWindow>& paging = std::nullopt);

// Rebuilds only the row `source` is positioned on, for forms that show one record. There
// is no test for an empty source: with no current row the first field read fails (3021).
RecordsetPtr rebuild_row_for_display(Recordset& source, std::span<const DisplayColumn> columns,
                                     DisplayContext& ctx);

// The two halves of rebuild_for_display, for an operation that hands the target out
// before it is filled: the opened empty target (source structure, `columns`, then the
// paging columns when `paging`), and the filling of it. `ctx` may be null when there
// are no columns.
RecordsetPtr open_display_target(Recordset& source, std::span<const DisplayColumn> columns,
                                 bool paging);
void fill_display_rows(Recordset& source, Recordset& target,
                       std::span<const DisplayColumn> columns, DisplayContext* ctx,
                       const std::optional<PagingWindow>& paging);

// How a list page reads and applies the paging rule.
struct ListPageOptions {
  int32_t default_page_size = kDefaultPageSize;  // when "Page Size" cannot be read
  PastEnd past_end = PastEnd::kAnyNegative;
};

// The glue of every list page, in this order: "Page Size" through `ini`, the paging
// window over `source`, then the user's display context (locale and zone read from the
// session, which must be set) and the rebuild of that window with `columns` and the
// paging columns.
RecordsetPtr display_list_page(const Runtime& rt, AppIni& ini, const SessionPtr& session,
                               Variant& custom_data, Recordset& source, int32_t page,
                               int32_t date_style, std::span<const DisplayColumn> columns,
                               const ListPageOptions& options = {});
// The same with a display context the operation set up earlier, in its own order.
RecordsetPtr display_list_page(AppIni& ini, const SessionPtr& session, Variant& custom_data,
                               Recordset& source, int32_t page, DisplayContext& ctx,
                               std::span<const DisplayColumn> columns,
                               const ListPageOptions& options = {});

// FormatAddress: the address lines laid out for the locale by the address-formatting
// object, each kept line stripped of leading and trailing spaces (tabs and line breaks
// stay) and followed by "\r\n"; lines of spaces only are skipped, so an all-blank
// address gives "". Every failure, whatever its kind, carries the source
// "UIReq::FormatAddress".
std::string FormatAddress(const Runtime& rt, int32_t locale_id, const AddressParts& parts);

}  // namespace kxui
