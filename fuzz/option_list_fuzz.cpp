// The option-list markup over any record set: one option per row, in order, each
// selected at most when its key matches.
#include <cstdint>
#include <string>
#include <vector>

#include <fuzzer/FuzzedDataProvider.h>

#include "fuzz/fuzz_support.h"
#include "kxui/common/detail/option_list.h"
#include "kxui/frame/failure.h"

namespace {

size_t count(const std::string& s, const std::string& what) {
  size_t n = 0;
  for (size_t at = s.find(what); at != std::string::npos; at = s.find(what, at + 1)) ++n;
  return n;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzedDataProvider in(data, size);
  using kxui::detail::OptionForm;
  const OptionForm form = in.ConsumeBool() ? OptionForm::kQuoted : OptionForm::kUnquoted;
  const bool with_description = in.ConsumeBool();
  kxui::Recordset rs;
  rs.GetFields().Append("ID", kxui::adVarWChar, 20);
  rs.GetFields().Append("Name", kxui::adVarWChar, 40);
  rs.GetFields().Append("Desc", kxui::adVariant);
  rs.Open();
  const int rows = in.ConsumeIntegralInRange(0, 20);
  std::vector<std::string> ids;
  bool markup_in_data = false;
  for (int r = 0; r < rows; ++r) {
    rs.AddNew();
    const bool null_id = in.ConsumeBool();
    const std::string id = null_id ? "" : in.ConsumeRandomLengthString(20);
    const std::string name = in.ConsumeRandomLengthString(40);
    markup_in_data = markup_in_data || id.find("OPTION") != std::string::npos ||
                     name.find("OPTION") != std::string::npos || id.find("Selected") != std::string::npos ||
                     name.find("Selected") != std::string::npos;
    if (!null_id) ids.push_back(id);
    rs.set_value(0, null_id ? kxui::Variant::null() : kxui::Variant(id));
    rs.set_value(1, kxui::Variant(name));
    rs.set_value(2, in.ConsumeBool() ? kxui::Variant::null()
                                     : kxui::Variant(in.ConsumeIntegral<int32_t>()));
    rs.Update();
  }
  if (rows > 0) rs.MoveFirst();
  const std::string selected = in.ConsumeRemainingBytesAsString();
  const kxui::detail::OptionList list{form, "ID", "Name", with_description ? "Desc" : "",
                                      {"ID", ""}};
  try {
    const std::string out = kxui::detail::build_option_list(rs, list, kxui::detail::text_key(selected));
    // The markup is not escaped, so a value may itself hold the markers: exact counts
    // hold only for data without them.
    FUZZ_CHECK(count(out, "</OPTION>") >= static_cast<size_t>(rows));
    if (!markup_in_data) {
      FUZZ_CHECK(count(out, "</OPTION>") == static_cast<size_t>(rows));
      // Selected exactly on the rows whose key is the selection (a Null key never is).
      size_t matching = 0;
      for (const std::string& id : ids) matching += id == selected;
      FUZZ_CHECK(count(out, "<OPTION Selected ") == matching);
    }
  } catch (const kxui::Failure&) {
    // Null keys and descriptions are the only texts that may fail to convert.
  }
  return 0;
}
