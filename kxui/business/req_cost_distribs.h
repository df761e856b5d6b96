// "KxReq03.ReqCostDistribs": how the cost of a requisition line is split among cost
// centres, by percentage.
#pragma once

#include <cstdint>
#include <vector>

#include "kxui/business/business_object.h"
#include "kxui/frame/recordset.h"
#include "kxui/frame/session.h"
#include "kxui/frame/variant.h"

namespace kxui::business {

// One share of a line's cost.
struct CostDistrib {
  int32_t cost_center_id = 0;
  double percentage = 0;  // 0 < percentage <= 100, four decimals

  friend bool operator==(const CostDistrib&, const CostDistrib&) = default;
};

class ReqCostDistribs : public virtual BusinessObject {
 public:
  // The shares of a line, one row per cost centre, with at least "CostCenterID" and
  // "Percentage" (a number). Answers through Success().
  virtual RecordsetPtr GetCostDistribs(const SessionPtr& session, int32_t req_id, int32_t line_num,
                                       Variant& custom_data) = 0;
  // Replaces every share of a line with `distribs` (empty: the line is charged as its
  // requisition is, without a split).
  virtual bool SaveCostDistribs(const SessionPtr& session, int32_t req_id, int32_t line_num,
                                const std::vector<CostDistrib>& distribs, Variant& custom_data) = 0;
  virtual bool Success() = 0;
};

}  // namespace kxui::business
