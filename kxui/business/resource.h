// "KxLang03.Resource" and its family: the string table of one locale. The objects of a
// locale are named "KxLang_<lang>_<country>03.Resource" (e.g. "KxLang_en_US03.Resource");
// other families use their own prefix ("<prefix><lang>_<country>03.Resource",
// "<prefix>03.Resource"). "KxLang03.Resource" is the default that serves every locale.
#pragma once

#include <cstdint>
#include <string>

#include "kxui/business/business_object.h"
#include "kxui/frame/variant.h"

namespace kxui::business {

class Resource : public virtual BusinessObject {
 public:
  // The text of string `string_id`, or `default_string` when the table has none, with
  // its "@1", "@2", ... placeholders filled from the caller's arguments.
  //
  // `args` is the argument holder: a one-dimensional array with exactly one element
  // (index 0) that holds the caller's whole argument array as it was passed (an Array,
  // or Missing when the caller gave none). Failures are thrown as Failure; the caller
  // returns the text unchanged, so it must be ready for display.
  virtual std::string LoadString(int16_t string_id, const std::string& default_string,
                                 const Array& args) = 0;
};

}  // namespace kxui::business
