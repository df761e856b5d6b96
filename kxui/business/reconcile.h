// "KxRecPO03.ReconcileOrder" and "KxRecPO03.ReconcileItems": the working copy of a PO
// being reconciled against a supplier's answer. The working state lives in the business
// tier between calls (keyed by the PO), so separate objects of one session see it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "kxui/business/business_object.h"
#include "kxui/business/purchase_order.h"
#include "kxui/frame/recordset.h"
#include "kxui/frame/session.h"
#include "kxui/frame/variant.h"

namespace kxui::business {

// One line of a reconcile order.
class ReconcileItem : public virtual Object {
 public:
  virtual bool Deleted() = 0;
  virtual void SetDeleted(bool deleted) = 0;
  virtual int32_t LineNum() = 0;
  virtual std::string SupplierPartNum() = 0;
  virtual std::string SupplierPartNumExt() = 0;
  virtual std::string UOMID() = 0;
  virtual double ShippedQty() = 0;
  virtual int32_t POSupplierID() = 0;
  // The supplier's current price, stored as both the line's unit and actual unit price.
  virtual void SetUnitPrice(Currency price) = 0;
  virtual void SetActualUnitPrice(Currency price) = 0;
  virtual void SetInStockQty(double qty) = 0;
};

// The lines of a reconcile order, indexed from 1.
class ReconcileItems : public virtual BusinessObject {
 public:
  // Loads the lines of the working copy of a PO.
  virtual bool Load(const SessionPtr& session, int32_t po_id, Variant& custom_data) = 0;
  virtual int32_t Count() = 0;
  // 9 Subscript out of range outside 1..Count.
  virtual std::shared_ptr<ReconcileItem> Item(int32_t index) = 0;
};

// The header values of a reconcile order.
class ReconcileOrderHeader : public virtual Object {
 public:
  virtual std::string PONum() = 0;
  virtual std::string Supplier() = 0;
  virtual int32_t SupplierID() = 0;
  virtual std::string CurrencyCode() = 0;
  virtual Currency SubTotal() = 0;
  virtual Currency TotalTaxAmt() = 0;
  virtual Currency TotalAmtDue() = 0;
};

class ReconcileOrder : public virtual BusinessObject {
 public:
  // Loads the working copy (line 0: every line).
  virtual bool LoadOrder(const SessionPtr& session, int32_t po_id, int32_t line_number,
                         Variant& custom_data) = 0;
  // The loaded lines.
  virtual std::shared_ptr<ReconcileItems> Items() = 0;
  virtual bool SaveOrder(const SessionPtr& session, Variant& custom_data) = 0;
  // The lines (0: all) with at least "UnitPrice", "ActualPrice", "CurrencyCode",
  // "OrderQty", "BackOrderQty", "ShippedQty", "InStockQty", "POOrderQty" and
  // "POBackOrderQty". Answers through Succeeded().
  virtual RecordsetPtr GetOrderItems(const SessionPtr& session, int32_t po_id,
                                     int32_t line_number, Variant& custom_data) = 0;
  virtual bool Succeeded() = 0;
  // Adds the lines of `items` as alternatives; `reserved` is 0.
  virtual bool AddAlternateItem(const SessionPtr& session, int32_t po_id, int32_t reserved,
                                const std::shared_ptr<POItems>& items, Variant& custom_data) = 0;
  // Parallel arrays of line numbers and quantities, as the page sent them.
  virtual bool UpdateQuantities(const SessionPtr& session, int32_t po_id,
                                const Variant& line_numbers, const Variant& shipped_qtys,
                                const Variant& back_order_qtys, Variant& custom_data) = 0;
  virtual bool SubmitOrder(const SessionPtr& session, int32_t po_id, Variant& custom_data) = 0;
  // Loads the header values; `reserved` is "".
  virtual bool LoadOrderHeader(const SessionPtr& session, int32_t po_id,
                               const std::string& reserved, Variant& custom_data) = 0;
  virtual std::shared_ptr<ReconcileOrderHeader> OrderHeader() = 0;
};

}  // namespace kxui::business
