// gmock doubles of the purchase-order contracts, and scripted supplier-exchange objects
// that record what they were sent.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "kxui/business/cursor_data_access.h"
#include "kxui/business/part_search.h"
#include "kxui/business/purchase_order.h"
#include "kxui/business/reconcile.h"
#include "kxui/business/requisition.h"
#include "kxui/business/utils.h"
#include "kxui/frame/runtime.h"
#include "kxui/testing/test_runtime.h"
#include "kxui/testing/mock_utils.h"

namespace kxui::testing {

class MockPurchaseOrder : public business::PurchaseOrder, public FakeBusinessObject {
 public:
  MOCK_METHOD(bool, ReleaseSessionLocks, (const SessionPtr&, Variant&), (override));
  MOCK_METHOD(bool, LoadPO, (const SessionPtr&, int32_t, bool, Variant&), (override));
  MOCK_METHOD(std::shared_ptr<business::POHeader>, Header, (), (override));
  MOCK_METHOD(bool, Succeeded, (), (override));
  MOCK_METHOD(RecordsetPtr, GetPOItems, (const SessionPtr&, int32_t, int32_t, Variant&),
              (override));
  MOCK_METHOD(RecordsetPtr, GetPOList,
              (const SessionPtr&, const Variant&, const Variant&, const std::string&,
               const Variant&, const Variant&, Variant&),
              (override));
  MOCK_METHOD(RecordsetPtr, GetPOsByReq, (const SessionPtr&, int32_t, Variant&), (override));
  MOCK_METHOD(RecordsetPtr, GetPOLog, (const SessionPtr&, int32_t, const std::string&, Variant&),
              (override));
  MOCK_METHOD(bool, CopyToRequisition,
              (const SessionPtr&, int32_t, const std::string&, int32_t&, int32_t&, int32_t&,
               Variant&),
              (override));
  MOCK_METHOD(bool, DeletePO, (const SessionPtr&, int32_t, Variant&), (override));
  MOCK_METHOD(bool, DeleteLines,
              (const SessionPtr&, const std::shared_ptr<business::POItems>&, int32_t, Variant&),
              (override));
  MOCK_METHOD(RecordsetPtr, GetStatusRecord, (const SessionPtr&, int32_t, Variant&), (override));
  MOCK_METHOD(bool, IsValidLock, (const SessionPtr&, int32_t, Variant&), (override));
  MOCK_METHOD(bool, Reset, (const SessionPtr&, Variant&), (override));
  MOCK_METHOD(bool, SetPOStatus, (const SessionPtr&, int32_t, int32_t, Variant&), (override));
};

// A PO header with settable values.
struct FakePOHeader : business::POHeader {
  int32_t po_id = 0;
  std::string po_num, po_name, submitter_name, justification, currency_code = "USD";
  Variant create_date;
  Currency total_cost;
  bool read_only = false;
  std::string borg_name, supplier_name, receive_status_desc;
  int32_t supplier_id = 0;

  int32_t POID() override { return po_id; }
  std::string PONum() override { return po_num; }
  std::string POName() override { return po_name; }
  std::string SubmitterName() override { return submitter_name; }
  Variant CreateDate() override { return create_date; }
  std::string Justification() override { return justification; }
  std::string CurrencyCode() override { return currency_code; }
  Currency TotalCost() override { return total_cost; }
  bool ReadOnly() override { return read_only; }
  std::string BorgName() override { return borg_name; }
  int32_t SupplierID() override { return supplier_id; }
  std::string SupplierName() override { return supplier_name; }
  std::string ReceiveStatusDesc() override { return receive_status_desc; }
};

// A PO line that keeps every value set on it, by property name, in the order set.
struct RecordingPOItem : business::POItem, FakeBusinessObject {
  std::vector<std::pair<std::string, Variant>> set;
  void put(const char* name, Variant v) { set.emplace_back(name, std::move(v)); }

