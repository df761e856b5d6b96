// "KxCat03.PartSearch" and "KxCat03.Commodity" over the parts table and the commodity
// tree.
//
// The catalog's enumerations: part-number type 0 either number, 1 the supplier's, 2 the
// manufacturer's; search type 0 contains, 1 begins with, 2 exactly; sort order 0
// description, 1 supplier part number, 2 supplier, 3 manufacturer. Cursor types and
// locations do not apply: results are always disconnected record sets.
#pragma once

#include <string>

#include "kxui/business/commodity.h"
#include "kxui/business/part_search.h"
#include "reference/object_base.h"

namespace kxui::reference {

class RefPartSearch : public business::PartSearch, public RefObject {
 public:
  explicit RefPartSearch(DatabasePtr db) : RefObject(std::move(db), "PartSearch") {}
  RecordsetPtr LoadPartDetail(const SessionPtr& session, int32_t part_id,
                              const std::string& reserved1, const std::string& reserved2,
                              const std::string& currency_code, const std::string& lang_code,
                              int32_t fixed_zero, int32_t cursor_location, int32_t doc_borg_id,
                              Variant& custom_data) override;
  // Other offers of the same manufacturer part (same manufacturer and number).
  RecordsetPtr LoadPartViews(const SessionPtr& session, int32_t part_id,
                             const std::string& lang_code, int32_t cursor_type,
                             int32_t cursor_location, Variant& custom_data) override;
  RecordsetPtr SearchParts(const SessionPtr& session, const std::string& keyword_search,
                           bool search_long_desc, int32_t part_num_type,
                           const std::string& part_num, const std::string& part_num_ext,
                           const std::string& supplier_name, int32_t supplier_id,
                           const std::string& manufacturer_name, int32_t commodity_id,
                           bool commodity_subtrees, const std::string& search_currency1,
                           const std::string& search_currency2,
                           const std::string& display_currency, const std::string& lang_code,
                           const std::string& uom, int32_t cursor_type, int32_t cursor_location,
                           int32_t sort_order, int32_t search_type, int32_t doc_borg_id,
                           Variant& custom_data) override;
  int32_t RecordCount() override { return record_count_; }
  bool Success() override { return success_; }
  // The statement of the last search; in debug mode followed by its bound values.
  std::string LastQueryString() override { return last_query_; }
  bool DebugMode() override { return debug_; }
  void SetDebugMode(bool on) override { debug_ = on; }

 private:
  int32_t record_count_ = 0;
  std::string last_query_;
  bool debug_ = false;
};

class RefCommodity : public business::Commodity, public RefObject {
 public:
  explicit RefCommodity(DatabasePtr db) : RefObject(std::move(db), "Commodity") {}
  // With the filter, a user who has permitted commodities sees only those, their
  // subtrees and the path to them. "Unknown" is the row with CommodityID 0.
  RecordsetPtr GetChildren(const SessionPtr& session, int32_t parent_id, int32_t cursor_type,
                           int32_t cursor_location, bool check_commodity_filter,
                           bool always_return_unknown, int32_t reserved,
                           Variant& custom_data) override;
  RecordsetPtr GetCommodityPath(const SessionPtr& session, int32_t commodity_id,
                                int32_t cursor_type, int32_t cursor_location,
                                Variant& custom_data) override;
  int32_t RecordCount() override { return record_count_; }
  bool Success() override { return success_; }

 private:
  int32_t record_count_ = 0;
};

}  // namespace kxui::reference
