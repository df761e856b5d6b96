// "KxPO03.PurchaseOrder": a purchase order of the business tier.
#pragma once

#include "kxui/business/business_object.h"
#include "kxui/frame/session.h"
#include "kxui/frame/variant.h"

namespace kxui::business {

class PurchaseOrder : public virtual BusinessObject {
 public:
  // Releases every order lock the session holds.
  virtual bool ReleaseSessionLocks(const SessionPtr& session, Variant& custom_data) = 0;
};

}  // namespace kxui::business
