// Reading SOCI rows whatever type the backend reports for a column (SQLite reports
// computed columns as text), and turning result sets into the library's record sets.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>

#include "reference/soci_include.h"

#include "kxui/frame/recordset.h"

namespace kxui::reference {

std::optional<int64_t> get_int(const soci::row& row, size_t i);
std::optional<double> get_double(const soci::row& row, size_t i);
std::optional<std::string> get_text(const soci::row& row, size_t i);
// The same, failing with a clear error when the value is Null.
int32_t int_of(const soci::row& row, size_t i);
std::string text_of(const soci::row& row, size_t i);

// How a result column becomes a record-set field. Dates are stored text (zone 15),
// money a scaled 64-bit integer, Booleans 0 or 1.
enum class Kind { kInt, kText, kDate, kMoney, kDouble, kBool };

struct Column {
  const char* name;
  Kind kind;
  int32_t size = 0;  // text columns only
};

// An open, empty record set with the columns; with a source, open over it instead.
RecordsetPtr make_recordset(std::span<const Column> columns,
                            std::shared_ptr<RowSource> source = nullptr);
// Appends the value of every result column (in order) as a new row; Null stays Null.
// `finish`, when given, may change the new row before it is stored.
void append_row(Recordset& rs, std::span<const Column> columns, const soci::row& row,
                const std::function<void(Recordset&)>& finish = {});
// Every row of `rows` into a new record set, positioned at its first row.
RecordsetPtr to_recordset(soci::rowset<soci::row>& rows, std::span<const Column> columns);

}  // namespace kxui::reference
