#include "services/icu_support.h"

#include <mutex>
#include <shared_mutex>
#include <unordered_map>

#include <unicode/uloc.h>

#include "kxui/frame/errors.h"
#include "kxui/frame/failure.h"

namespace kxui::services::detail {
namespace {

struct LocaleTable {
  std::shared_mutex mutex;
  // Node-based, so references handed out survive later insertions.
  std::unordered_map<int32_t, icu::Locale> locales;
};

LocaleTable& table() {
  static auto* t = new LocaleTable;  // never destroyed: used by late-exiting threads
  return *t;
}

icu::Locale resolve(int32_t locale_id, std::string_view source) {
  char name[ULOC_FULLNAME_CAPACITY] = {};
  UErrorCode status = U_ZERO_ERROR;
  int32_t len = locale_id > 0 ? uloc_getLocaleForLCID(static_cast<uint32_t>(locale_id), name,
                                                      sizeof name - 1, &status)
                              : 0;
  std::string_view id(name, len > 0 && U_SUCCESS(status) ? static_cast<size_t>(len) : 0);
  if (id.empty() || id == "root") {
    fail(err::kInvalidProcedureCall, source,
         "unknown locale identifier " + std::to_string(locale_id));
  }
  icu::Locale loc(std::string(id).c_str());
  if (loc.isBogus()) {
    fail(err::kInvalidProcedureCall, source,
         "unknown locale identifier " + std::to_string(locale_id));
  }
  return loc;
}

}  // namespace

const icu::Locale& locale_for(int32_t locale_id, std::string_view source) {
  LocaleTable& t = table();
  {
    std::shared_lock lock(t.mutex);
    auto it = t.locales.find(locale_id);
    if (it != t.locales.end()) return it->second;
  }
  icu::Locale loc = resolve(locale_id, source);
  std::unique_lock lock(t.mutex);
  return t.locales.try_emplace(locale_id, std::move(loc)).first->second;
}

std::string to_utf8(const icu::UnicodeString& s) {
  std::string out;
  s.toUTF8String(out);
  return out;
}

icu::UnicodeString from_utf8(std::string_view s) {
  return icu::UnicodeString::fromUTF8(icu::StringPiece(s.data(), static_cast<int32_t>(s.size())));
}

void check(UErrorCode status, std::string_view source, std::string_view detail) {
  if (U_SUCCESS(status)) return;
  std::string text(detail);
  text += ": ";
  text += u_errorName(status);
  fail(err::kInvalidProcedureCall, source, text);
}

}  // namespace kxui::services::detail
