// The order side of the reference tier: the loaded header, the line objects the UI tier
// fills to name lines, the log writer and the supplier-status map. RefPurchaseOrder
// itself is declared with the other services (services.h) and implemented in
// purchase_order.cpp.
// Rules: an order changes (lines deleted, order deleted) only while it is Open and no
// other session holds its lock; a status set from outside is logged.
#pragma once

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "kxui/business/purchase_order.h"
#include "reference/object_base.h"

namespace kxui::reference {

namespace po_status {
inline constexpr int32_t kOpen = 1;  // created from an approved requisition
inline constexpr int32_t kSent = 2;
inline constexpr int32_t kAcknowledged = 3;
inline constexpr int32_t kPartlyReceived = 4;
inline constexpr int32_t kReceived = 5;
inline constexpr int32_t kClosed = 6;
inline constexpr int32_t kCancelled = 7;
}  // namespace po_status

class RefPOHeader : public business::POHeader {
 public:
  int32_t POID() override { return po_id; }
  std::string PONum() override { return po_num; }
  std::string POName() override { return po_name; }
  std::string SubmitterName() override { return submitter; }
  Variant CreateDate() override { return Variant(create_date); }
  std::string Justification() override { return justification; }
  std::string CurrencyCode() override { return currency_code; }
  Currency TotalCost() override { return total; }
  bool ReadOnly() override { return read_only; }
  std::string BorgName() override { return borg_name; }
  int32_t SupplierID() override { return supplier_id; }
  std::string SupplierName() override { return supplier_name; }
  std::string ReceiveStatusDesc() override { return receive_status; }

  int32_t po_id = 0, supplier_id = 0;
  std::string po_num, po_name, submitter, justification, currency_code, borg_name,
      supplier_name, receive_status;
  Date create_date;
  Currency total;
  bool read_only = true;
};

// Holds what the UI tier sets; only POID and LineNum are read back (to name a line).
class RefPOItem : public business::POItem, public RefObject {
 public:
  explicit RefPOItem(DatabasePtr db) : RefObject(std::move(db), "POItem") {}
  void SetPOID(int32_t v) override { po_id = v; }
  void SetLineNum(int32_t v) override { line_num = v; }
  void SetActualUnitPrice(Currency v) override { actual_unit_price = v; }
  void SetExtendedPrice(Currency v) override { extended_price = v; }
  void SetSalesTaxAmt(Currency v) override { sales_tax = v; }
  void SetBuyerPartNum(const std::string& v) override { buyer_part_num = v; }
  void SetCommodityName(const std::string& v) override { commodity_name = v; }
  void SetCommodityID(int32_t v) override { commodity_id = v; }
  void SetActualCurrencyCode(const std::string& v) override { actual_currency = v; }
  void SetMfrName(const std::string& v) override { mfr_name = v; }
  void SetShortDesc(const std::string& v) override { short_desc = v; }
  void SetPartID(int32_t v) override { part_id = v; }
  void SetSupplierID(int32_t v) override { supplier_id = v; }
  void SetSupplierPartNum(const std::string& v) override { supplier_part_num = v; }
  void SetSupplierPartNumExt(const std::string& v) override { supplier_part_num_ext = v; }
  void SetTaxable(int32_t v) override { taxable = v; }
  void SetUnitPrice(Currency v) override { unit_price = v; }
  void SetUnitofMeasure(const std::string& v) override { uom = v; }

  int32_t po_id = 0, line_num = 0, commodity_id = 0, part_id = 0, supplier_id = 0, taxable = 0;
  Currency actual_unit_price, extended_price, sales_tax, unit_price;
  std::string buyer_part_num, commodity_name, actual_currency, mfr_name, short_desc,
      supplier_part_num, supplier_part_num_ext, uom;
};

class RefPOItems : public business::POItems, public RefObject {
 public:
  explicit RefPOItems(DatabasePtr db) : RefObject(std::move(db), "POItems") {}
  void Add(const std::shared_ptr<business::POItem>& item) override { items.push_back(item); }
  int32_t Count() override { return static_cast<int32_t>(items.size()); }
  std::vector<std::shared_ptr<business::POItem>> items;
};

class RefPOLog : public business::POLog, public RefObject {
 public:
  explicit RefPOLog(DatabasePtr db) : RefObject(std::move(db), "POLog") {}
  bool WriteLog(const SessionPtr& session, int32_t po_id, const std::string& log_type,
                const std::string& description, const std::string& code,
                Variant& custom_data) override;
};

// Supplier status codes map to order statuses through the supplier_status_codes table.
class RefPOStatus : public business::POStatus, public RefObject {
 public:
  explicit RefPOStatus(DatabasePtr db) : RefObject(std::move(db), "POStatus") {}
  bool MapSupplierStatus(const SessionPtr& session, const std::string& status_code,
                         int32_t& po_status_id, Variant& custom_data) override;
};

struct PORow {
  int32_t po_id = 0, req_id = 0, status = 0, borg_id = 0;  // borg: its requisition's
};
// The order as `caller` may reach it: refuses with "not found" when there is none and
// "not allowed" when its requisition is another organisation's.
PORow load_order(soci::session& sql, int32_t po_id, const Session& caller);
// Refuses a change to an order that is no longer Open or that another session edits;
// `action` names what was refused.
void require_changeable(soci::session& sql, Database& db, const PORow& po, const Session& s,
                        const std::string& action);

// Whether another session holds an unexpired lock on the order.
bool locked_by_other(soci::session& sql, Database& db, int32_t po_id, const Session& s);

// The statuses of a comma-separated list; refuses an entry that is not a number.
std::set<int32_t> parse_status_list(const std::string& list);
// The orders of a user (login; "" for the session user), an organisation ("" for any)
// and an order number ("" for any) in the statuses (empty for all), sorted by one of
// the known columns, with "CreateDate", "TotalAmtDue" and "CurrencyCode". The record set
// counts the orders when it opens and reads its rows from `db` as the cursor reaches them.
RecordsetPtr order_list(const DatabasePtr& db, const Session& s, const std::string& user_name,
                        const std::string& borg, const std::string& po_number,
                        const std::string& sort_by, const std::set<int32_t>& statuses);

// Appends an entry to an order's log (inside the caller's write).
void log_po(soci::session& sql, Database& db, int32_t po_id, int32_t user_id,
            const std::string& log_type, const std::string& description, const std::string& code);

}  // namespace kxui::reference
