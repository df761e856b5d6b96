// "@1"-style placeholders filled from an argument array: any text and any arguments give
// a text; a text without '@' comes back unchanged.
#include <cstdint>
#include <string>
#include <vector>

#include <fuzzer/FuzzedDataProvider.h>

#include "fuzz/fuzz_support.h"
#include "kxui/frame/error_info.h"
#include "kxui/frame/failure.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzedDataProvider in(data, size);
  const int32_t lower = in.ConsumeIntegralInRange<int32_t>(-2, 2);
  std::vector<kxui::Variant> args;
  const int n = in.ConsumeIntegralInRange(0, 12);
  for (int i = 0; i < n; ++i) {
    switch (in.ConsumeIntegralInRange(0, 3)) {
      case 0: args.emplace_back(in.ConsumeRandomLengthString(16)); break;
      case 1: args.emplace_back(in.ConsumeIntegral<int32_t>()); break;
      case 2: args.push_back(kxui::Variant::null()); break;
      default: args.emplace_back(in.ConsumeFloatingPoint<double>()); break;
    }
  }
  const std::string text = in.ConsumeRemainingBytesAsString();
  try {
    const std::string out = kxui::fill_message_params(text, kxui::Array::of(args, lower));
    if (text.find('@') == std::string::npos) FUZZ_CHECK(out == text);
  } catch (const kxui::Failure&) {
  }
  return 0;
}
