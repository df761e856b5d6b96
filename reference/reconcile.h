// "KxRecPO03.ReconcileOrder" and "KxRecPO03.ReconcileItems" over recon_lines: the working
// copy of an order being reconciled with its supplier, made from the order's lines on
// first load and shared by every object (changes to a line are written at once).
// Submitting applies the copy to the order in one change and drops it.
#pragma once

#include <memory>
#include <vector>

#include "kxui/business/reconcile.h"
#include "reference/object_base.h"

namespace kxui::reference {

class RefReconcileItem : public business::ReconcileItem {
 public:
  RefReconcileItem(DatabasePtr db, int32_t po_id) : db_(std::move(db)), po_id_(po_id) {}
  bool Deleted() override { return deleted; }
  void SetDeleted(bool v) override;
  int32_t LineNum() override { return line_num; }
  std::string SupplierPartNum() override { return part_num; }
  std::string SupplierPartNumExt() override { return part_num_ext; }
  std::string UOMID() override { return uom; }
  double ShippedQty() override { return shipped; }
  int32_t POSupplierID() override { return supplier_id; }
  void SetUnitPrice(Currency price) override;
  void SetActualUnitPrice(Currency price) override;
  void SetInStockQty(double qty) override;

  int32_t line_num = 0, supplier_id = 0;
  std::string part_num, part_num_ext, uom;
  double shipped = 0;
  bool deleted = false;

 private:
  template <class T>
  void store(const char* column, T value);
  DatabasePtr db_;
  int32_t po_id_;
};

class RefReconcileItems : public business::ReconcileItems, public RefObject {
 public:
  explicit RefReconcileItems(DatabasePtr db) : RefObject(std::move(db), "ReconcileItems") {}
  bool Load(const SessionPtr& session, int32_t po_id, Variant& custom_data) override;
  int32_t Count() override { return static_cast<int32_t>(items_.size()); }
  std::shared_ptr<business::ReconcileItem> Item(int32_t index) override;
  // Loads line `line_number` (0: all) of the working copy, making it first if needed.
  void load(const Session& s, int32_t po_id, int32_t line_number);

 private:
  std::vector<std::shared_ptr<RefReconcileItem>> items_;
};

class RefReconcileOrderHeader : public business::ReconcileOrderHeader {
 public:
  std::string PONum() override { return po_num; }
  std::string Supplier() override { return supplier; }
  int32_t SupplierID() override { return supplier_id; }
  std::string CurrencyCode() override { return currency; }
  Currency SubTotal() override { return sub_total; }
  Currency TotalTaxAmt() override { return tax; }
  Currency TotalAmtDue() override { return total; }
  std::string po_num, supplier, currency;
  int32_t supplier_id = 0;
  Currency sub_total, tax, total;
};

class RefReconcileOrder : public business::ReconcileOrder, public RefObject {
 public:
  explicit RefReconcileOrder(DatabasePtr db) : RefObject(std::move(db), "ReconcileOrder") {}
  bool LoadOrder(const SessionPtr& session, int32_t po_id, int32_t line_number,
                 Variant& custom_data) override;
  std::shared_ptr<business::ReconcileItems> Items() override { return items_; }
  bool SaveOrder(const SessionPtr& session, Variant& custom_data) override;
  RecordsetPtr GetOrderItems(const SessionPtr& session, int32_t po_id, int32_t line_number,
                             Variant& custom_data) override;
  bool Succeeded() override { return success_; }
  bool AddAlternateItem(const SessionPtr& session, int32_t po_id, int32_t reserved,
                        const std::shared_ptr<business::POItems>& items,
                        Variant& custom_data) override;
  bool UpdateQuantities(const SessionPtr& session, int32_t po_id, const Variant& line_numbers,
                        const Variant& shipped_qtys, const Variant& back_order_qtys,
                        Variant& custom_data) override;
  bool SubmitOrder(const SessionPtr& session, int32_t po_id, Variant& custom_data) override;
  bool LoadOrderHeader(const SessionPtr& session, int32_t po_id, const std::string& reserved,
                       Variant& custom_data) override;
  std::shared_ptr<business::ReconcileOrderHeader> OrderHeader() override { return header_; }

 private:
  int32_t po_id_ = 0;
  std::shared_ptr<RefReconcileItems> items_;
  std::shared_ptr<RefReconcileOrderHeader> header_;
};

}  // namespace kxui::reference
