// Random operation sequences on a Recordset: every operation either works or fails with
// a Failure, and after each one the cursor and the counts agree.
#include <cstdint>
#include <string>

#include <fuzzer/FuzzedDataProvider.h>

#include "fuzz/fuzz_support.h"
#include "kxui/frame/failure.h"
#include "kxui/frame/recordset.h"

namespace {

using kxui::Variant;

Variant any_value(FuzzedDataProvider& in) {
  switch (in.ConsumeIntegralInRange(0, 7)) {
    case 0: return Variant();
    case 1: return Variant::null();
    case 2: return Variant(in.ConsumeIntegral<int32_t>());
    case 3: return Variant(in.ConsumeFloatingPoint<double>());
    case 4: return Variant(in.ConsumeBool());
    case 5: return Variant(kxui::Currency::from_scaled(in.ConsumeIntegral<int64_t>()));
    case 6: return Variant(kxui::Date::from_seconds(in.ConsumeIntegral<int32_t>()));
    default: return Variant(in.ConsumeRandomLengthString(24));
  }
}

void check_cursor(const kxui::Recordset& rs) {
  if (rs.State() != kxui::adStateOpen) return;
  const int32_t n = rs.RecordCount();
  FUZZ_CHECK(n >= 0);
  if (n == 0) FUZZ_CHECK(rs.IsBOF() && rs.IsEOF());
  if (!rs.IsBOF() && !rs.IsEOF()) {
    const int32_t pos = rs.AbsolutePosition();
    FUZZ_CHECK(pos >= 1 && pos <= n);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const kxui::DataTypeEnum kTypes[] = {
      kxui::adInteger, kxui::adDouble,  kxui::adCurrency, kxui::adDate,
      kxui::adBoolean, kxui::adVariant, kxui::adVarWChar, kxui::adSmallInt};
  FuzzedDataProvider in(data, size);
  kxui::Recordset rs;
  int32_t rows_added = 0;
  while (in.remaining_bytes() > 0) {
    const int op = in.ConsumeIntegralInRange(0, 13);
    const int32_t columns = rs.GetFields().Count();
    try {
      switch (op) {
        case 0:
          rs.GetFields().Append("F" + std::to_string(columns), in.PickValueInArray(kTypes),
                                in.ConsumeIntegralInRange(0, 8));
          break;
        case 1: rs.Open(); break;
        case 2: rs.AddNew(); ++rows_added; break;
        case 3: rs.Update(); break;
        case 4: rs.MoveFirst(); break;
        case 5: rs.MoveNext(); break;
        case 6: rs.MovePrevious(); break;
        case 7: rs.MoveLast(); break;
        case 8: rs.SetAbsolutePosition(in.ConsumeIntegralInRange(-2, rows_added + 2)); break;
        case 9:
          rs.set_value(in.ConsumeIntegralInRange(-1, columns), any_value(in));
          break;
        case 10: (void)rs.value(in.ConsumeIntegralInRange(-1, columns)); break;
        case 11: rs.Close(); break;
        case 12: {
          kxui::Field f = rs.GetFields()[in.ConsumeRandomLengthString(4)];
          f.SetValue(any_value(in));
          break;
        }
        default:
          rs.SetCursorLocation(in.ConsumeBool() ? kxui::adUseClient : kxui::adUseServer);
          break;
      }
    } catch (const kxui::Failure&) {
    }
    check_cursor(rs);
    FUZZ_CHECK(rs.State() != kxui::adStateOpen || rs.RecordCount() <= rows_added);
  }
  return 0;
}
