// "KxReq03.FavoriteItems": the session user's favourite parts.
#pragma once

#include "kxui/business/favorite_items.h"
#include "reference/object_base.h"

namespace kxui::reference {

class RefFavoriteItems : public business::FavoriteItems, public RefObject {
 public:
  explicit RefFavoriteItems(DatabasePtr db) : RefObject(std::move(db), "FavoriteItems") {}
  RecordsetPtr GetFavoriteList(const SessionPtr& session, Variant& custom_data) override;
  bool Success() override { return success_; }
};

}  // namespace kxui::reference
