// "KxCat03.Commodity": the commodity (category) tree of the catalog.
#pragma once

#include <cstdint>

#include "kxui/business/business_object.h"
#include "kxui/frame/recordset.h"
#include "kxui/frame/session.h"
#include "kxui/frame/variant.h"

namespace kxui::business {

class Commodity : public virtual BusinessObject {
 public:
  // The children of `parent_id` (0: the top level). `check_commodity_filter` limits them
  // to the user's permitted commodities; `always_return_unknown` adds the "unknown"
  // commodity; `reserved` is 0. Success() and RecordCount() describe the call.
  virtual RecordsetPtr GetChildren(const SessionPtr& session, int32_t parent_id,
                                   int32_t cursor_type, int32_t cursor_location,
                                   bool check_commodity_filter, bool always_return_unknown,
                                   int32_t reserved, Variant& custom_data) = 0;
  // The path from the root to `commodity_id`, one row per level.
  virtual RecordsetPtr GetCommodityPath(const SessionPtr& session, int32_t commodity_id,
                                        int32_t cursor_type, int32_t cursor_location,
                                        Variant& custom_data) = 0;
  virtual int32_t RecordCount() = 0;
  virtual bool Success() = 0;
};

}  // namespace kxui::business
