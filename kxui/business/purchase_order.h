// "KxPO03.PurchaseOrder" and the objects of a PO's lines and cost split: "KxPO03.POItem",
// "KxPO03.POItems", "KxPO03.POCostDistribs", and the PO's log "KxPO03.POLog".
//
// Boolean members answer False when refused (the reason in GetError); record-set members
// answer through Succeeded(). Members other than ReleaseSessionLocks have a default that
// fails with 438 (the object does not support the member), as a late-bound call would
// on a business tier that lacks it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "kxui/business/business_object.h"
#include "kxui/frame/recordset.h"
#include "kxui/frame/session.h"
#include "kxui/frame/variant.h"

namespace kxui::business {

// The header of a loaded PO.
class POHeader : public virtual Object {
 public:
  virtual int32_t POID() = 0;
  virtual std::string PONum() = 0;
  virtual std::string POName() = 0;
  virtual std::string SubmitterName() = 0;
  // Creation date in zone 15 (a Date, or Null when unknown).
  virtual Variant CreateDate() = 0;
  virtual std::string Justification() = 0;
  virtual std::string CurrencyCode() = 0;
  virtual Currency TotalCost() = 0;
  // True when the session could not take the PO's edit lock (or the PO is closed).
  virtual bool ReadOnly() = 0;
  virtual std::string BorgName() = 0;
  virtual int32_t SupplierID() = 0;
  virtual std::string SupplierName() = 0;
  virtual std::string ReceiveStatusDesc() = 0;
};

// A PO line as the UI tier fills it, to name a line (POID, LineNum) or to describe an
// alternative part.
class POItem : public virtual BusinessObject {
 public:
  virtual void SetPOID(int32_t po_id) = 0;
  virtual void SetLineNum(int32_t line_num) = 0;
  virtual void SetActualUnitPrice(Currency price) = 0;
  // The two amounts that the line works out itself once it is stored.
  virtual void SetExtendedPrice(Currency amount) = 0;
  virtual void SetSalesTaxAmt(Currency amount) = 0;
  virtual void SetBuyerPartNum(const std::string& part_num) = 0;
  virtual void SetCommodityName(const std::string& name) = 0;
  virtual void SetCommodityID(int32_t commodity_id) = 0;
  virtual void SetActualCurrencyCode(const std::string& currency_code) = 0;
  virtual void SetMfrName(const std::string& name) = 0;
  virtual void SetShortDesc(const std::string& description) = 0;
  virtual void SetPartID(int32_t part_id) = 0;
  virtual void SetSupplierID(int32_t supplier_id) = 0;
  virtual void SetSupplierPartNum(const std::string& part_num) = 0;
  virtual void SetSupplierPartNumExt(const std::string& part_num_ext) = 0;
  virtual void SetTaxable(int32_t taxable) = 0;
  virtual void SetUnitPrice(Currency price) = 0;
  virtual void SetUnitofMeasure(const std::string& uom) = 0;
};

// A collection of PO lines handed to the business tier in one request.
class POItems : public virtual BusinessObject {
 public:
  virtual void Add(const std::shared_ptr<POItem>& item) = 0;
  virtual int32_t Count() = 0;
};

class PurchaseOrder : public virtual BusinessObject {
 public:
  // Releases every order lock the session holds.
  virtual bool ReleaseSessionLocks(const SessionPtr& session, Variant& custom_data) = 0;

  // Loads a PO, taking the session's edit lock when `lock` is True (a PO that cannot be
  // locked loads read-only).
  virtual bool LoadPO(const SessionPtr& session, int32_t po_id, bool lock, Variant& custom_data);
  // The header of the loaded PO.
  virtual std::shared_ptr<POHeader> Header();
  // Whether the last record-set member succeeded.
  virtual bool Succeeded();

