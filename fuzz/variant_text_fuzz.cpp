// Text to number and text to date through Variant: a conversion either succeeds or fails
// with a Failure, and what succeeds agrees with itself.
#include <cmath>
#include <cstdint>
#include <string>

#include <fuzzer/FuzzedDataProvider.h>

#include "fuzz/fuzz_support.h"
#include "kxui/frame/failure.h"
#include "kxui/frame/variant.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const kxui::Variant v(text);

  const auto d = v.try_to_double();
  const auto i = v.try_to_int32();
  // Whatever is an integer is a number; an integer is the number rounded.
  if (i) {
    FUZZ_CHECK(d.has_value());
    FUZZ_CHECK(std::fabs(*d - *i) <= 0.5);
  }
  if (d) FUZZ_CHECK(!std::isnan(*d));

  try {
    const kxui::Date date = v.to_date();
    // A date read from text reads back the same from its own text.
    const kxui::Variant again(kxui::Variant(date).to_string());
    FUZZ_CHECK(again.to_date() == date);
  } catch (const kxui::Failure&) {
  }
  try {
    (void)v.to_currency();
    (void)v.to_bool();
  } catch (const kxui::Failure&) {
  }
  return 0;
}
