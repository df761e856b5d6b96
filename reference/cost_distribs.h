// "KxPO03.POCostDistribs" over cost_centers and po_cost_distribs: an order line's cost
// split over its organisation's cost centres, in percents that add up to 100.
#pragma once

#include "kxui/business/purchase_order.h"
#include "reference/object_base.h"

namespace kxui::reference {

class RefPOCostDistribs : public business::POCostDistribs, public RefObject {
 public:
  explicit RefPOCostDistribs(DatabasePtr db) : RefObject(std::move(db), "POCostDistribs") {}
  RecordsetPtr GetListCostCenter(const SessionPtr& session, int32_t po_id,
                                 Variant& custom_data) override;
  RecordsetPtr GetListCostDistribs(const SessionPtr& session, int32_t po_id, int32_t line_number,
                                   Variant& custom_data) override;
  bool SaveCostDistribs(const SessionPtr& session, int32_t po_id, int32_t line_number,
                        const std::string& cost_center_ids, const std::string& percents,
                        const std::string& delimiter, Variant& custom_data) override;
};

}  // namespace kxui::reference