  // The lines of a PO (line 0: all), with at least "UnitPrice", "SalesTaxAmt",
  // "ActualPrice", "CurrencyCode", "DeliverByDate", "POStatusDate" and "OrderQty".
  virtual RecordsetPtr GetPOItems(const SessionPtr& session, int32_t po_id, int32_t line_number,
                                  Variant& custom_data);
  // The user's POs, with at least "CreateDate", "TotalAmtDue" and "CurrencyCode".
  virtual RecordsetPtr GetPOList(const SessionPtr& session, const Variant& user_name,
                                 const Variant& borg_name, const std::string& po_number,
                                 const Variant& sort_by, const Variant& status_list,
                                 Variant& custom_data);
  // The POs made from a requisition, with at least "TotalAmtDue", "CurrencyCode",
  // "CreateDate" and "OrderedOnDate".
  virtual RecordsetPtr GetPOsByReq(const SessionPtr& session, int32_t req_id,
                                   Variant& custom_data);
  // The log entries of a PO matching `filter` ("" for all), with at least "DateLogged".
  virtual RecordsetPtr GetPOLog(const SessionPtr& session, int32_t po_id,
                                const std::string& filter, Variant& custom_data);

  // Copies a PO's lines into a new requisition named `req_name`. Out: the requisition's
  // identifier, the number of lines of the PO and how many were copied.
  virtual bool CopyToRequisition(const SessionPtr& session, int32_t po_id,
                                 const std::string& req_name, int32_t& new_req_id,
                                 int32_t& total_items, int32_t& items_copied,
                                 Variant& custom_data);
  virtual bool DeletePO(const SessionPtr& session, int32_t po_id, Variant& custom_data);
  // Deletes the lines named in `items` (each carries its POID and LineNum).
  virtual bool DeleteLines(const SessionPtr& session, const std::shared_ptr<POItems>& items,
                           int32_t line_num, Variant& custom_data);
  // One row describing the PO's status, with at least the Boolean "CanEdit"; Nothing
  // when the PO cannot be read.
  virtual RecordsetPtr GetStatusRecord(const SessionPtr& session, int32_t po_id,
                                       Variant& custom_data);
  // True while the session still holds the PO's edit lock.
  virtual bool IsValidLock(const SessionPtr& session, int32_t po_id, Variant& custom_data);
  // Drops the session's working state of POs.
  virtual bool Reset(const SessionPtr& session, Variant& custom_data);
  // Stores the PO status that a supplier's order-status answer maps to.
  virtual bool SetPOStatus(const SessionPtr& session, int32_t po_id, int32_t po_status_id,
                           Variant& custom_data);
};

// How the lines of a PO are split over cost centers.
class POCostDistribs : public virtual BusinessObject {
 public:
  virtual RecordsetPtr GetListCostCenter(const SessionPtr& session, int32_t po_id,
                                         Variant& custom_data) = 0;
  virtual RecordsetPtr GetListCostDistribs(const SessionPtr& session, int32_t po_id,
                                           int32_t line_number, Variant& custom_data) = 0;
  // `cost_center_ids` and `percents` are parallel lists separated by `delimiter`.
  virtual bool SaveCostDistribs(const SessionPtr& session, int32_t po_id, int32_t line_number,
                                const std::string& cost_center_ids, const std::string& percents,
                                const std::string& delimiter, Variant& custom_data) = 0;
};

// The history of a PO.
class POLog : public virtual BusinessObject {
 public:
  // Adds an entry of `log_type` (e.g. "Error") to the PO's log.
  virtual bool WriteLog(const SessionPtr& session, int32_t po_id, const std::string& log_type,
                        const std::string& description, const std::string& code,
                        Variant& custom_data) = 0;
};

// "KxCom03.POStatus": the system's PO statuses.
class POStatus : public virtual BusinessObject {
 public:
  // The PO status that a supplier's order-status code stands for. False when the code
  // is unknown.
  virtual bool MapSupplierStatus(const SessionPtr& session, const std::string& status_code,
                                 int32_t& po_status_id, Variant& custom_data) = 0;
};

}  // namespace kxui::business
