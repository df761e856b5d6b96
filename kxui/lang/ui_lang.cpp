#include "kxui/lang/ui_lang.h"

#include "kxui/business/progids.h"

namespace kxui {

UILang::UILang(std::shared_ptr<Runtime> runtime) : LangFacade("UILang", std::move(runtime)) {
  try {
    resource_ = create<business::Resource>(progid::Resource);
  } catch (...) {
    record_current_failure("UILang::Class_Initialize");
  }
}

bool UILang::GetResourceObject(const SessionPtr& p_objSession, ByRef<Variant>) noexcept {
  drop_resource();
  try_select([&] {
    std::string lang = lang_code_of(p_objSession);
    std::string country = country_code_of(p_objSession);
    return detail::resource_progid("KxLang_" + lang + "_" + country);
  });
  return select_fallback("UILang::GetResourceObject", progid::Resource, Creation::kDirect);
}

bool UILang::GetResourceObjectByLocaleName(const std::string& p_sLocalName,
                                           ByRef<Variant>) noexcept {
  // The current object is deliberately not dropped: a locale without its own object
  // keeps whatever was selected before.
  try_select([&] { return detail::resource_progid("KxLang_" + p_sLocalName); });
  return select_fallback("UILang::GetResourceObjectByLocaleName", progid::Resource,
                         Creation::kDirect);
}

std::string UILang::LoadString(int16_t p_StringID, const std::string& p_DefaultString,
                               const Variant& p_Args) noexcept {
  return load_string(p_StringID, p_DefaultString, p_Args);
}

std::string UILang::FormatMsgText(int16_t p_StringID, const std::string& p_DefaultString,
                                  const Variant& p_Args) noexcept {
  return format_msg_text(p_StringID, p_DefaultString, p_Args);
}

std::string UILang::FormatDebugMsgTxt(const Variant& p_ErrNumber,
                                      const Variant& p_ErrDescription,
                                      const Variant& p_ErrSource, ByRef<Variant>) noexcept {
  return guarded("UILang::FormatDebugMsgTxt", std::string(), [&] {
    return "\r\n\r\nError Number:  " + p_ErrNumber.to_string() +
           "\r\nError Source:  " + p_ErrSource.to_string() +
           "\r\nError Description:  " + p_ErrDescription.to_string();
  });
}

}  // namespace kxui
