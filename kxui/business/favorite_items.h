// "KxReq03.FavoriteItems": the parts a user keeps as favourites, to add to a requisition
// with UIReq.AddItemFavorite.
#pragma once

#include "kxui/business/business_object.h"
#include "kxui/frame/recordset.h"
#include "kxui/frame/session.h"
#include "kxui/frame/variant.h"

namespace kxui::business {

class FavoriteItems : public virtual BusinessObject {
 public:
  // The session user's favourite parts, one row per part, with at least "PartBaseID",
  // "UnitPrice" (money in the row's currency) and "CurrencyCode". Answers through
  // Success().
  virtual RecordsetPtr GetFavoriteList(const SessionPtr& session, Variant& custom_data) = 0;
  virtual bool Success() = 0;
};

}  // namespace kxui::business
