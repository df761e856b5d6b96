// The shared part of UILang and UILangExt (declared in detail/lang_facade.h).
#include "kxui/lang/detail/lang_facade.h"

#include <limits>
#include <utility>

#include "kxui/business/progids.h"
#include "kxui/frame/errors.h"
#include "kxui/frame/failure.h"

namespace kxui::detail {

namespace {

// Every occurrence of `find` replaced with `with`, left to right; inserted text is not
// searched again.
std::string replace_all(const std::string& text, std::string_view find, std::string_view with) {
  size_t pos = text.find(find);
  if (pos == std::string::npos) return text;
  std::string out;
  out.reserve(text.size() + with.size());
  size_t from = 0;
  for (; pos != std::string::npos; pos = text.find(find, from)) {
    out.append(text, from, pos - from);
    out.append(with);
    from = pos + find.size();
  }
  out.append(text, from, std::string::npos);
  return out;
}

}  // namespace

std::string resource_progid(std::string_view stem) {
  std::string id(stem);
  id += "03.Resource";
  return id;
}

std::string fill_placeholders(std::string text, const Variant& args) {
  if (args.is_missing()) return text;
  const Array& outer = args.array();
  if (outer.at(outer.lbound()).is_missing()) return text;
  // The holder LoadString builds: one element, at index 0, that is itself an array.
  const Array* list = &outer;
  if (outer.lbound() == 0 && outer.ubound() == 0 && outer.at(0).is_array()) {
    list = &outer.at(0).array();
  }
  const int32_t lower = list->lbound();
  const int32_t upper = list->ubound();
  // The counter is a 16-bit integer: it must hold both bounds, and "@" + (i + 1) must
  // not overflow for the last index.
  if (lower < std::numeric_limits<int16_t>::min() ||
      upper >= std::numeric_limits<int16_t>::max()) {
    fail(err::kOverflow);
  }
  // Ascending on purpose: "@1" also hits the start of "@10", and a value holding "@2"
  // is filled again when @2's turn comes. Pages rely on both.
  for (int32_t i = lower; i <= upper; ++i) {
    const std::string tag = "@" + std::to_string(i + 1);
    text = replace_all(text, tag, list->at(i).to_string());
  }
  return text;
}

std::string expand_line_breaks(std::string text) { return replace_all(text, "\\n", "\r\n"); }

LangFacade::LangFacade(std::string class_name, std::shared_ptr<Runtime> runtime)
    : Facade(std::move(class_name), std::move(runtime), "UILang") {}

std::string LangFacade::lang_code_of(const SessionPtr& session) noexcept {
  try {
    if (session) return session->LangCode();
  } catch (...) {
    // An unreadable member composes as "", like any other ignored step.
  }
  return {};
}

std::string LangFacade::country_code_of(const SessionPtr& session) noexcept {
  try {
    if (session) return session->CountryCode();
  } catch (...) {
  }
  return {};
}

bool LangFacade::select_fallback(std::string_view source, std::string_view progid,
                                 Creation how) noexcept {
  return guarded(source, false, [&] {
    if (!resource_) {
      resource_ = how == Creation::kDirect ? create_direct<business::Resource>(progid)
                                           : create<business::Resource>(progid);
    }
    return true;
  });
}

template <class Finish>
std::string LangFacade::fetch(std::string_view source, int16_t id,
                              const std::string& default_string, const Variant& args,
                              Finish finish) noexcept {
  try {
    const Array holder = Array::of({args});
    if (!resource_) fail(err::kObjectNotSet);
    return finish(resource_->LoadString(id, default_string, holder));
  } catch (...) {
    record_current_failure(source);
  }
  try {
    return InsertParams(default_string, Variant(Array::of({args})));
  } catch (...) {
    return {};  // only an allocation can fail here
  }
}

std::string LangFacade::load_string(int16_t id, const std::string& default_string,
                                    const Variant& args) noexcept {
  return fetch("UILang::LoadString", id, default_string, args,
               [](std::string text) { return text; });
}

std::string LangFacade::format_msg_text(int16_t id, const std::string& default_string,
                                        const Variant& args) noexcept {
  return fetch("UILang::FormatMsgText", id, default_string, args, [id](std::string text) {
    return expand_line_breaks("(" + std::to_string(id) + ") " + text);
  });
}

std::string LangFacade::InsertParams(const std::string& text, const Variant& p_Args) noexcept {
  return guarded("UILang::InsertParams", text, [&] { return fill_placeholders(text, p_Args); });
}

}  // namespace kxui::detail