  void SetPOID(int32_t v) override { put("POID", Variant(v)); }
  void SetLineNum(int32_t v) override { put("LineNum", Variant(v)); }
  void SetActualUnitPrice(Currency v) override { put("ActualUnitPrice", Variant(v)); }
  void SetExtendedPrice(Currency v) override { put("ExtendedPrice", Variant(v)); }
  void SetSalesTaxAmt(Currency v) override { put("SalesTaxAmt", Variant(v)); }
  void SetBuyerPartNum(const std::string& v) override { put("BuyerPartNum", Variant(v)); }
  void SetCommodityName(const std::string& v) override { put("CommodityName", Variant(v)); }
  void SetCommodityID(int32_t v) override { put("CommodityID", Variant(v)); }
  void SetActualCurrencyCode(const std::string& v) override {
    put("ActualCurrencyCode", Variant(v));
  }
  void SetMfrName(const std::string& v) override { put("MfrName", Variant(v)); }
  void SetShortDesc(const std::string& v) override { put("ShortDesc", Variant(v)); }
  void SetPartID(int32_t v) override { put("PartID", Variant(v)); }
  void SetSupplierID(int32_t v) override { put("SupplierID", Variant(v)); }
  void SetSupplierPartNum(const std::string& v) override { put("SupplierPartNum", Variant(v)); }
  void SetSupplierPartNumExt(const std::string& v) override {
    put("SupplierPartNumExt", Variant(v));
  }
  void SetTaxable(int32_t v) override { put("Taxable", Variant(v)); }
  void SetUnitPrice(Currency v) override { put("UnitPrice", Variant(v)); }
  void SetUnitofMeasure(const std::string& v) override { put("UnitofMeasure", Variant(v)); }
};

struct RecordingPOItems : business::POItems, FakeBusinessObject {
  std::vector<std::shared_ptr<business::POItem>> items;
  void Add(const std::shared_ptr<business::POItem>& item) override { items.push_back(item); }
  int32_t Count() override { return static_cast<int32_t>(items.size()); }
};

class MockPOCostDistribs : public business::POCostDistribs, public FakeBusinessObject {
 public:
  MOCK_METHOD(RecordsetPtr, GetListCostCenter, (const SessionPtr&, int32_t, Variant&), (override));
  MOCK_METHOD(RecordsetPtr, GetListCostDistribs, (const SessionPtr&, int32_t, int32_t, Variant&),
              (override));
  MOCK_METHOD(bool, SaveCostDistribs,
              (const SessionPtr&, int32_t, int32_t, const std::string&, const std::string&,
               const std::string&, Variant&),
              (override));
};

class MockPOLog : public business::POLog, public FakeBusinessObject {
 public:
  MOCK_METHOD(bool, WriteLog,
              (const SessionPtr&, int32_t, const std::string&, const std::string&,
               const std::string&, Variant&),
              (override));
};

class MockPOStatus : public business::POStatus, public FakeBusinessObject {
 public:
  MOCK_METHOD(bool, MapSupplierStatus, (const SessionPtr&, const std::string&, int32_t&, Variant&),
              (override));
};

class MockPartSearch : public business::PartSearch, public FakeBusinessObject {
 public:
  MOCK_METHOD(RecordsetPtr, LoadPartDetail,
              (const SessionPtr&, int32_t, const std::string&, const std::string&,
               const std::string&, const std::string&, int32_t, int32_t, int32_t, Variant&),
              (override));
  MOCK_METHOD(RecordsetPtr, LoadPartViews,
              (const SessionPtr&, int32_t, const std::string&, int32_t, int32_t, Variant&),
              (override));
  // More arguments than a mock method takes: the search arguments between the session
  // and the custom data go to Search as Variants, in order.
  RecordsetPtr SearchParts(const SessionPtr& session, const std::string& keyword_search,
                           bool search_long_desc, int32_t part_num_type,
                           const std::string& part_num, const std::string& part_num_ext,
                           const std::string& supplier_name, int32_t supplier_id,
                           const std::string& manufacturer_name, int32_t commodity_id,
                           bool commodity_subtrees, const std::string& search_currency1,
                           const std::string& search_currency2,
                           const std::string& display_currency, const std::string& lang_code,
                           const std::string& uom, int32_t cursor_type, int32_t cursor_location,
                           int32_t sort_order, int32_t search_type, int32_t doc_borg_id,
                           Variant& custom_data) override {
    return Search(session,
                  {Variant(keyword_search), Variant(search_long_desc), Variant(part_num_type),
                   Variant(part_num), Variant(part_num_ext), Variant(supplier_name),
                   Variant(supplier_id), Variant(manufacturer_name), Variant(commodity_id),
                   Variant(commodity_subtrees), Variant(search_currency1),
                   Variant(search_currency2), Variant(display_currency), Variant(lang_code),
                   Variant(uom), Variant(cursor_type), Variant(cursor_location),
                   Variant(sort_order), Variant(search_type), Variant(doc_borg_id)},
                  custom_data);
  }
  MOCK_METHOD(RecordsetPtr, Search, (const SessionPtr&, std::vector<Variant>, Variant&));
  MOCK_METHOD(int32_t, RecordCount, (), (override));
  MOCK_METHOD(bool, Success, (), (override));
  MOCK_METHOD(std::string, LastQueryString, (), (override));
  MOCK_METHOD(bool, DebugMode, (), (override));
  MOCK_METHOD(void, SetDebugMode, (bool), (override));
};

class MockCursorDataAccess : public business::CursorDataAccess, public FakeBusinessObject {
 public:
  MOCK_METHOD(RecordsetPtr, RunSP,
              (const SessionPtr&, const std::string&, const std::vector<Variant>&, Variant&),
              (override));
};

class MockReconcileOrder : public business::ReconcileOrder, public FakeBusinessObject {
 public:
  MOCK_METHOD(bool, LoadOrder, (const SessionPtr&, int32_t, int32_t, Variant&), (override));
  MOCK_METHOD(std::shared_ptr<business::ReconcileItems>, Items, (), (override));
  MOCK_METHOD(bool, SaveOrder, (const SessionPtr&, Variant&), (override));
  MOCK_METHOD(RecordsetPtr, GetOrderItems, (const SessionPtr&, int32_t, int32_t, Variant&),
              (override));
  MOCK_METHOD(bool, Succeeded, (), (override));
  MOCK_METHOD(bool, AddAlternateItem,
              (const SessionPtr&, int32_t, int32_t, const std::shared_ptr<business::POItems>&,
               Variant&),
              (override));
  MOCK_METHOD(bool, UpdateQuantities,
              (const SessionPtr&, int32_t, const Variant&, const Variant&, const Variant&,
               Variant&),
              (override));
  MOCK_METHOD(bool, SubmitOrder, (const SessionPtr&, int32_t, Variant&), (override));
  MOCK_METHOD(bool, LoadOrderHeader, (const SessionPtr&, int32_t, const std::string&, Variant&),
              (override));
  MOCK_METHOD(std::shared_ptr<business::ReconcileOrderHeader>, OrderHeader, (), (override));
};

// A reconcile line with settable values that keeps what is written to it.
struct FakeReconcileItem : business::ReconcileItem {
  bool deleted = false;
  int32_t line_num = 0;
  std::string part_num, part_num_ext, uom = "EA";
  double shipped_qty = 0;
  int32_t supplier_id = 0;
  Variant unit_price, actual_unit_price, in_stock_qty;  // Empty until written

