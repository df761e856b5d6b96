// "KxReq03.ReqCostDistribs": a line's cost split among its organisation's cost centres.
// A split saved must add up to 100 percent, name each centre once and only change a line
// its requisition lets change.
#pragma once

#include <vector>

#include "kxui/business/req_cost_distribs.h"
#include "reference/object_base.h"

namespace kxui::reference {

class RefReqCostDistribs : public business::ReqCostDistribs, public RefObject {
 public:
  explicit RefReqCostDistribs(DatabasePtr db) : RefObject(std::move(db), "ReqCostDistribs") {}
  RecordsetPtr GetCostDistribs(const SessionPtr& session, int32_t req_id, int32_t line_num,
                               Variant& custom_data) override;
  bool SaveCostDistribs(const SessionPtr& session, int32_t req_id, int32_t line_num,
                        const std::vector<business::CostDistrib>& distribs,
                        Variant& custom_data) override;
  bool Success() override { return success_; }
};

}  // namespace kxui::reference
