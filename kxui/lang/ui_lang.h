// UILang: messages in the user's language. Keeps one current resource object (see
// kxui/business/resource.h) for its whole life: the default "KxLang03.Resource" from
// creation, replaced by the selection operations. There is no Success property: the
// results tell success.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "kxui/frame/byref.h"
#include "kxui/frame/session.h"
#include "kxui/frame/variant.h"
#include "kxui/lang/detail/lang_facade.h"

namespace kxui {

class UILang : public detail::LangFacade {
 public:
  // Creates the default "KxLang03.Resource" through the ClassFactory; a failure is
  // recorded under "UILang::Class_Initialize" and leaves no current resource object.
  explicit UILang(std::shared_ptr<Runtime> runtime = Runtime::process());

  // Selects the resource object of the session's locale,
  // "KxLang_" + LangCode + "_" + CountryCode + "03.Resource" (e.g. "KxLang_en_US03.Resource"),
  // falling back to "KxLang03.Resource"; both are created by ProgID directly, not through
  // the ClassFactory. The previous object is dropped first. True when one is current;
  // false when even the default cannot be created (recorded under
  // "UILang::GetResourceObject"): there is then no current object.
  bool GetResourceObject(const SessionPtr& p_objSession,
                         ByRef<Variant> p_CustomData = {}) noexcept;

  // As GetResourceObject with "KxLang_" + p_sLocalName + "03.Resource", except that the
  // previous object is kept: when the locale has no object, the previous one (the default
  // or an earlier locale's) stays current and no fallback is created. The default is
  // created only when none is current. Failures are recorded under
  // "UILang::GetResourceObjectByLocaleName".
  bool GetResourceObjectByLocaleName(const std::string& p_sLocalName,
                                     ByRef<Variant> p_CustomData = {}) noexcept;

  // The current resource object's text for p_StringID, exactly as it returns it. The
  // object receives p_DefaultString and a one-element holder (index 0) wrapping p_Args as
  // a whole. p_Args (an array of Variants, or Missing) is only read.
  // On any failure (no current object, the object failing) the failure is recorded under
  // "UILang::LoadString" and the result is p_DefaultString with its "@1", "@2", ...
  // filled from p_Args (a failure of that filling is recorded under
  // "UILang::InsertParams" and gives p_DefaultString as it is).
  std::string LoadString(int16_t p_StringID, const std::string& p_DefaultString,
                         const Variant& p_Args = Variant::missing()) noexcept;

  // As LoadString, then "(" + p_StringID + ") " before the text and every backslash-n
  // pair (the two characters) replaced with CR LF: 1024 with "Not found" gives
  // "(1024) Not found". After a failure (recorded under "UILang::FormatMsgText") the
  // filled default is returned without the prefix and without the replacement.
  std::string FormatMsgText(int16_t p_StringID, const std::string& p_DefaultString,
                            const Variant& p_Args = Variant::missing()) noexcept;

  // CR LF, CR LF, "Error Number:  " <number>, CR LF, "Error Source:  " <source>, CR LF,
  // "Error Description:  " <description>. The lines are in another order than the
  // parameters. "" when a value has no text (Null, an object, an array), recorded under
  // "UILang::FormatDebugMsgTxt".
  std::string FormatDebugMsgTxt(const Variant& p_ErrNumber, const Variant& p_ErrDescription,
                                const Variant& p_ErrSource,
                                ByRef<Variant> p_CustomData = {}) noexcept;
};

}  // namespace kxui
