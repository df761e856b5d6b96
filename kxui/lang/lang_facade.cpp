// The shared part of UILang and UILangExt (declared in detail/lang_facade.h).
#include "kxui/lang/detail/lang_facade.h"

#include <algorithm>
#include <climits>
#include <limits>
#include <vector>
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

namespace {

// The text as a linked list of characters, so that a tag can be swapped for its value in
// place and every "@" be looked at again only when the characters after it change.
class TagFiller {
 public:
  TagFiller(const std::string& text, int32_t first, std::vector<std::string> values)
      : first_(first), values_(std::move(values)), pending_(values_.size()) {
    for (char c : text) tail_ = link(tail_, c);
    for (int32_t n = 0; n < static_cast<int32_t>(chr_.size()); ++n) schedule(n, first_ - 1);
  }

  // Steps in ascending order; each replaces the occurrences of its tag that the text
  // held when the step began. Occurrences cannot overlap (one "@" each), and once an
  // "@" matches a tag it keeps matching it, so a step's list is complete and exact.
  std::string run() {
    for (size_t s = 0; s < pending_.size(); ++s) {
      const int32_t tag = first_ + static_cast<int32_t>(s);
      for (size_t k = 0; k < pending_[s].size(); ++k) {
        const int32_t at = pending_[s][k];
        if (alive_[at] && matches(at, tag - 1) == tag) replace(at, tag, values_[s]);
      }
      pending_[s] = {};
    }
    std::string out;
    for (int32_t n = head_; n >= 0; n = next_[n]) out += chr_[n];
    return out;
  }

 private:
  static constexpr size_t kLongestTag = 6;  // "-32768"

  // A new node holding `c` after node `last` (-1: at the front); its next is left -1.
  int32_t link(int32_t last, char c) {
    const auto n = static_cast<int32_t>(chr_.size());
    chr_.push_back(c);
    alive_.push_back(true);
    prev_.push_back(last);
    next_.push_back(-1);
    (last >= 0 ? next_[last] : head_) = n;
    return n;
  }

  // The characters after node `at`, up to the longest tag.
  std::string after(int32_t at) const {
    std::string s;
    for (int32_t n = next_[at]; n >= 0 && s.size() < kLongestTag; n = next_[n]) s += chr_[n];
    return s;
  }

  // The earliest tag after step `done` that "@" at `at` starts; INT32_MIN when none.
  int32_t matches(int32_t at, int32_t done = INT32_MIN) const {
    if (chr_[at] != '@') return INT32_MIN;
    const std::string s = after(at);
    const size_t sign = !s.empty() && s[0] == '-' ? 1 : 0;
    const size_t end = std::min(s.find_first_not_of("0123456789", sign), s.size());
    int32_t best = INT32_MIN;
    for (size_t len = sign + 1; len <= end; ++len) {  // "@1" and "@12" both start "@123"
      const std::string digits = s.substr(0, len);
      const int32_t tag = std::stoi(digits);
      if (std::to_string(tag) != digits || tag <= done || tag < first_) continue;
      if (tag - first_ >= static_cast<int32_t>(pending_.size())) continue;
      if (best == INT32_MIN || tag < best) best = tag;
    }
    return best;
  }

  void schedule(int32_t at, int32_t done) {
    const int32_t tag = matches(at, done);
    if (tag != INT32_MIN) pending_[tag - first_].push_back(at);
  }

  // Unlinks the tag at `at`, links `value` in its place, and looks again at every "@"
  // whose following characters changed: those of the value and those just before it.
  void replace(int32_t at, int32_t tag, const std::string& value) {
    int32_t before = prev_[at];
    int32_t after_tag = at;
    for (size_t i = 0; i <= std::to_string(tag).size(); ++i) {
      alive_[after_tag] = false;
      after_tag = next_[after_tag];
    }
    const auto first_new = static_cast<int32_t>(chr_.size());
    int32_t last = before;
    for (char c : value) last = link(last, c);
    (last >= 0 ? next_[last] : head_) = after_tag;
    (after_tag >= 0 ? prev_[after_tag] : tail_) = last;
    for (auto n = first_new; n < static_cast<int32_t>(chr_.size()); ++n) schedule(n, tag);
    for (size_t i = 0; i <= kLongestTag && before >= 0; ++i, before = prev_[before]) {
      schedule(before, tag);
    }
  }

  int32_t first_;
  std::vector<std::string> values_;
  std::vector<std::vector<int32_t>> pending_;  // per tag, the "@" nodes that may start it
  std::string chr_;
  std::vector<bool> alive_;
  std::vector<int32_t> prev_, next_;
  int32_t head_ = -1, tail_ = -1;
};

}  // namespace

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
  // Every value as text first, in order, so a bad element fails as it always did.
  std::vector<std::string> values;
  for (int32_t i = lower; i <= upper; ++i) values.push_back(list->at(i).to_string());
  if (values.empty()) return text;
  // Ascending on purpose: "@1" also hits the start of "@10", and a value holding "@2"
  // is filled again when @2's turn comes. Pages rely on both.
  return TagFiller(text, lower + 1, std::move(values)).run();
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
  try {
    return fill_placeholders(text, p_Args);
  } catch (...) {
    record_current_failure("UILang::InsertParams");
  }
  // Copying the text back can itself run out of memory: then there is nothing to give.
  try {
    return text;
  } catch (...) {
    return {};
  }
}

}  // namespace kxui::detail
