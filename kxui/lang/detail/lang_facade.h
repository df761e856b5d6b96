// LangFacade: what UILang and UILangExt share, written once: the current resource object,
// the selection steps, the message operations and the "@n" placeholder rule. Both
// classes record every failure under "UILang::..." source texts, their creation included.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "kxui/business/resource.h"
#include "kxui/frame/facade.h"
#include "kxui/frame/session.h"
#include "kxui/frame/variant.h"

namespace kxui::detail {

// The ProgID of a resource family or locale: `stem` + "03.Resource".
std::string resource_progid(std::string_view stem);

// The placeholder rule. `args` is Missing, a direct argument list, or the one-element
// holder that wraps one (its only element, at index 0, being an array). Element i of the
// list replaces every "@<i + 1>" in ascending order of i, each replacement working on the
// result of the previous one. The index counter is 16-bit. Throws Failure (13 for a
// non-array, 9 for a list that is not one-dimensional, 94 for a Null element, 6 when the
// bounds need more than 16 bits).
std::string fill_placeholders(std::string text, const Variant& args);

// Every "\n" (backslash, then n: two characters) replaced with CR LF.
std::string expand_line_breaks(std::string text);

class LangFacade : public Facade {
 protected:
  // Records its creation failures as "UILang::Class_Initialize", whatever the class.
  LangFacade(std::string class_name, std::shared_ptr<Runtime> runtime);

  // How a selection step creates its resource object.
  enum class Creation {
    kDirect,   // by ProgID through the runtime, not through the ClassFactory
    kFactory,  // through the ClassFactory
  };

  // The session's LangCode / CountryCode; "" when they cannot be read.
  static std::string lang_code_of(const SessionPtr& session) noexcept;
  static std::string country_code_of(const SessionPtr& session) noexcept;

  // Creates the ProgID `make_progid()` composes directly and makes it current. Failures
  // (of the composing too) are ignored: the current object, or none, stays as it was.
  template <class MakeProgID>
  void try_select(MakeProgID make_progid) noexcept {
    try {
      resource_ = create_direct<business::Resource>(make_progid());
    } catch (...) {
      // A locale without its own resource object is normal: the caller falls back.
    }
  }
  // The last selection step: when no object is current, creates `progid` the given way.
  // True when an object is current afterwards; false after a failure, recorded under
  // `source`, with no current object.
  bool select_fallback(std::string_view source, std::string_view progid,
                       Creation how) noexcept;
  void drop_resource() noexcept { resource_.reset(); }

  // LoadString and FormatMsgText of both classes (contracts in ui_lang.h).
  std::string load_string(int16_t id, const std::string& default_string,
                          const Variant& args) noexcept;
  std::string format_msg_text(int16_t id, const std::string& default_string,
                              const Variant& args) noexcept;

  // fill_placeholders as an operation: on failure the failure is recorded under
  // "UILang::InsertParams" and `text` is returned unchanged. Not a public operation.
  std::string InsertParams(const std::string& text, const Variant& p_Args) noexcept;

  std::shared_ptr<business::Resource> resource_;

 private:
  // The resource object's text for `id` (passing the one-element holder of `args`),
  // with `finish` applied; after a failure, recorded under `source`, the default with
  // its placeholders filled and nothing else.
  template <class Finish>
  std::string fetch(std::string_view source, int16_t id, const std::string& default_string,
                    const Variant& args, Finish finish) noexcept;
};

}  // namespace kxui::detail
