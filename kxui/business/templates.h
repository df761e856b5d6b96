// "KxReq03.Templates": requisition templates (copies of requisitions marked with
// Requisition::MarkAsTemplate).
#pragma once

#include <cstdint>

#include "kxui/business/business_object.h"
#include "kxui/frame/recordset.h"
#include "kxui/frame/session.h"
#include "kxui/frame/variant.h"

namespace kxui::business {

class Templates : public virtual BusinessObject {
 public:
  // The templates whose requisition status is `req_status_id`, one row per template.
  // Failures are thrown as Failure; Nothing is treated by callers as a missing result.
  virtual RecordsetPtr GetTemplateList(const SessionPtr& session, int32_t req_status_id,
                                       Variant& custom_data) = 0;
};

}  // namespace kxui::business
