// UICat: catalog categories and part listing — the commodity tree, commodity paths and
// part searches.
//
// Unlike the other façades, UICat creates "KxCat03.PartSearch" and "KxCat03.Commodity"
// (through the ClassFactory) when it is created and keeps them for its whole life, so
// RecordCount, Success, LastQueryString and DebugMode describe the last call made
// through this instance. The operations return the catalog's record set as it comes (no
// display columns). None clears Success on entry; on failure an operation records the
// error under "UICat::<operation>" and returns Nothing, and RecordCount and Success keep
// whatever the failing call had already stored.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "kxui/frame/byref.h"
#include "kxui/frame/facade.h"
#include "kxui/frame/recordset.h"

namespace kxui {

namespace business {
class Commodity;
class PartSearch;
}  // namespace business

class UICat : public Facade {
 public:
  // Creates the error object, then the two catalog objects. A failure is recorded under
  // "UICat::Class_Initialize"; the operations then fail with 91 (no object).
  explicit UICat(std::shared_ptr<Runtime> runtime = Runtime::process());
  ~UICat() override;

  // The catalog search's debug switch (read from and written to the kept PartSearch).
  // A failure is recorded under "UICat::DebugMode"; the read then answers False.
  bool DebugMode() noexcept;
  void SetDebugMode(bool value) noexcept;
  // The query text of the kept PartSearch's last search; "" on failure (recorded under
  // "UICat::LastQueryString").
  std::string LastQueryString() noexcept;
  // The record count the last GetChild or ListParts stored (GetPath stores none).
  int32_t RecordCount() const noexcept { return record_count_; }
  // The success flag the last operation stored.
  bool Success() const noexcept { return success_; }

  // The children of commodity p_ParentID. Stores the catalog's RecordCount, then its
  // Success.
  RecordsetPtr GetChild(const SessionPtr& p_Session, int32_t p_ParentID, int32_t p_CursorType,
                        int32_t p_CursorLocation = adUseClient, bool p_CheckCommFilter = true,
                        bool p_AlwaysReturnUnknownComm = false,
                        ByRef<Variant> p_CustomData = {}) noexcept;

  // The path from the root to commodity p_CommID. Stores the catalog's Success only.
  RecordsetPtr GetPath(const SessionPtr& p_Session, int32_t p_CommID, int32_t p_CursorType,
                       int32_t p_CursorLocation = adUseClient,
                       ByRef<Variant> p_CustomData = {}) noexcept;

  // The parts matching the search. The catalog's part-number types, sort orders and
  // search types are passed through as they come. Stores the search's RecordCount, then
  // its Success.
  RecordsetPtr ListParts(const SessionPtr& p_Session, const std::string& p_KeywordSearch,
                         bool p_SearchLongDesc, int32_t p_PartNumType,
                         const std::string& p_PartNum, const std::string& p_PartNumExt,
                         const std::string& p_SupplierName, int32_t p_SupplierID,
                         const std::string& p_ManufacturerName, int32_t p_CommodityID,
                         bool p_CommoditySubtrees, const std::string& p_SearchCurrency1,
                         const std::string& p_SearchCurrency2,
                         const std::string& p_DisplayCurrency, const std::string& p_LangCode,
                         const std::string& p_UOM, int32_t p_CursorType,
                         int32_t p_CursorLocation = adUseClient, int32_t p_SortOrder = 0,
                         int32_t p_SearchType = 0, ByRef<Variant> p_CustomData = {}) noexcept;

 private:
  std::shared_ptr<business::PartSearch> part_search_;
  std::shared_ptr<business::Commodity> commodity_;
  int32_t record_count_ = 0;
};

}  // namespace kxui