  bool Deleted() override { return deleted; }
  void SetDeleted(bool d) override { deleted = d; }
  int32_t LineNum() override { return line_num; }
  std::string SupplierPartNum() override { return part_num; }
  std::string SupplierPartNumExt() override { return part_num_ext; }
  std::string UOMID() override { return uom; }
  double ShippedQty() override { return shipped_qty; }
  int32_t POSupplierID() override { return supplier_id; }
  void SetUnitPrice(Currency p) override { unit_price = Variant(p); }
  void SetActualUnitPrice(Currency p) override { actual_unit_price = Variant(p); }
  void SetInStockQty(double q) override { in_stock_qty = Variant(q); }
};

struct FakeReconcileItems : business::ReconcileItems, FakeBusinessObject {
  std::vector<std::shared_ptr<FakeReconcileItem>> items;
  std::vector<int32_t> loaded;  // POIDs asked for
  bool load_result = true;
  bool Load(const SessionPtr&, int32_t po_id, Variant&) override {
    loaded.push_back(po_id);
    return load_result;
  }
  int32_t Count() override { return static_cast<int32_t>(items.size()); }
  std::shared_ptr<business::ReconcileItem> Item(int32_t index) override {
    if (index < 1 || index > Count()) fail(err::kSubscriptOutOfRange);
    return items[static_cast<size_t>(index - 1)];
  }
};

struct FakeReconcileOrderHeader : business::ReconcileOrderHeader {
  std::string po_num = "PO-7", supplier = "Acme Tools", currency_code = "EUR";
  int32_t supplier_id = 31;
  Currency sub_total = Currency::from_double(100.5), tax = Currency::from_double(8.25),
           due = Currency::from_double(108.75);
  std::string PONum() override { return po_num; }
  std::string Supplier() override { return supplier; }
  int32_t SupplierID() override { return supplier_id; }
  std::string CurrencyCode() override { return currency_code; }
  Currency SubTotal() override { return sub_total; }
  Currency TotalTaxAmt() override { return tax; }
  Currency TotalAmtDue() override { return due; }
};

// The requisition members the quick check reads.
class MockQuickCheckRequisition : public business::Requisition, public FakeBusinessObject {
 public:
  MOCK_METHOD(bool, Load, (const SessionPtr&, int32_t, bool, Variant&), (override));
  MOCK_METHOD(std::shared_ptr<business::RequisitionHeader>, Header, (), (override));
  MOCK_METHOD(bool, Success, (), (override));
  MOCK_METHOD(bool, Save, (const SessionPtr&, Variant&), (override));
  MOCK_METHOD(std::vector<QuickCheckLine>, QuickCheckLines, (), (override));
  MOCK_METHOD(std::string, ReqCurrencyCode, (), (override));
  MOCK_METHOD(void, SetQuickCheckPrice, (int32_t, Currency), (override));
};

// A late-bound object that records every call (dispatch id and arguments as passed) and
// answers from a table of handlers by dispatch id; named members map to ids through
// `names`. Unknown ids fail with 438.
class ScriptedDispatch : public Dispatch {
 public:
  struct Call {
    int32_t dispid;
    std::vector<Variant> args;
  };
  using Handler = std::function<Variant(std::span<Variant>)>;

