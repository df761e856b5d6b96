// UICom: the reference lists rendered as HTML option fragments.
#include "kxui/business/commodity.h"
#include "kxui/business/progids.h"
#include "kxui/business/reference_data.h"
#include "kxui/common/ui_com.h"

namespace kxui {

using detail::OptionForm;
using detail::OptionList;

namespace {
constexpr OptionList kCommodities{
    OptionForm::kQuoted, "CommodityID", "Description", {}, {"CommodityID"}};
constexpr OptionList kCurrencies{
    OptionForm::kQuoted, "CurrencyCode", "CurrencyCode", "CurrencyName", {"CurrencyCode"}};
constexpr OptionList kBorgCurrencies{
    OptionForm::kUnquoted, "CurrencyCode", "CurrencyCode", "CurrencyName", {"CurrencyCode"}};
constexpr OptionList kMfrs{OptionForm::kQuoted, "Name", "Name", {}, {"Name", "MfrID"}};
constexpr OptionList kSuppliers{OptionForm::kUnquoted, "SupplierID", "Name", {}, {"SupplierID"}};
constexpr OptionList kUnits{OptionForm::kQuoted, "UOMID", "UOMID", "VeltrixDesc", {"UOMID"}};
}  // namespace

template <class T, class KeyOf, class Call>
bool UICom::option_list(std::string_view source, std::string_view progid, std::string& ret_val,
                        const OptionList& list, KeyOf&& key_of, Call&& call) noexcept {
  return guarded(source, false, [&] {
    auto obj = create<T>(progid);
    RecordsetPtr rs = call(*obj);
    check(obj, obj->Success());
    ret_val = build_option_list(require(rs), list, key_of());
    return true;
  });
}

bool UICom::GetCommodityList2(const SessionPtr& p_Session, ByRef<std::string> p_RetVal,
                              const std::string& p_Selected, ByRef<Variant> p_CustomData) noexcept {
  // Unlike GetCommodityList, the unknown commodity is offered too.
  return option_list<business::Commodity>(
      "UICom::GetCommodityList2", progid::Commodity, *p_RetVal, kCommodities,
      [&] { return detail::text_key(p_Selected); },
      [&](auto& o) { return o.GetChildren(p_Session, 0, 3, 3, true, true, 0, *p_CustomData); });
}

bool UICom::GetCurrencyList2(const SessionPtr& p_Session, ByRef<std::string> p_RetVal,
                             const std::string& p_Selected, ByRef<Variant> p_CustomData) noexcept {
  return option_list<business::CurrencyCodes>(
      "UICom::GetCurrencyList2", progid::CurrencyCodes, *p_RetVal, kCurrencies,
      [&] { return detail::text_key(p_Selected); },
      [&](auto& o) { return o.GetCurrencyList(p_Session, *p_CustomData); });
}

bool UICom::GetCurrencyListByBorg(const SessionPtr& p_Session, ByRef<std::string> p_RetVal,
                                  const std::string& p_Selected,
                                  ByRef<Variant> p_CustomData) noexcept {
  return option_list<business::CurrencyCodes>(
      "UICom::GetCurrencyListByBorg", progid::CurrencyCodes, *p_RetVal, kBorgCurrencies,
      [&] { return detail::text_key(p_Selected); },
      [&](auto& o) { return o.GetCurrencyListByBorg(p_Session, *p_CustomData); });
}

bool UICom::GetMfrList2(const SessionPtr& p_Session, ByRef<std::string> p_RetVal,
                        const std::string& p_Selected, ByRef<Variant> p_CustomData) noexcept {
  return option_list<business::Mfr>(
      "UICom::GetMfrList2", progid::Mfr, *p_RetVal, kMfrs,
      [&] { return detail::text_key(p_Selected); },
      [&](auto& o) { return o.GetMfrList(p_Session, *p_CustomData); });
}

bool UICom::GetSupplierList2(const SessionPtr& p_Session, ByRef<std::string> p_RetVal,
                             int32_t p_Selected, ByRef<Variant> p_CustomData) noexcept {
  return option_list<business::Borg>("UICom::GetSupplierList2", progid::Borg, *p_RetVal, kSuppliers,
                                     [&] { return detail::number_key(p_Selected); }, [&](auto& o) {
                                       return o.GetSupplierList(p_Session, *p_CustomData);
                                     });
}

bool UICom::GetUOMList2(const SessionPtr& p_Session, ByRef<std::string> p_RetVal,
                        const std::string& p_Selected, ByRef<Variant> p_CustomData) noexcept {
  return option_list<business::UOM>(
      "UICom::GetUOMList2", progid::UOM, *p_RetVal, kUnits,
      [&] { return detail::text_key(p_Selected); },
      [&](auto& o) { return o.GetUOMDescList(p_Session, *p_CustomData); });
}

}  // namespace kxui
