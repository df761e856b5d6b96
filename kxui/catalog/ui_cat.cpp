#include "kxui/catalog/ui_cat.h"

#include "kxui/business/commodity.h"
#include "kxui/business/part_search.h"
#include "kxui/business/progids.h"

namespace kxui {

namespace {
// The catalog's fixed trailing arguments.
constexpr int32_t kNoReserved = 0;
constexpr int32_t kNoDocBorg = 0;
}  // namespace

// The error object comes first (the frame's), so that a catalog object that cannot be
// created is recorded rather than lost.
UICat::UICat(std::shared_ptr<Runtime> runtime) : Facade("UICat", std::move(runtime)) {
  try {
    part_search_ = create<business::PartSearch>(progid::PartSearch);
    commodity_ = create<business::Commodity>(progid::Commodity);
  } catch (...) {
    record_current_failure("UICat::Class_Initialize");
  }
}

UICat::~UICat() = default;

bool UICat::DebugMode() noexcept {
  return guarded("UICat::DebugMode", false, [&] { return require(part_search_).DebugMode(); });
}

void UICat::SetDebugMode(bool value) noexcept {
  try {
    require(part_search_).SetDebugMode(value);
  } catch (...) {
    record_current_failure("UICat::DebugMode");
  }
}

std::string UICat::LastQueryString() noexcept {
  return guarded("UICat::LastQueryString", std::string(),
                 [&] { return require(part_search_).LastQueryString(); });
}

RecordsetPtr UICat::GetChild(const SessionPtr& p_Session, int32_t p_ParentID,
                             int32_t p_CursorType, int32_t p_CursorLocation,
                             bool p_CheckCommFilter, bool p_AlwaysReturnUnknownComm,
                             ByRef<Variant> p_CustomData) noexcept {
  return guarded("UICat::GetChild", RecordsetPtr(), [&] {
    business::Commodity& commodity = require(commodity_);
    RecordsetPtr rs = commodity.GetChildren(p_Session, p_ParentID, p_CursorType,
                                            p_CursorLocation, p_CheckCommFilter,
                                            p_AlwaysReturnUnknownComm, kNoReserved,
                                            *p_CustomData);
    record_count_ = commodity.RecordCount();
    success_ = commodity.Success();
    return rs;
  });
}

// RecordCount keeps the last GetChild's or ListParts' count: pages show it beside a path.
RecordsetPtr UICat::GetPath(const SessionPtr& p_Session, int32_t p_CommID, int32_t p_CursorType,
                            int32_t p_CursorLocation, ByRef<Variant> p_CustomData) noexcept {
  return guarded("UICat::GetPath", RecordsetPtr(), [&] {
    business::Commodity& commodity = require(commodity_);
    RecordsetPtr rs = commodity.GetCommodityPath(p_Session, p_CommID, p_CursorType,
                                                 p_CursorLocation, *p_CustomData);
    success_ = commodity.Success();
    return rs;
  });
}

RecordsetPtr UICat::ListParts(
    const SessionPtr& p_Session, const std::string& p_KeywordSearch, bool p_SearchLongDesc,
    int32_t p_PartNumType, const std::string& p_PartNum, const std::string& p_PartNumExt,
    const std::string& p_SupplierName, int32_t p_SupplierID,
    const std::string& p_ManufacturerName, int32_t p_CommodityID, bool p_CommoditySubtrees,
    const std::string& p_SearchCurrency1, const std::string& p_SearchCurrency2,
    const std::string& p_DisplayCurrency, const std::string& p_LangCode,
    const std::string& p_UOM, int32_t p_CursorType, int32_t p_CursorLocation,
    int32_t p_SortOrder, int32_t p_SearchType, ByRef<Variant> p_CustomData) noexcept {
  return guarded("UICat::ListParts", RecordsetPtr(), [&] {
    business::PartSearch& search = require(part_search_);
    RecordsetPtr rs = search.SearchParts(
        p_Session, p_KeywordSearch, p_SearchLongDesc, p_PartNumType, p_PartNum, p_PartNumExt,
        p_SupplierName, p_SupplierID, p_ManufacturerName, p_CommodityID, p_CommoditySubtrees,
        p_SearchCurrency1, p_SearchCurrency2, p_DisplayCurrency, p_LangCode, p_UOM,
        p_CursorType, p_CursorLocation, p_SortOrder, p_SearchType, kNoDocBorg, *p_CustomData);
    record_count_ = search.RecordCount();
    success_ = search.Success();
    return rs;
  });
}

}  // namespace kxui