  int32_t GetIDOfName(std::string_view name) override {
    auto it = names.find(std::string(name));
    if (it == names.end()) fail(err::kNoSuchMember, "ScriptedDispatch", name);
    return it->second;
  }
  Variant Invoke(int32_t dispid, std::span<Variant> args) override {
    calls.push_back({dispid, std::vector<Variant>(args.begin(), args.end())});
    auto it = handlers.find(dispid);
    if (it == handlers.end()) {
      if (args.size() == 1) {  // a property write
        props[dispid] = args[0];
        return Variant();
      }
      fail(err::kNoSuchMember, "ScriptedDispatch", std::to_string(dispid));
    }
    return it->second(args);
  }
  // The last value written to a property.
  Variant prop(int32_t dispid) const {
    auto it = props.find(dispid);
    return it == props.end() ? Variant() : it->second;
  }

  std::map<std::string, int32_t> names;
  std::map<int32_t, Handler> handlers;
  std::map<int32_t, Variant> props;
  std::vector<Call> calls;
};

// A supplier's answer for one line (or for a status check).
inline std::shared_ptr<ScriptedDispatch> make_response(Variant unit_price, Variant available,
                                                       Variant status_code = Variant()) {
  auto r = std::make_shared<ScriptedDispatch>();
  r->names = {{"getUnitPrice", 1}, {"getAvailableQty", 2}, {"getStatusCode", 3}};
  r->handlers[1] = [unit_price](std::span<Variant>) { return unit_price; };
  r->handlers[2] = [available](std::span<Variant>) { return available; };
  r->handlers[3] = [status_code](std::span<Variant>) { return status_code; };
  return r;
}

}  // namespace kxui::testing
