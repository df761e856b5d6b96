// gmock doubles of the business objects behind a requisition's cart: the requisition's
// line members, the utilities (server date, currency conversion), favourites and cost
// distribution. Members a test leaves alone keep the business tier's default (438).
#pragma once

#include <gmock/gmock.h>

#include "kxui/business/favorite_items.h"
#include "kxui/business/req_cost_distribs.h"
#include "kxui/business/requisition.h"
#include "kxui/business/utils.h"
#include "kxui/testing/test_runtime.h"
#include "kxui/testing/mock_utils.h"

namespace kxui::testing::cart {

using kxui::testing::MockUtils;

class MockCartRequisition : public business::Requisition, public FakeBusinessObject {
 public:
  MOCK_METHOD(bool, Load, (const SessionPtr&, int32_t, bool, Variant&), (override));
  MOCK_METHOD(std::shared_ptr<business::RequisitionHeader>, Header, (), (override));
  MOCK_METHOD(bool, Success, (), (override));
  MOCK_METHOD(RecordsetPtr, GetItems, (const SessionPtr&, int32_t, Variant&), (override));
  MOCK_METHOD(RecordsetPtr, GetItem, (const SessionPtr&, int32_t, int32_t, Variant&), (override));
  MOCK_METHOD(bool, UpdateItemQty, (const SessionPtr&, int32_t, int32_t, double, Variant&),
              (override));
  MOCK_METHOD(bool, DeleteItem, (const SessionPtr&, int32_t, int32_t, Variant&), (override));
};

class MockFavoriteItems : public business::FavoriteItems, public FakeBusinessObject {
 public:
  MOCK_METHOD(RecordsetPtr, GetFavoriteList, (const SessionPtr&, Variant&), (override));
  MOCK_METHOD(bool, Success, (), (override));
};

class MockReqCostDistribs : public business::ReqCostDistribs, public FakeBusinessObject {
 public:
  MOCK_METHOD(RecordsetPtr, GetCostDistribs, (const SessionPtr&, int32_t, int32_t, Variant&),
              (override));
  MOCK_METHOD(bool, SaveCostDistribs,
              (const SessionPtr&, int32_t, int32_t, const std::vector<business::CostDistrib>&,
               Variant&),
              (override));
  MOCK_METHOD(bool, Success, (), (override));
};

}  // namespace kxui::testing::cart
