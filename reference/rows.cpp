#include "reference/rows.h"

#include <charconv>

#include "reference/database.h"
#include "reference/errors.h"

namespace kxui::reference {

namespace {

bool is_null(const soci::row& row, size_t i) { return row.get_indicator(i) == soci::i_null; }

[[noreturn]] void unreadable(const soci::row& row, size_t i) {
  refuse(Refusal::kDatabaseCorrupt,
         "The stored value of \"" + row.get_properties(i).get_name() + "\" cannot be read");
}

}  // namespace

std::optional<int64_t> get_int(const soci::row& row, size_t i) {
  if (is_null(row, i)) return std::nullopt;
  switch (row.get_properties(i).get_data_type()) {
    case soci::dt_integer:
      return row.get<int>(i);
    case soci::dt_long_long:
      return row.get<long long>(i);
    case soci::dt_unsigned_long_long:
      return static_cast<int64_t>(row.get<unsigned long long>(i));
    case soci::dt_double:
      return static_cast<int64_t>(row.get<double>(i));
    case soci::dt_string: {
      const std::string s = row.get<std::string>(i);
      int64_t v = 0;
      const auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), v);
      if (ec != std::errc() || end != s.data() + s.size()) unreadable(row, i);
      return v;
    }
    default:
      unreadable(row, i);
  }
}

std::optional<double> get_double(const soci::row& row, size_t i) {
  if (is_null(row, i)) return std::nullopt;
  switch (row.get_properties(i).get_data_type()) {
    case soci::dt_double:
      return row.get<double>(i);
    case soci::dt_string: {
      const std::string s = row.get<std::string>(i);
      try {
        size_t used = 0;
        const double v = std::stod(s, &used);
        if (used == s.size()) return v;
      } catch (const std::exception&) {
      }
      unreadable(row, i);
    }
    default:
      return static_cast<double>(*get_int(row, i));
  }
}

std::optional<std::string> get_text(const soci::row& row, size_t i) {
  if (is_null(row, i)) return std::nullopt;
  switch (row.get_properties(i).get_data_type()) {
    case soci::dt_string:
      return row.get<std::string>(i);
    case soci::dt_double:
      return std::to_string(row.get<double>(i));
    default:
      return std::to_string(*get_int(row, i));
  }
}

int32_t int_of(const soci::row& row, size_t i) {
  const auto v = get_int(row, i);
  if (!v) unreadable(row, i);
  return static_cast<int32_t>(*v);
}

std::string text_of(const soci::row& row, size_t i) {
  auto v = get_text(row, i);
  if (!v) unreadable(row, i);
  return std::move(*v);
}

RecordsetPtr make_recordset(std::span<const Column> columns, std::shared_ptr<RowSource> source) {
  auto rs = std::make_shared<Recordset>();
  rs->SetCursorLocation(adUseClient);
  Fields& fields = rs->GetFields();
  for (const Column& c : columns) {
    switch (c.kind) {
      case Kind::kInt: fields.Append(c.name, adInteger, 0, adFldIsNullable); break;
      case Kind::kText: fields.Append(c.name, adVarWChar, c.size, adFldIsNullable); break;
      case Kind::kDate: fields.Append(c.name, adDate, 0, adFldIsNullable); break;
      case Kind::kMoney: fields.Append(c.name, adCurrency, 0, adFldIsNullable); break;
      case Kind::kDouble: fields.Append(c.name, adDouble, 0, adFldIsNullable); break;
      case Kind::kBool: fields.Append(c.name, adBoolean, 0, adFldIsNullable); break;
    }
  }
  if (source) {
    rs->Open(std::move(source));
  } else {
    rs->Open();
  }
  return rs;
}

void append_row(Recordset& rs, std::span<const Column> columns, const soci::row& row,
                const std::function<void(Recordset&)>& finish) {
  rs.AddNew();
  for (size_t i = 0; i < columns.size(); ++i) {
    const auto col = static_cast<int32_t>(i);
    if (is_null(row, i)) {
      rs.set_value(col, Variant::null());
      continue;
    }
    switch (columns[i].kind) {
      case Kind::kInt: rs.set_value(col, Variant(int_of(row, i))); break;
      case Kind::kText: rs.set_value(col, Variant(text_of(row, i))); break;
      case Kind::kDate: rs.set_value(col, Variant(parse_date_text(text_of(row, i)))); break;
      case Kind::kMoney:
        rs.set_value(col, Variant(Currency::from_scaled(*get_int(row, i))));
        break;
      case Kind::kDouble: rs.set_value(col, Variant(*get_double(row, i))); break;
      case Kind::kBool: rs.set_value(col, Variant(*get_int(row, i) != 0)); break;
    }
  }
  if (finish) finish(rs);
  rs.Update();
}

RecordsetPtr to_recordset(soci::rowset<soci::row>& rows, std::span<const Column> columns) {
  RecordsetPtr rs = make_recordset(columns);
  for (const soci::row& row : rows) append_row(*rs, columns, row);
  if (rs->RecordCount() > 0) rs->MoveFirst();
  return rs;
}

}  // namespace kxui::reference
