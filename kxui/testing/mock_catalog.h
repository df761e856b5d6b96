// gmock doubles of the catalog and smart-form business objects. Each reports its
// failures through the FakeBusinessObject error a test fills with fail_with.
#pragma once

#include <gmock/gmock.h>

#include "kxui/business/commodity.h"
#include "kxui/business/part_search.h"
#include "kxui/business/smart_form.h"
#include "kxui/testing/test_runtime.h"

namespace kxui::testing {

class MockPartSearch : public business::PartSearch, public FakeBusinessObject {
 public:
  using S = const SessionPtr&;
  using Str = const std::string&;
  MOCK_METHOD(RecordsetPtr, LoadPartDetail,
              (S, int32_t, Str, Str, Str, Str, int32_t, int32_t, int32_t, Variant&), (override));
  MOCK_METHOD(RecordsetPtr, LoadPartViews, (S, int32_t, Str, int32_t, int32_t, Variant&),
              (override));
  // Twenty-two arguments: beyond gmock's limit, so the search is recorded by hand.
  RecordsetPtr SearchParts(S session, Str keyword_search, bool search_long_desc,
                           int32_t part_num_type, Str part_num, Str part_num_ext,
                           Str supplier_name, int32_t supplier_id, Str manufacturer_name,
                           int32_t commodity_id, bool commodity_subtrees, Str search_currency1,
                           Str search_currency2, Str display_currency, Str lang_code, Str uom,
                           int32_t cursor_type, int32_t cursor_location, int32_t sort_order,
                           int32_t search_type, int32_t doc_borg_id,
                           Variant& custom_data) override {
    search_args = {Variant(keyword_search), search_long_desc, part_num_type,
                   Variant(part_num),       Variant(part_num_ext), Variant(supplier_name),
                   supplier_id,             Variant(manufacturer_name), commodity_id,
                   commodity_subtrees,      Variant(search_currency1), Variant(search_currency2),
                   Variant(display_currency), Variant(lang_code), Variant(uom),
                   cursor_type,             cursor_location, sort_order,
                   search_type,             doc_borg_id};
    return Search(session, custom_data);
  }
  // The search's session and custom data; the other arguments are in search_args.
  MOCK_METHOD(RecordsetPtr, Search, (S, Variant&));
  MOCK_METHOD(int32_t, RecordCount, (), (override));
  MOCK_METHOD(bool, Success, (), (override));
  MOCK_METHOD(std::string, LastQueryString, (), (override));
  MOCK_METHOD(bool, DebugMode, (), (override));
  MOCK_METHOD(void, SetDebugMode, (bool), (override));

  // The last search's arguments after the session, up to the document organisation.
  std::vector<Variant> search_args;
};

class MockCommodity : public business::Commodity, public FakeBusinessObject {
 public:
  using S = const SessionPtr&;
  MOCK_METHOD(RecordsetPtr, GetChildren,
              (S, int32_t, int32_t, int32_t, bool, bool, int32_t, Variant&), (override));
  MOCK_METHOD(RecordsetPtr, GetCommodityPath, (S, int32_t, int32_t, int32_t, Variant&),
              (override));
  MOCK_METHOD(int32_t, RecordCount, (), (override));
  MOCK_METHOD(bool, Success, (), (override));
};

class MockSFormReqItem : public business::SFormReqItem, public FakeBusinessObject {
 public:
  using S = const SessionPtr&;
  using V = const Variant&;
  MOCK_METHOD(RecordsetPtr, GetFormDescription, (S, int32_t, Variant&), (override));
  MOCK_METHOD(RecordsetPtr, GetReqLineValues, (S, int32_t, int32_t, int32_t, Variant&),
              (override));
  MOCK_METHOD(RecordsetPtr, GetPOLineValues, (S, int32_t, int32_t, int32_t, Variant&),
              (override));
  MOCK_METHOD(bool, SaveReqLineValues, (S, int32_t, int32_t, int32_t, V, V, Variant&),
              (override));
  MOCK_METHOD(bool, SavePOLineValues, (S, int32_t, int32_t, int32_t, V, V, Variant&),
              (override));
};

}  // namespace kxui::testing
