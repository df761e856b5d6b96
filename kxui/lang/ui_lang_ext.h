// UILangExt: messages from resource objects of any family, whose ProgID prefix the
// caller supplies (option lists kept in their own resource objects, for instance). It
// starts with no resource object: select one with GetOptionResourceObject before using
// the message operations. Every failure, its creation's included, is recorded under the
// same "UILang::..." source texts as UILang. There is no Success property.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "kxui/frame/session.h"
#include "kxui/frame/variant.h"
#include "kxui/lang/detail/lang_facade.h"

namespace kxui {

class UILangExt : public detail::LangFacade {
 public:
  explicit UILangExt(std::shared_ptr<Runtime> runtime = Runtime::process());

  // Drops the current object, then selects the first that can be created of
  //   p_sProgidPrefix + LangCode + "_" + CountryCode + "03.Resource"  (directly),
  //   p_sProgidPrefix + "03.Resource"                                  (directly),
  //   "KxLang03.Resource"                                              (ClassFactory).
  // There is no separator after the prefix: the caller's prefix carries its own
  // ("KxOpt_" tries "KxOpt_en_US03.Resource", then "KxOpt_03.Resource"). True when one
  // is current; false when none can be created (recorded under
  // "UILang::GetOptionResourceObject"): there is then no current object.
  bool GetOptionResourceObject(const SessionPtr& p_objSession,
                               const std::string& p_sProgidPrefix) noexcept;

  // As UILang::LoadString, failures recorded under "UILang::LoadString".
  std::string LoadString(int16_t p_StringID, const std::string& p_DefaultString,
                         const Variant& p_Args = Variant::missing()) noexcept;

  // As UILang::FormatMsgText, failures recorded under "UILang::FormatMsgText".
  std::string FormatMsgText(int16_t p_StringID, const std::string& p_DefaultString,
                            const Variant& p_Args = Variant::missing()) noexcept;
};

}  // namespace kxui
