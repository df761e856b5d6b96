// Numbers typed in a locale, read by the default currency formatter (ICU): it answers
// True with a finite number or False; only an unknown locale may throw, as a Failure.
#include <cmath>
#include <cstdint>
#include <string>

#include <fuzzer/FuzzedDataProvider.h>

#include "fuzz/fuzz_support.h"
#include "kxui/frame/failure.h"
#include "services/currency_formatter.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static kxui::services::IcuCurrencyFormatter formatter;
  static const int32_t kLocales[] = {1033, 1031, 1036, 2057, 3082, 1041, 1049, 1040, 0, -1};
  FuzzedDataProvider in(data, size);
  const int32_t locale = in.PickValueInArray(kLocales);
  const std::string text = in.ConsumeRemainingBytesAsString();
  try {
    double number = 12345;
    if (formatter.ParseNumber(locale, text, number)) {
      FUZZ_CHECK(std::isfinite(number));
      // What reads as a number formats, and the formatted text reads as a number again.
      double back = 0;
      FUZZ_CHECK(formatter.ParseNumber(locale, formatter.FormatAmount(locale, number), back));
    }
  } catch (const kxui::Failure&) {
  }
  return 0;
}
